#pragma once

#include <functional>
#include <string>

#include <Message.h>
#include <OS.h>

namespace merion {

/*!	How the user's running applications tell each other that a shared preference has changed: each owns a port whose
	name begins with "MERION_IAP:". A message of a port is the code kIAPChanged with the flattened message.
	The platform cuts names of ports at 31 bytes, which is less than the prefix and a signature; so what follows the
	prefix is a hash of the signature (FNV-1a, 64 bits) in 16 hexadecimal digits. Two copies of one application have
	ports of the same name, and are found both.
	Thread: any. Owner: TInterAppPrefs. */
class TIAPPort {
public:
	using Receiver = std::function<void(const BMessage&)>;

	/*!	`receiver` is called for each well-formed message of another application, on a thread of this object's own; it
		must not wait for who deletes this object. */
	TIAPPort(const char* signature, Receiver receiver);
	//! Nobody is called from then on, and the thread has ended. Not on that thread.
	~TIAPPort();
	TIAPPort(const TIAPPort&) = delete;
	TIAPPort& operator=(const TIAPPort&) = delete;

	//! Otherwise nothing is received; sending goes on.
	status_t InitCheck() const { return fThread >= 0 ? B_OK : fThread; }
	//! To all others. One that does not read its port misses it.
	void SendToOthers(const BMessage& message) const;

	static std::string PortName(const char* signature);

private:
	static status_t ReaderThread(void* port);
	void Read();
	bool ReadOne();

	const Receiver fReceiver;
	port_id fPort;
	thread_id fThread;
};

} // namespace merion
