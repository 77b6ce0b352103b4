#pragma once

#include <SupportDefs.h>

class BMessage;
class BPositionIO;
struct translator_info; // the roster identifies nothing, so nobody has one

/*!	Knows the translators. There is one: it takes a file out of a ZIP archive. Any thread. */
class BTranslatorRoster {
public:
	virtual ~BTranslatorRoster();

	//! The roster that all share; it is not deleted.
	static BTranslatorRoster* Default();

	/*!	Has the source translated by a translator that takes it and what the extension asks for.
		An archive's file: "Arc/entry" (string) is its name in any case, whatever folder of the archive it is in (of
		several the one in the fewest folders, then the first); "Arc/target" (string) the absolute path of a file that
		is made, as the owner's alone, and must not be there yet. The destination gets nothing then. The other
		arguments are hints, and the source's position has no meaning.
		B_NO_TRANSLATOR: info is not NULL, the extension asks for nothing that is known, the source is no such archive;
		B_BAD_VALUE: source or destination is NULL, a field is empty, the target is no absolute path;
		B_ENTRY_NOT_FOUND: no such file in the archive, or no folder for the target; B_ILLEGAL_DATA: it is damaged;
		B_NOT_ALLOWED: it is encrypted; B_FILE_TOO_LARGE: it has more than 1 MB, or the archive more than 64 MB;
		B_FILE_EXISTS, and the errors of reading and writing. After an error the target is not there. */
	virtual status_t Translate(BPositionIO* source, const translator_info* info,
		BMessage* ioExtension, BPositionIO* destination, uint32 wantOutType, uint32 hintType = 0,
		const char* hintMIME = NULL);

protected:
	BTranslatorRoster() = default;
};
