#pragma once

#include <OS.h>
#include <sys/param.h>
#include <sys/types.h>

typedef int32 image_id;

typedef enum { B_APP_IMAGE = 1, B_LIBRARY_IMAGE, B_ADD_ON_IMAGE } image_type;

typedef struct {
	image_id id;
	image_type type;
	dev_t device;
	ino_t node;
	char name[MAXPATHLEN]; // real, absolute path
	void* text;            // the code's first byte
	void* data;            // the writable part's first byte
	int32 text_size;
	int32 data_size;
} image_info;

#define B_SYMBOL_TYPE_DATA 0x1
#define B_SYMBOL_TYPE_TEXT 0x2
#define B_SYMBOL_TYPE_ANY 0x5

/*!	The loaded images of this process one after the other, the program first. `cookie` is 0 at
	first. B_BAD_VALUE after the last, B_BAD_TEAM_ID for another team. Thread: any. */
status_t get_next_image_info(team_id team, int32* cookie, image_info* info);
status_t get_image_info(image_id image, image_info* info);

/*!	Loads an add-on with all it needs; its symbols stay its own. Each load needs its
	unload_add_on(); the same file has the same id as long as it is loaded. B_ENTRY_NOT_FOUND,
	B_NOT_AN_EXECUTABLE, B_MISSING_LIBRARY or B_MISSING_SYMBOL; the reason goes to standard error.
	*/
image_id load_add_on(const char* path);
//! After the last one the code is gone. B_BAD_IMAGE_ID for what load_add_on() did not load.
status_t unload_add_on(image_id image);
//! `type`: B_SYMBOL_TYPE_...; the kinds are not told apart. B_BAD_IMAGE_ID, or B_ENTRY_NOT_FOUND
//! for an unknown name.
status_t get_image_symbol(image_id image, const char* name, int32 type, void** location);
