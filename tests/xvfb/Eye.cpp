#include "xvfb/Eye.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <xcb/xcb.h>

namespace {

struct Freer {
	void operator()(void* reply) const { free(reply); }
};

template<typename T>
std::unique_ptr<T, Freer>
owned(T* reply)
{
	return std::unique_ptr<T, Freer>(reply);
}

//! Nobody else's request comes between.
class ServerGrab {
public:
	explicit ServerGrab(xcb_connection_t* connection) : fConnection(connection)
	{
		xcb_grab_server(fConnection);
	}
	~ServerGrab()
	{
		xcb_ungrab_server(fConnection);
		xcb_flush(fConnection);
	}

private:
	xcb_connection_t* fConnection;
};

} // namespace

Eye::Picture
Eye::Picture::Part(int partWidth, int partHeight) const
{
	Picture part{std::min(partWidth, width), std::min(partHeight, height), {}};
	for (int y = 0; y < part.height; y++) {
		const auto row = pixels.begin() + size_t(y) * width;
		part.pixels.insert(part.pixels.end(), row, row + part.width);
	}
	return part;
}

void
Eye::Picture::Save(const std::string& name) const
{
	const char* folder = getenv("TAVORA_PICTURES");
	if (folder == nullptr)
		return;
	std::ofstream file(std::string(folder) + "/" + name + ".ppm", std::ios::binary);
	file << "P6 " << width << " " << height << " 255\n";
	for (const uint32_t pixel : pixels)
		file << char(pixel >> 16) << char(pixel >> 8) << char(pixel);
}

Eye::Eye() : fConnection(xcb_connect(nullptr, nullptr))
{
	if (xcb_connection_has_error(fConnection) != 0)
		throw std::runtime_error("there is no X server");
}

Eye::~Eye()
{
	xcb_disconnect(fConnection);
}

Eye::Picture
Eye::LookAt(uint32_t window)
{
	const ServerGrab grab(fConnection);
	const auto size = owned(
		xcb_get_geometry_reply(fConnection, xcb_get_geometry(fConnection, window), nullptr));
	if (size == nullptr)
		return {};
	const auto image = owned(xcb_get_image_reply(fConnection,
		xcb_get_image(
			fConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, size->width, size->height, ~0u),
		nullptr));
	if (image == nullptr)
		return {};
	Picture picture{
		size->width, size->height, std::vector<uint32_t>(size_t(size->width) * size->height)};
	memcpy(picture.pixels.data(), xcb_get_image_data(image.get()),
		std::min<size_t>(picture.pixels.size() * 4, xcb_get_image_data_length(image.get())));
	for (uint32_t& pixel : picture.pixels)
		pixel &= 0xffffff;
	return picture;
}

bool
Eye::IsAbove(uint32_t window)
{
	const auto states = owned(xcb_get_property_reply(fConnection,
		xcb_get_property(fConnection, 0, window, Atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, 32),
		nullptr));
	if (states == nullptr)
		return false;
	const auto* first = static_cast<const uint32_t*>(xcb_get_property_value(states.get()));
	const auto* end = first + xcb_get_property_value_length(states.get()) / 4;
	return std::find(first, end, Atom("_NET_WM_STATE_ABOVE")) != end;
}

void
Eye::Resize(uint32_t window, int width, int height)
{
	const uint32_t size[] = {uint32_t(width), uint32_t(height)};
	xcb_configure_window(
		fConnection, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
	xcb_flush(fConnection);
}

uint32_t
Eye::Atom(const char* name)
{
	const auto atom = owned(xcb_intern_atom_reply(
		fConnection, xcb_intern_atom(fConnection, false, strlen(name), name), nullptr));
	return atom != nullptr ? atom->atom : 0;
}
