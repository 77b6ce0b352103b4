#pragma once

#include <string_view>

#include <SupportDefs.h>

namespace merion {

// Line-end types. The numbers are those of the settings files.
constexpr int32 kCRTypeLF = 0;
constexpr int32 kCRTypeCRLF = 1;
constexpr int32 kCRTypeCR = 2;

/*!	Guesses the line ends of a text that holds no NUL: CRLF when it has as many CRs as LFs and at least one, CR when it
	has more CRs than LFs, else LF. */
int32 detect_cr_type(std::string_view text);

/*!	Guesses the encoding of a text that holds no NUL, as a conversion of UTF8.h: B_JIS_CONVERSION when it holds an
	escape, else B_SJIS_CONVERSION when it is no UTF-8, else B_UNICODE_CONVERSION, which stands for UTF-8.
	The check of UTF-8 is a coarse one: lead bytes and the number of bytes that continue them. */
uint32 detect_charset(std::string_view text);

//! The same for a text that ends with a NUL.
int32 detect_cr_type(const char* text);
uint32 detect_charset(const char* text);

} // namespace merion
