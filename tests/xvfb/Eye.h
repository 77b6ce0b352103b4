#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct xcb_connection_t;

/*!	Sees windows as another program of the X server does. Thread: one. */
class Eye {
public:
	//! Of a 24-bit screen, without the unused byte.
	struct Picture {
		int width = 0;
		int height = 0;
		std::vector<uint32_t> pixels;

		bool operator==(const Picture&) const = default;
		uint32_t At(int x, int y) const { return pixels[size_t(y) * width + x]; }
		//! Its upper left part, or all of it.
		Picture Part(int partWidth, int partHeight) const;
		//! For a look at what was wrong: a PPM file in the folder TAVORA_PICTURES, if that is set.
		void Save(const std::string& name) const;
	};

	Eye();
	~Eye();
	Eye(const Eye&) = delete;
	Eye& operator=(const Eye&) = delete;

	//! Size and pixels of one moment. Without size when the window is not to be seen.
	Picture LookAt(uint32_t window);
	//! Whether the window manager keeps it above the others.
	bool IsAbove(uint32_t window);
	//! As when the user sizes it.
	void Resize(uint32_t window, int width, int height);

private:
	uint32_t Atom(const char* name);

	xcb_connection_t* fConnection;
};
