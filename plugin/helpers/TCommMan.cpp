#include "plugin/helpers/TCommMan.h"

#include <Message.h>
#include <OS.h>
#include <Window.h>

#include "plugin/helpers/commman_codes.h"

namespace {

constexpr int32 kPriority = 10;
constexpr int32 kPortCapacity = 100;

} // namespace

TCommMan::TCommMan(const char* name, const char* partnerName)
	: BLooper(name, kPriority, kPortCapacity),
	  fPartnerName(partnerName)
{ }

TCommMan::~TCommMan() = default;

void
TCommMan::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kCommManConnected:
			CommManConnected(message);
			break;
		default:
			BLooper::MessageReceived(message);
	}
}

thread_id
TCommMan::Run()
{
	const thread_id thread = BLooper::Run();
	Connect();
	return thread;
}

status_t
TCommMan::Connect()
{
	std::string partnerName;
	{
		// The partner may greet this looper, which runs already, at the same moment.
		if (!Lock())
			return -1;
		partnerName = fPartnerName;
		Unlock();
	}
	const thread_id thread = find_thread(partnerName.empty() ? nullptr : partnerName.c_str());
	const BLooper* partner = thread >= 0 ? BLooper::LooperForThread(thread) : nullptr;
	if (partner == nullptr)
		return -1;

	BMessage greeting(kCommManConnected);
	greeting.AddPointer("CSCommMan", static_cast<BHandler*>(this));
	if (!Lock())
		return -1;
	fPartnerName.clear();
	fPartner = std::make_unique<BMessenger>(nullptr, partner);
	fPartner->SendMessage(&greeting);
	Unlock();
	return 0;
}

void
TCommMan::CommManConnected(BMessage* message)
{
	void* partner;
	if (fPartner == nullptr && message->FindPointer("CSCommMan", &partner) == B_OK)
		fPartner = std::make_unique<BMessenger>(static_cast<BHandler*>(partner));
}

status_t
TCommMan::SendMessage(BMessage* message)
{
	return fPartner != nullptr ? fPartner->SendMessage(message) : -1;
}

status_t
TCommMan::SendMessage(BMessage* message, BMessage* reply)
{
	if (fPartner == nullptr)
		return -1;
	return fPartner->SendMessage(message, reply, B_INFINITE_TIMEOUT, B_INFINITE_TIMEOUT);
}

void
TCommMan::CloseWindow(BWindow** window)
{
	if (*window == nullptr || !(*window)->Lock())
		return;
	(*window)->Quit();
	*window = nullptr;
}
