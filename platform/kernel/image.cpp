#include <image.h>

#include "kernel/LoadedImages.h"
#include "kernel/errno_status.h"
#include <algorithm>
#include <dlfcn.h>
#include <errno.h>
#include <limits.h>
#include <link.h>
#include <map>
#include <mutex>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

using BPrivate::loaded_images;
using BPrivate::LoadedImage;

namespace {

//! An image that has an id, because it was listed or loaded.
struct KnownImage {
	uintptr_t base = 0;
	std::string path; // as the linker knows it
	void* handle = nullptr;
	int32 loads = 0; // by load_add_on()

	bool Is(const LoadedImage& image) const { return base == image.base && path == image.path; }
};

struct Table {
	std::mutex lock;
	std::map<image_id, KnownImage> images;
	image_id lastId = 0;
};

Table&
table()
{
	static Table* const sTable = new Table; // never deleted: destructors of other statics may ask
	return *sTable;
}

//! With the lock held. The image gets an id if it has none.
image_id
id_of(Table& table, const LoadedImage& image)
{
	for (const auto& [id, known] : table.images) {
		if (known.Is(image))
			return id;
	}
	table.images[++table.lastId] = KnownImage{image.base, image.path};
	return table.lastId;
}

/*!	With the lock held. Ids of images that were unloaded behind our back end here, too. The linker's
	list is read with the lock held, so that nothing that was loaded meanwhile is taken for
	unloaded. */
void
forget_unloaded(Table& table)
{
	const std::vector<LoadedImage> images = loaded_images();
	std::erase_if(table.images, [&](const auto& entry) {
		const auto same = [&](const LoadedImage& image) { return entry.second.Is(image); };
		return std::none_of(images.begin(), images.end(), same);
	});
}

bool
find_known(image_id id, KnownImage* known)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	const auto found = table.images.find(id);
	if (found == table.images.end())
		return false;
	*known = found->second;
	return true;
}

image_type
type_of(const KnownImage& known)
{
	if (known.path.empty())
		return B_APP_IMAGE;
	return known.loads > 0 ? B_ADD_ON_IMAGE : B_LIBRARY_IMAGE;
}

void
fill_info(const LoadedImage& image, image_info* info)
{
	memset(info, 0, sizeof(*info));
	image.RealPath().copy(info->name, sizeof(info->name) - 1);
	struct stat file;
	if (stat(info->name, &file) == 0) {
		info->device = file.st_dev;
		info->node = file.st_ino;
	}
	info->text = reinterpret_cast<void*>(image.text);
	info->text_size = static_cast<int32>(std::min<size_t>(image.textSize, INT_MAX));
	info->data = reinterpret_cast<void*>(image.data);
	info->data_size = static_cast<int32>(std::min<size_t>(image.dataSize, INT_MAX));
}

status_t
info_of(const LoadedImage& image, image_info* info)
{
	fill_info(image, info);
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	info->id = id_of(table, image);
	info->type = type_of(table.images[info->id]);
	return B_OK;
}

status_t
status_of_linker(const char* reason)
{
	fprintf(stderr, "load_add_on: %s\n", reason);
	if (strstr(reason, "undefined symbol") != nullptr)
		return B_MISSING_SYMBOL;
	if (strstr(reason, "cannot open shared object file") != nullptr)
		return B_MISSING_LIBRARY;
	return B_NOT_AN_EXECUTABLE;
}

uintptr_t
base_of(void* handle, std::string* path)
{
	link_map* map = nullptr;
	dlinfo(handle, RTLD_DI_LINKMAP, &map);
	*path = map->l_name;
	return map->l_addr;
}

/*!	The linker's handle of any loaded image; to be closed. The linker finds what is loaded by the
	very name that it gave it. */
void*
open_again(const KnownImage& image)
{
	return dlopen(image.path.empty() ? nullptr : image.path.c_str(), RTLD_NOW | RTLD_NOLOAD);
}

//! The linker looks in what the image needs as well.
bool
is_in(const KnownImage& image, void* symbol)
{
	Dl_info info;
	link_map* map = nullptr;
	return dladdr1(symbol, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0
		&& map->l_addr == image.base && image.path == map->l_name;
}

} // namespace

status_t
get_next_image_info(team_id team, int32* cookie, image_info* info)
{
	if (cookie == nullptr || info == nullptr || *cookie < 0)
		return B_BAD_VALUE;
	if (team != B_CURRENT_TEAM && team != getpid())
		return B_BAD_TEAM_ID;
	const std::vector<LoadedImage> images = loaded_images();
	if (*cookie >= static_cast<int32>(images.size()))
		return B_BAD_VALUE;
	return info_of(images[(*cookie)++], info);
}

status_t
get_image_info(image_id id, image_info* info)
{
	if (info == nullptr)
		return B_BAD_VALUE;
	KnownImage known;
	if (!find_known(id, &known))
		return B_BAD_IMAGE_ID;
	for (const LoadedImage& image : loaded_images()) {
		if (known.Is(image))
			return info_of(image, info);
	}
	return B_BAD_IMAGE_ID;
}

image_id
load_add_on(const char* path)
{
	if (path == nullptr)
		return B_BAD_VALUE;
	char real[PATH_MAX];
	if (realpath(path, real) == nullptr)
		return BPrivate::status_of_errno(errno);
	// not under our lock: the add-on's initialisers may ask for images
	void* handle = dlopen(real, RTLD_NOW | RTLD_LOCAL);
	if (handle == nullptr)
		return status_of_linker(dlerror());

	LoadedImage image;
	image.base = base_of(handle, &image.path);
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	const image_id id = id_of(table, image);
	table.images[id].handle = handle;
	table.images[id].loads++;
	return id;
}

status_t
unload_add_on(image_id id)
{
	Table& table = ::table();
	void* handle;
	{
		std::lock_guard lock(table.lock);
		const auto found = table.images.find(id);
		if (found == table.images.end() || found->second.loads == 0)
			return B_BAD_IMAGE_ID;
		handle = found->second.handle;
		if (--found->second.loads == 0)
			found->second.handle = nullptr;
	}
	dlclose(handle);
	std::lock_guard lock(table.lock);
	forget_unloaded(table);
	return B_OK;
}

status_t
get_image_symbol(image_id id, const char* name, int32, void** location)
{
	if (name == nullptr || location == nullptr)
		return B_BAD_VALUE;
	KnownImage image;
	if (!find_known(id, &image))
		return B_BAD_IMAGE_ID;
	void* handle = open_again(image);
	if (handle == nullptr)
		return B_BAD_IMAGE_ID;
	void* symbol = dlsym(handle, name);
	dlclose(handle);
	if (symbol == nullptr || !is_in(image, symbol))
		return B_ENTRY_NOT_FOUND;
	*location = symbol;
	return B_OK;
}
