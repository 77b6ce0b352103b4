#pragma once

#include <image.h>
#include <stdint.h>
#include <string>
#include <vector>

namespace BPrivate {

/*!	What the dynamic linker has in memory: the program first, then in the order of loading. */
struct LoadedImage {
	uintptr_t base = 0;
	std::string path;   // as the linker knows it; empty for the program
	uintptr_t text = 0; // the first executable segment
	size_t textSize = 0;
	uintptr_t data = 0; // the first writable segment
	size_t dataSize = 0;

	bool IsProgram() const { return path.empty(); }
	//! The file on disk, as it is called now or else as it was called when it was mapped.
	std::string RealPath() const;
};

std::vector<LoadedImage> loaded_images();

} // namespace BPrivate
