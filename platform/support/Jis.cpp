#include "support/Jis.h"

#include <UTF8.h>

#include <algorithm>

namespace BPrivate {

namespace {

enum CharacterSet {
	kASCII,
	kRoman,        // ASCII with a yen sign and an overline
	kKatakana,     // half-width, one byte
	kKanji,        // JIS X 0208, two bytes
	kUnknownPairs, // two bytes, not one of ours
	kSetMask = 0x0f,
	kShiftOut = 0x10 // a flag: katakana, whatever the set is
};

constexpr uint8 kEscape = 0x1b, kSO = 0x0e, kSI = 0x0f;
constexpr size_t kPiece = 1024;
constexpr size_t kEscapeLength = 3;
// a pair that Shift-JIS will never have: becomes one substitute
constexpr uint8 kBadPair[2] = {0xfc, 0xfc};

constexpr std::string_view kToSet[] = {"\x1b(B", "\x1b(J", "\x1b(I", "\x1b$B"};

bool
is_graphic(uint8 byte)
{
	return byte >= 0x21 && byte <= 0x7e;
}

/*!	Reads JIS and writes Shift-JIS. */
class JisReader {
public:
	JisReader(const TextSpan& text, int32 state)
		: fAt(reinterpret_cast<const uint8*>(text.src)),
		  fEnd(reinterpret_cast<const uint8*>(text.srcEnd)),
		  fSet(state & kSetMask),
		  fShiftedOut((state & kShiftOut) != 0)
	{ }

	const char* Source() const { return reinterpret_cast<const char*>(fAt); }
	int32 State() const { return fSet | (fShiftedOut ? kShiftOut : 0); }
	//! At most `size` bytes, whole characters; stops before a sign that Shift-JIS lacks. Answers
	//! how many.
	size_t Read(char* buffer, size_t size);
	//! JIS-Roman's own signs, in UTF-8: what Read() stops before; consumed by Skip().
	std::string_view RomanSign() const;
	void Skip() { fAt++; }

private:
	bool ReadOne();
	bool ReadEscape();
	bool ReadPair();
	bool Designate(std::string_view sequence);
	bool Put(uint8 byte);
	bool PutPair(uint8 first, uint8 second);
	bool Take(size_t count, bool written);

