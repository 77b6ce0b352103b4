#include "plugin/helpers/own_file.h"

#include <cstring>

#include <image.h>

std::string
tavora_displayer_fname()
{
	int32 cookie = 0;
	image_info image;
	while (get_next_image_info(B_CURRENT_TEAM, &cookie, &image) == B_OK) {
		if (strstr(image.name, "gen_TavoraD") != nullptr)
			return image.name;
	}
	return {};
}
