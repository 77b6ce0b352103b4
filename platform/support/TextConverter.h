#pragma once

#include <SupportDefs.h>
#include <string_view>

namespace BPrivate {

//! What is still to be converted and where it goes; both beginnings move on.
struct TextSpan {
	const char* src;
	const char* srcEnd;
	char* dst;
	char* dstEnd;

	size_t SourceLeft() const { return srcEnd - src; }
	size_t Room() const { return dstEnd - dst; }
	//! All of `bytes` or nothing.
	bool Put(std::string_view bytes);
};

enum class TextStop {
	kDone,  // nothing is left
	kFull,  // the next character does not fit
	kCutOff // what is left is the beginning of a character
};

/*!	Converts between UTF-8 and an encoding without shift states, by iconv. Ill-formed sequences and
	unknown characters become the substitute. Thread: the one that made it, whose converter it
	borrows. */
class TextConverter {
public:
	//! `encoding`: a constant of UTF8.h; `substitute`: ASCII.
	TextConverter(uint32 encoding, bool toUTF8, char substitute);

	//! False: the encoding is not known, or the system lacks it.
	bool IsValid() const { return fHandle != nullptr; }
	TextStop Convert(TextSpan& text) const;
	//! The substitute as it is written on the other side.
	std::string_view Substitute() const { return {fSubstitute, fSubstituteLength}; }

private:
	void CopyASCII(TextSpan& text) const;
	bool ReplaceBad(TextSpan& text) const;

	void* fHandle; // iconv_t, or NULL
	uint32 fEncoding;
	bool fToUTF8;
	char fSubstitute[2];
	size_t fSubstituteLength;
};

} // namespace BPrivate
