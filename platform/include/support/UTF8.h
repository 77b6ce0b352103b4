#pragma once

#include <SupportDefs.h>

//! The other side of a conversion. The platform's numbers; they go into files.
enum {
	B_ISO1_CONVERSION, // ISO 8859-1, and so on
	B_ISO2_CONVERSION,
	B_ISO3_CONVERSION,
	B_ISO4_CONVERSION,
	B_ISO5_CONVERSION,
	B_ISO6_CONVERSION,
	B_ISO7_CONVERSION,
	B_ISO8_CONVERSION,
	B_ISO9_CONVERSION,
	B_ISO10_CONVERSION,
	B_MAC_ROMAN_CONVERSION,
	B_SJIS_CONVERSION,       // Shift-JIS as Windows-31J has it, a superset
	B_EUC_CONVERSION,        // EUC-JP
	B_JIS_CONVERSION,        // ISO-2022-JP, with half-width katakana and Windows-31J's row 13
	B_MS_WINDOWS_CONVERSION, // code page 1252
	B_UNICODE_CONVERSION,    // UTF-16, big-endian
	B_KOI8R_CONVERSION,
	B_MS_WINDOWS_1251_CONVERSION,
	B_MS_DOS_866_CONVERSION,
	B_MS_DOS_CONVERSION, // code page 437
	B_EUC_KR_CONVERSION,
	B_ISO13_CONVERSION,
	B_ISO14_CONVERSION,
	B_ISO15_CONVERSION,
	B_BIG5_CONVERSION,
	B_GBK_CONVERSION
};

/*!	Convert text from an encoding to UTF-8 and back, in one go or piece by piece. `srcLen`: in, the
	bytes of `src`; out, those that were used up. `dstLen`: in, the room in `dst`; out, the bytes
	written, always whole characters. `state`: 0 before the first piece, then left alone; it carries
	the shift state. `substitute` (ASCII, by default B_SUBSTITUTE of InterfaceDefs.h) stands for
	each ill-formed sequence and each character that the other side does not have.

	A character that is cut off by the end of `src` is left unused, to be put before the next piece;
	if it is all there is in `src`, it becomes the substitute. So whoever has the whole text repeats
	the call with what is left until nothing is.

	B_OK when anything was used up or `src` is empty. B_ERROR: not even one character fits into
	`dst`, or the conversion is unknown. B_BAD_VALUE: a NULL or a negative length. Thread: any; each
	thread has converters of its own. */
status_t convert_to_utf8(uint32 srcEncoding, const char* src, int32* srcLen, char* dst,
	int32* dstLen, int32* state, char substitute = 0x1a);
status_t convert_from_utf8(uint32 dstEncoding, const char* src, int32* srcLen, char* dst,
	int32* dstLen, int32* state, char substitute = 0x1a);
