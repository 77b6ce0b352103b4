#pragma once

#include "support/TextConverter.h"

namespace BPrivate {

/*!	ISO-2022-JP (JIS) by way of Shift-JIS, whose rows are the same ones: so all of Windows-31J's
	rows 1 to 94 are there, row 13 included, and half-width katakana is read in its three ways (ESC
	( I, SO and SI, bytes from 0xA1).

	`state` carries the character set that is in force; 0 is ASCII. An unknown escape sequence is
	one substitute. */
TextStop jis_to_utf8(TextSpan& text, int32* state, char substitute);

/*!	What is written always ends in ASCII, so that each piece stands for itself and there is no
	state. Katakana that has no full width is written with ESC ( I; JIS-Roman is not used, its yen
	sign and overline become \ and ~. */
TextStop utf8_to_jis(TextSpan& text, char substitute);

} // namespace BPrivate
