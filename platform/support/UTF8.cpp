#include <UTF8.h>

#include "support/Jis.h"
#include "support/TextConverter.h"

using BPrivate::TextConverter;
using BPrivate::TextSpan;
using BPrivate::TextStop;

static constexpr char kSubstitute = 0x1a; // B_SUBSTITUTE

static TextStop
convert_span(TextSpan& text, uint32 encoding, bool toUTF8, int32* state, char substitute)
{
	if (encoding != B_JIS_CONVERSION)
		return TextConverter(encoding, toUTF8, substitute).Convert(text);
	return toUTF8 ? BPrivate::jis_to_utf8(text, state, substitute)
				  : BPrivate::utf8_to_jis(text, substitute);
}

static status_t
convert(uint32 encoding, bool toUTF8, const char* src, int32* srcLen, char* dst, int32* dstLen,
	int32* state, char substitute)
{
	if (src == nullptr || srcLen == nullptr || *srcLen < 0 || dst == nullptr || dstLen == nullptr
		|| *dstLen < 0 || state == nullptr)
		return B_BAD_VALUE;
	if ((substitute & 0x80) != 0)
		substitute = kSubstitute;
	// JIS goes by way of Shift-JIS
	const uint32 table = encoding == B_JIS_CONVERSION ? uint32(B_SJIS_CONVERSION) : encoding;
	const TextConverter converter(table, toUTF8, substitute);
	TextSpan text{src, src + *srcLen, dst, dst + *dstLen};
	if (converter.IsValid()) {
		const TextStop stop = convert_span(text, encoding, toUTF8, state, substitute);
		// nothing but the beginning of a character: no more of it will come
		if (stop == TextStop::kCutOff && text.src == src && text.Put(converter.Substitute()))
			text.src = text.srcEnd;
	}
	const bool isStuck = text.src == src && *srcLen > 0;
	*srcLen = static_cast<int32>(text.src - src);
	*dstLen = static_cast<int32>(text.dst - dst);
	return converter.IsValid() && !isStuck ? B_OK : B_ERROR;
}

status_t
convert_to_utf8(uint32 srcEncoding, const char* src, int32* srcLen, char* dst, int32* dstLen,
	int32* state, char substitute)
{
	return convert(srcEncoding, true, src, srcLen, dst, dstLen, state, substitute);
}

status_t
convert_from_utf8(uint32 dstEncoding, const char* src, int32* srcLen, char* dst, int32* dstLen,
	int32* state, char substitute)
{
	return convert(dstEncoding, false, src, srcLen, dst, dstLen, state, substitute);
}
