#include "framework/TLineReader.h"

#include <algorithm>
#include <cstring>

namespace merion {

TLineReader::TLineReader(BPositionIO* stream, size_t blockSize)
	: fStream(stream),
	  fBlockSize(blockSize),
	  fBlock(new char[blockSize])
{ }

int
TLineReader::ReadLine(char* buffer, int size)
{
	if (size <= 0)
		return 0;
	int count = 0;
	while (count < size - 1 && (fNext != fEnd || Fill())) {
		const size_t span = std::min<size_t>(fEnd - fNext, size - 1 - count);
		const void* lineFeed = memchr(fNext, '\n', span);
		const size_t taken
			= lineFeed != nullptr ? static_cast<const char*>(lineFeed) + 1 - fNext : span;
		memcpy(buffer + count, fNext, taken);
		fNext += taken;
		count += taken;
		if (lineFeed != nullptr) {
			const int end = count >= 2 && buffer[count - 2] == '\r' ? count - 2 : count - 1;
			buffer[end] = '\0';
			return count;
		}
	}
	buffer[count] = '\0';
	return count;
}

bool
TLineReader::Fill()
{
	ssize_t count = fStream->Read(fBlock.get(), fBlockSize);
	if (count < 0 && fBlockSize > 1)
		count = fStream->Read(fBlock.get(), 1);
	fNext = fBlock.get();
	fEnd = fNext + std::clamp<ssize_t>(count, 0, fBlockSize);
	return fNext != fEnd;
}

} // namespace merion
