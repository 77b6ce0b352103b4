#pragma once

#include <DataIO.h>
#include <Message.h>
#include <string.h>
#include <vector>

namespace BPrivate {

//! The first four bytes of a flattened message, as read on a little-endian machine.
enum : uint32 {
	kNativeMagic = 0x31464d48, // "HMF1"
	kR5Magic = 'FOB1',
	kR5SwappedMagic = '1BOF',
	kDanoMagic = 'FOB2',
	kDanoSwappedMagic = '2BOF',
};

/*!	Reads exact numbers of bytes from a stream that may end anywhere. What a header announces is never taken as
	a fact: memory grows with what really comes. */
class MessageReader {
public:
	explicit MessageReader(BDataIO* stream) : fStream(stream) { }

	bool Read(void* buffer, size_t size);
	bool Read(std::vector<uint8>* bytes, size_t size);
	template<typename Number> bool Read(Number* number) { return Read(number, sizeof(Number)); }

private:
	BDataIO* fStream;
};

// The readers for what follows the magic. `message` is empty and fresh; after an error it holds anything.

status_t read_native_message(MessageReader& reader, BMessage* message);
//! `swapped`: written by a big-endian machine. The what code then stays as it is stored, as on the platform.
status_t read_r5_message(MessageReader& reader, bool swapped, BMessage* message);
status_t read_dano_message(MessageReader& reader, BMessage* message);

} // namespace BPrivate
