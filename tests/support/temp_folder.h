#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <stdlib.h>
#include <string>
#include <string_view>

/*!	A folder of a test's own, removed with all that is in it. */
class TempFolder {
public:
	TempFolder()
	{
		std::string path = (std::filesystem::temp_directory_path() / "tavora-XXXXXX").string();
		if (mkdtemp(path.data()) == nullptr)
			throw std::runtime_error("no temporary folder can be made");
		fPath = std::filesystem::canonical(path).string();
	}
	TempFolder(const TempFolder&) = delete;
	TempFolder& operator=(const TempFolder&) = delete;
	~TempFolder()
	{
		std::error_code ignored;
		std::filesystem::remove_all(fPath, ignored);
	}

	const std::string& Path() const { return fPath; }
	//! The path of a name in the folder, whether something is there or not.
	std::string operator/(std::string_view name) const { return fPath + "/" + std::string(name); }

	//! Writes a file anew and answers its path.
	std::string Write(std::string_view name, std::string_view bytes) const
	{
		const std::string path = *this / name;
		std::ofstream file(path, std::ios::binary | std::ios::trunc);
		file.write(bytes.data(), bytes.size());
		if (!file.flush())
			throw std::runtime_error("cannot write " + path);
		return path;
	}

	std::string Read(std::string_view name) const
	{
		std::ifstream file(*this / name, std::ios::binary);
		return {std::istreambuf_iterator<char>(file), {}};
	}

private:
	std::string fPath;
};
