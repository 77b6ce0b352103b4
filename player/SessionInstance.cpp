#include "SessionInstance.h"

#include "long_messages.h"

#include <Message.h>

#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr bigtime_t kPatience = 3000000; // of a sender
constexpr bigtime_t kRetryTime = 20000;
constexpr bigtime_t kReplyTime = 1000000; // for a sender to take its answer
constexpr int32 kCapacity = 20;
constexpr uint32 kNotNow = 'QInn'; // instead of an answer
// int64: until when the sender waits; all processes have one system_time()
constexpr const char* kEndField = "qubo:end";

std::string
variable(const char* name)
{
	const char* value = getenv(name);
	return value != nullptr ? value : "";
}

/*!	A name for the display, of letters and digits: two displays are two sessions, though their folder may be one. */
std::string
display_name()
{
	std::string display = variable("DISPLAY");
	if (display.empty())
		display = variable("WAYLAND_DISPLAY");
	else if (const size_t dot = display.rfind('.');
			 dot != std::string::npos && display.rfind(':') < dot)
		display.erase(dot); // of one display's screens
	return std::to_string(std::hash<std::string>()(display));
}

std::string
lock_path(const std::string& session)
{
	std::string folder = variable("XDG_RUNTIME_DIR");
	if (folder.empty() || folder[0] != '/')
		folder = "/tmp";
	return folder + "/qubo-" + std::to_string(geteuid()) + '-' + session + ".lock";
}

//! The file whose lock is the claim; -1 if there can be none.
int
open_lock(const std::string& path)
{
	const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
	struct stat info;
	if (file < 0 || (fstat(file, &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == geteuid()))
		return file;
	close(file);
	return -1;
}

//! The one before may have taken it away between our opening and locking it.
bool
is_still_there(int file)
{
	struct stat info;
	return fstat(file, &info) == 0 && info.st_nlink > 0;
}

std::string
port_name(const std::string& session)
{
	return "Qubo " + session;
}

std::string
reply_port_name(int32 sender)
{
	return "Qubo reply " + std::to_string(sender);
}

} // namespace

SessionInstance::SessionInstance() : fSession(display_name()), fLockPath(lock_path(fSession)) { }

SessionInstance::~SessionInstance()
{
	Stop();
	if (fIsFirst)
		unlink(fLockPath.c_str());
	if (fLock >= 0)
		close(fLock);
}

SessionInstance::Role
SessionInstance::ClaimOrSend(const BMessage& request, BMessage& reply)
{
	const bigtime_t end = system_time() + kPatience;
	do {
		fLock = open_lock(fLockPath);
		if (fLock < 0)
			return kAlone;
		if (Claim())
			return kFirst;
		if (SendOnce(request, reply, end))
			return kAnswered;
		close(std::exchange(fLock, -1));
		snooze(kRetryTime);
	} while (system_time() < end);
	return kAlone;
}

bool
SessionInstance::Send(const BMessage& request, BMessage& reply)
{
	return SendOnce(request, reply, system_time() + kPatience);
}

bool
SessionInstance::Claim()
{
	if (flock(fLock, LOCK_EX | LOCK_NB) != 0 || !is_still_there(fLock))
		return false;
	fIsFirst = true;
	fPort = create_port(kCapacity, port_name(fSession).c_str());
	return true;
}

bool
SessionInstance::SendOnce(const BMessage& request, BMessage& reply, bigtime_t end)
{
	const port_id port = find_port(port_name(fSession).c_str());
	if (port < 0)
		return false;
	const int32 self = getpid();
	const port_id replyPort = create_port(kCapacity, reply_port_name(self).c_str());
	BMessage message(request);
	message.AddInt64(kEndField, end);
	bool isAnswered = false;
	if (send_long_message(port, self, message, end) == B_OK) {
		LongMessageReader reader;
		isAnswered = reader.ReadNext(replyPort, end) && reader.Unflatten(reply) == B_OK
			&& reply.what != kNotNow;
	}
	delete_port(replyPort);
	return isAnswered;
}

// #pragma mark - the first one

void
SessionInstance::Start(Answer answer)
{
	if (fPort < 0)
		return;
	fAnswer = std::move(answer);
	fThread = spawn_thread(ThreadEntry, "Qubo session", B_NORMAL_PRIORITY, this);
	resume_thread(fThread);
}

void
SessionInstance::Stop()
{
	fStopping = true;
	if (fPort >= 0)
		close_port(fPort); // wakes the thread, which answers what has come until then
	status_t result;
	if (fThread >= 0)
		wait_for_thread(std::exchange(fThread, -1), &result);
	if (fPort >= 0)
		delete_port(std::exchange(fPort, -1));
}

status_t
SessionInstance::ThreadEntry(void* self)
{
	static_cast<SessionInstance*>(self)->Run();
	return B_OK;
}

void
SessionInstance::Run()
{
	LongMessageReader reader;
	while (reader.ReadNext(fPort, B_INFINITE_TIMEOUT)) {
		BMessage request;
		BMessage reply;
		// who has given up has played it itself
		if (reader.Unflatten(request) != B_OK || request.GetInt64(kEndField, 0) < system_time())
			continue;
		if (fStopping || !fAnswer(request, reply))
			reply = BMessage(kNotNow);
		const port_id replyPort = find_port(reply_port_name(reader.Sender()).c_str());
		if (replyPort >= 0) // else it has given up
			send_long_message(replyPort, getpid(), reply, system_time() + kReplyTime);
	}
}