	const uint8* fAt;
	const uint8* fEnd;
	int32 fSet;
	bool fShiftedOut;
	uint8* fOut = nullptr;
	uint8* fOutEnd = nullptr;
};

size_t
JisReader::Read(char* buffer, size_t size)
{
	fOut = reinterpret_cast<uint8*>(buffer);
	fOutEnd = fOut + size;
	while (fAt < fEnd && ReadOne())
		;
	return reinterpret_cast<char*>(fOut) - buffer;
}

std::string_view
JisReader::RomanSign() const
{
	if (fAt == fEnd || fSet != kRoman || fShiftedOut)
		return {};
	return *fAt == 0x5c ? "\u00a5" : *fAt == 0x7e ? "\u203e" : "";
}

//! False: the next character does not fit, is cut off or is not Shift-JIS's.
bool
JisReader::ReadOne()
{
	const uint8 byte = *fAt;
	if (byte == kEscape)
		return ReadEscape();
	if (byte == kSO || byte == kSI) {
		fShiftedOut = byte == kSO;
		return Take(1, true);
	}
	if (byte >= 0xa1 && byte <= 0xdf)
		return Take(1, Put(byte));
	if (byte >= 0x80)
		return Take(1, PutPair(kBadPair[0], kBadPair[1]));
	if (!is_graphic(byte))
		return Take(1, Put(byte));
	if (fShiftedOut || fSet == kKatakana)
		return Take(1, byte <= 0x5f ? Put(byte | 0x80) : PutPair(kBadPair[0], kBadPair[1]));
	if (fSet >= kKanji)
		return ReadPair();
	return RomanSign().empty() && Take(1, Put(byte));
}

bool
JisReader::ReadPair()
{
	if (fEnd - fAt < 2)
		return false;
	const uint8 row = fAt[0] - 0x21, cell = fAt[1] - 0x21;
	if (!is_graphic(fAt[1]) || fSet != kKanji)
		return Take(is_graphic(fAt[1]) ? 2 : 1, PutPair(kBadPair[0], kBadPair[1]));
	// two rows of JIS share a lead byte; 0x7f is left out among the second bytes
	const uint8 lead = row / 2 + (row < 62 ? 0x81 : 0xc1);
	const uint8 trail = row % 2 == 0 ? cell + 0x40 + (cell >= 0x3f) : cell + 0x9f;
	return Take(2, PutPair(lead, trail));
}

//! ESC, at most three bytes in between (ISO 2022: 0x20 to 0x2f), a final byte.
bool
JisReader::ReadEscape()
{
	const uint8* const limit = std::min(fEnd, fAt + 4);
	const uint8* at = fAt + 1;
	while (at < limit && *at >= 0x20 && *at <= 0x2f)
		at++;
	if (at == fEnd)
		return false; // cut off
	const bool isWhole = *at >= 0x30 && *at <= 0x7e;
	const std::string_view sequence(Source(), at - fAt + isWhole);
	if (isWhole && Designate(sequence))
		return Take(sequence.size(), true);
	if (!Take(sequence.size(), PutPair(kBadPair[0], kBadPair[1])))
		return false;
	// the text that follows belongs to a set that we do not have, not to the one before
	if (isWhole && sequence.size() > 2)
		fSet = sequence[1] == '$' ? kUnknownPairs : sequence[1] == '(' ? kASCII : fSet;
	return true;
}

bool
JisReader::Designate(std::string_view sequence)
{
	const std::string_view name = sequence.substr(1);
	if (name == "&@")
		return true; // announces the 1990 edition, which is the one we have
	if (name == "(B")
		fSet = kASCII;
	else if (name == "(J")
		fSet = kRoman;
	else if (name == "(I")
		fSet = kKatakana;
	else if (name == "$@" || name == "$B" || name == "$(@" || name == "$(B")
		fSet = kKanji;
	else
		return false;
	fShiftedOut = false; // whoever leaves out SI means what he designates
	return true;
}

bool
JisReader::Put(uint8 byte)
{
	if (fOut == fOutEnd)
		return false;
	*fOut++ = byte;
	return true;
}

bool
JisReader::PutPair(uint8 first, uint8 second)
{
	if (fOutEnd - fOut < 2)
		return false;
	*fOut++ = first;
	*fOut++ = second;
	return true;
}

bool
JisReader::Take(size_t count, bool written)
{
	if (written)
		fAt += count;
	return written;
}

/*!	Reads Shift-JIS and writes JIS; always leaves room to go back to ASCII. */
class JisWriter {
public:
	JisWriter(TextSpan& text, std::string_view substitute)
		: fText(text),
		  fSubstitute(substitute) { }

	//! Whole characters, as far as there is room; answers the bytes of `sjis` that were used.
	size_t Write(std::string_view sjis);
	void Finish() { SwitchTo(kASCII); }

private:
	bool WritePair(uint8 lead, uint8 trail);
	bool Put(CharacterSet set, std::string_view bytes);
	void SwitchTo(CharacterSet set);

