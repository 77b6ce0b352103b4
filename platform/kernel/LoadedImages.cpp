#include "kernel/LoadedImages.h"

#include <fstream>
#include <limits.h>
#include <link.h>
#include <sstream>
#include <stdlib.h>
#include <unistd.h>

namespace BPrivate {

static void
take_segment(LoadedImage& image, const ElfW(Phdr) & header)
{
	const uintptr_t start = image.base + header.p_vaddr;
	if ((header.p_flags & PF_X) != 0 && image.textSize == 0) {
		image.text = start;
		image.textSize = header.p_memsz;
	} else if ((header.p_flags & PF_W) != 0 && image.dataSize == 0) {
		image.data = start;
		image.dataSize = header.p_memsz;
	}
}

/*!	The loader writes the names while another thread loads a library, and lists them, under locks of its own: ThreadSanitizer does
	not see these, so it must not look at the reading. */
__attribute__((no_sanitize("thread"))) static std::string
name_of(const dl_phdr_info* info)
{
	std::string name;
	for (const char* character = info->dlpi_name; *character != '\0'; character++)
		name += *character;
	return name;
}

static int
take_image(dl_phdr_info* info, size_t, void* data)
{
	auto& images = *static_cast<std::vector<LoadedImage>*>(data);
	const std::string name = name_of(info);
	// the kernel's own page (vdso) is no file; the program is the one that comes first, without a
	// name
	if (!images.empty() && name.find('/') == std::string::npos)
		return 0;
	LoadedImage image;
	image.base = info->dlpi_addr;
	image.path = images.empty() ? "" : name;
	for (int i = 0; i < info->dlpi_phnum; i++) {
		if (info->dlpi_phdr[i].p_type == PT_LOAD)
			take_segment(image, info->dlpi_phdr[i]);
	}
	images.push_back(image);
	return 0;
}

std::vector<LoadedImage>
loaded_images()
{
	std::vector<LoadedImage> images;
	dl_iterate_phdr(take_image, &images);
	return images;
}

//! The file that the kernel has mapped at `address`.
static std::string
mapped_file(uintptr_t address)
{
	std::ifstream maps("/proc/self/maps");
	std::string line;
	while (std::getline(maps, line)) {
		uintptr_t from, to;
		if (sscanf(line.c_str(), "%zx-%zx", &from, &to) != 2 || address < from || address >= to)
			continue;
		const size_t path = line.find('/');
		return path != std::string::npos ? line.substr(path) : "";
	}
	return "";
}

static std::string
program_path()
{
	char path[PATH_MAX];
	const ssize_t length = readlink("/proc/self/exe", path, sizeof(path));
	return length > 0 ? std::string(path, length) : "";
}

std::string
LoadedImage::RealPath() const
{
	if (IsProgram())
		return program_path();
	char real[PATH_MAX];
	// a relative name was meant for the folder that was the current one then
	if (path[0] == '/' && realpath(path.c_str(), real) != nullptr)
		return real;
	return mapped_file(text);
}

} // namespace BPrivate
