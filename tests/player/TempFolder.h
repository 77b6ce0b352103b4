#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

/*!	An empty folder of the test's own, which goes with all that is in it. */
class TempFolder {
public:
	TempFolder()
	{
		std::string path = (std::filesystem::temp_directory_path() / "qubo-test-XXXXXX").string();
		if (mkdtemp(path.data()) == nullptr)
			abort();
		fPath = path;
	}
	~TempFolder()
	{
		std::error_code error; // the folder of a test that failed may be half gone
		std::filesystem::remove_all(fPath, error);
	}
	TempFolder(const TempFolder&) = delete;
	TempFolder& operator=(const TempFolder&) = delete;

	const std::string& Path() const { return fPath; }

private:
	std::string fPath;
};
