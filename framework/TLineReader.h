#pragma once

#include <memory>

#include <DataIO.h>

namespace merion {

/*!	Reads lines from a stream, from where it stands. With a block size of 1 it takes no byte more than the lines it
	gave; with a larger one it reads ahead, and a block that cannot be read is tried again byte by byte, so that what is
	there is read up to the byte that is not. Owner of the stream: the caller.
	Thread: not locked; one thread at a time. */
class TLineReader {
public:
	TLineReader(BPositionIO* stream, size_t blockSize);

	/*!	At most size - 1 bytes up to the end of the line, of the stream or of what can be read of it, and a terminator.
		The line feed, and a carriage return before it, are cut off. Answers the bytes taken, with the line feed; 0 at the end.
		A longer line goes on as the next. */
	int ReadLine(char* buffer, int size);

private:
	bool Fill();

	BPositionIO* fStream;
	const size_t fBlockSize;
	std::unique_ptr<char[]> fBlock;
	const char* fNext = nullptr;
	const char* fEnd = nullptr;
};

} // namespace merion