	TextSpan& fText;
	const std::string_view fSubstitute;
	CharacterSet fSet = kASCII;
};

size_t
JisWriter::Write(std::string_view sjis)
{
	size_t at = 0;
	while (at < sjis.size()) {
		const uint8 byte = static_cast<uint8>(sjis[at]);
		const bool isPair = byte >= 0xe0 || (byte >= 0x81 && byte <= 0x9f);
		const char single = static_cast<char>(byte & 0x7f);
		const bool written = isPair && at + 1 < sjis.size()
			? WritePair(byte, static_cast<uint8>(sjis[at + 1]))
			: Put(byte < 0x80 ? kASCII : kKatakana, {&single, 1});
		if (!written)
			break;
		at += isPair ? 2 : 1;
	}
	return std::min(at, sjis.size());
}

/*!	Windows-31J has IBM's characters beyond JIS's rows and once more within them, in rows 89 to 92
	where NEC put them, in the same order: first the ideographs, in the end the small Roman numerals
	and three signs. Answers the place in those rows or -1. */
int
nec_place(int ibmPlace)
{
	if (ibmPlace < 10)
		return 362 + ibmPlace;
	if (ibmPlace >= 21 && ibmPlace <= 23)
		return 373 + ibmPlace - 21;
	return ibmPlace >= 28 && ibmPlace < 388 ? ibmPlace - 28 : -1;
}

bool
JisWriter::WritePair(uint8 lead, uint8 trail)
{
	constexpr int kCellsPerLead = 188;
	int place
		= (lead - (lead < 0xa0 ? 0x81 : 0xc1)) * kCellsPerLead + trail - 0x40 - (trail > 0x7f);
	if (lead >= 0xf0) {
		const int nec = lead >= 0xfa ? nec_place(place - (0xfa - 0xc1) * kCellsPerLead) : -1;
		if (nec < 0)
			return Put(kASCII, fSubstitute); // the user's own characters
		place = (0xed - 0xc1) * kCellsPerLead + nec;
	}
	const char pair[2]
		= {static_cast<char>(0x21 + place / 94), static_cast<char>(0x21 + place % 94)};
	return Put(kKanji, {pair, 2});
}

bool
JisWriter::Put(CharacterSet set, std::string_view bytes)
{
	const size_t needed
		= (set != fSet ? kEscapeLength : 0) + bytes.size() + (set != kASCII ? kEscapeLength : 0);
	if (needed > fText.Room())
		return false;
	SwitchTo(set);
	return fText.Put(bytes);
}

void
JisWriter::SwitchTo(CharacterSet set)
{
	if (set != fSet)
		fText.Put(kToSet[set]);
	fSet = set;
}

} // namespace

TextStop
jis_to_utf8(TextSpan& text, int32* state, char substitute)
{
	const TextConverter converter(B_SJIS_CONVERSION, true, substitute);
	char buffer[kPiece];
	while (text.src < text.srcEnd) {
		JisReader reader(text, *state);
		const size_t length = reader.Read(buffer, sizeof(buffer));
		TextSpan part{buffer, buffer + length, text.dst, text.dstEnd};
		const TextStop stop = converter.Convert(part);
		text.dst = part.dst;
		if (stop == TextStop::kFull) {
			// how much of the text what fitted was
			reader = JisReader(text, *state);
			reader.Read(buffer, part.src - buffer);
		}
		const bool moved = reader.Source() != text.src;
		text.src = reader.Source();
		*state = reader.State();
		if (stop == TextStop::kFull)
			return stop;
		if (const std::string_view sign = reader.RomanSign(); !sign.empty()) {
			if (!text.Put(sign))
				return TextStop::kFull;
			text.src++;
		} else if (!moved) {
			return TextStop::kCutOff;
		}
	}
	return TextStop::kDone;
}

TextStop
utf8_to_jis(TextSpan& text, char substitute)
{
	const TextConverter converter(B_SJIS_CONVERSION, false, substitute);
	JisWriter writer(text, converter.Substitute());
	char buffer[kPiece];
	TextStop stop;
	do {
		TextSpan part{text.src, text.srcEnd, buffer, buffer + sizeof(buffer)};
		stop = converter.Convert(part);
		const size_t length = part.dst - buffer;
		const size_t written = writer.Write({buffer, length});
		const bool isFull = written < length;
		if (isFull) {
			// how much of the text what fitted was
			part = {text.src, text.srcEnd, buffer, buffer + written};
			converter.Convert(part);
		}
		text.src = part.src;
		if (isFull) {
			writer.Finish();
			return TextStop::kFull;
		}
	} while (stop == TextStop::kFull);
	writer.Finish();
	return stop;
}

} // namespace BPrivate
