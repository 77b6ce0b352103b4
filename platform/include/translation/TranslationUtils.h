#pragma once

#include <SupportDefs.h>

class BBitmap;
class BPositionIO;
struct entry_ref;

/*!	Pictures from files, in every format that the desktop's toolkit reads. Any thread. */
class BTranslationUtils {
public:
	/*!	A new bitmap that the caller deletes (B_RGBA32 if the picture has transparency, else
		B_RGB32), or NULL when the file is no picture, cannot be read or is damaged. A picture of
		more than 8192 pixels a side is read scaled down to that; one that claims more than 32768 a
		side, or more than 128 million altogether, is refused. Turned upright by its EXIF
		orientation. */
	static BBitmap* GetBitmap(const char* path);
	static BBitmap* GetBitmap(const entry_ref* ref);
};
