#include "support/ScriptedHost.h"

#include <algorithm>
#include <cstring>

ScriptedHost&
host()
{
	return *static_cast<ScriptedHost*>(be_app);
}

/*!	What the host's answer to a greeting leads to. */
class ScriptedHost::FrontEnd : public BLooper {
public:
	explicit FrontEnd(ScriptedHost* host) : BLooper("ScriptedHost front-end"), fHost(host) { }

	void MessageReceived(BMessage* message) override
	{
		if (message->what == kQuboInfo)
			fHost->InfoRequested(message);
		else
			BLooper::MessageReceived(message);
	}

private:
	ScriptedHost* fHost;
};

ScriptedHost::ScriptedHost() : BApplication(kQuboSignature)
{
	Reset();
}

ScriptedHost::~ScriptedHost()
{
	GoAway();
}

void
ScriptedHost::Reset()
{
	GoAway();
	ComeBack();
	SetPlaylist({});
	Play("", 0);
	HoldPlaylistAnswers(false);
	std::lock_guard locker(fLock);
	fHasCount = false;
	fCountQuestions = 0;
	fEmptyAtCount = 0;
	fAnswersHello = true;
	fAnswersInfo = true;
	fPlayedIndex = -1;
	fReceived.clear();
}

void
ScriptedHost::SetPlaylist(std::vector<Entry> entries)
{
	std::lock_guard locker(fLock);
	fEntries = std::move(entries);
}

void
ScriptedHost::SetCount(int32 count)
{
	std::lock_guard locker(fLock);
	fCount = count;
	fHasCount = true;
}

void
ScriptedHost::EmptyPlaylistAtCount(int32 question)
{
	std::lock_guard locker(fLock);
	fEmptyAtCount = fCountQuestions + question;
}

void
ScriptedHost::Play(std::string_view title, int32 positionMs, size_t infoSize)
{
	QuboInfo info{};
	info.state = title.empty() ? 0 : 1;
	info.positionMs = positionMs;
	memcpy(info.title, title.data(), std::min(title.size(), sizeof(info.title)));
	std::lock_guard locker(fLock);
	fInfo.assign(reinterpret_cast<const char*>(&info), sizeof(info));
	fInfo.resize(infoSize, 'X');
}

void
ScriptedHost::SetAnswersHello(bool answers)
{
	std::lock_guard locker(fLock);
	fAnswersHello = answers;
}

void
ScriptedHost::SetAnswersInfo(bool answers)
{
	std::lock_guard locker(fLock);
	fAnswersInfo = answers;
}

void
ScriptedHost::HoldPlaylistAnswers(bool hold)
{
	std::vector<std::unique_ptr<BMessage>> released;
	{
		std::lock_guard locker(fLock);
		fHolds = hold;
		if (!hold)
			released.swap(fHeld);
	}
	for (const auto& request : released)
		Answer(request.get());
}

int32
ScriptedHost::CountHeld() const
{
	std::lock_guard locker(fLock);
	return fHeld.size();
}

void
ScriptedHost::GoAway()
{
	FrontEnd* frontEnd = nullptr;
	{
		std::lock_guard locker(fLock);
		std::swap(frontEnd, fFrontEnd);
	}
	if (frontEnd != nullptr && frontEnd->Lock())
		frontEnd->Quit();
}

void
ScriptedHost::ComeBack()
{
	FrontEnd* frontEnd = new FrontEnd(this);
	frontEnd->Run();
	std::lock_guard locker(fLock);
	fFrontEnd = frontEnd;
}

int32
ScriptedHost::CountOf(uint32 what) const
{
	std::lock_guard locker(fLock);
	return std::count(fReceived.begin(), fReceived.end(), what);
}

int32
ScriptedHost::PlayedIndex() const
{
	std::lock_guard locker(fLock);
	return fPlayedIndex;
}

bool
ScriptedHost::PlayedWithFade() const
{
	std::lock_guard locker(fLock);
	return fPlayedWithFade;
}

void
ScriptedHost::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kQuboHello:
			HelloReceived(message);
			break;
		case kQuboCountEntries:
		case kQuboGetEntry:
		case kQuboPlayEntry:
			PlaylistRequested(message);
			break;
		default:
			BApplication::MessageReceived(message);
	}
}

BHandler*
ScriptedHost::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	if (strcmp(property, "Playlist") == 0) {
		message->PopSpecifier();
		return this;
	}
	if (strcmp(property, "Entry") == 0)
		return this;
	return BApplication::ResolveSpecifier(message, index, specifier, form, property);
}

void
ScriptedHost::HelloReceived(BMessage* message)
{
	BMessage reply(kQuboHello);
	{
		std::lock_guard locker(fLock);
		fReceived.push_back(message->what);
		if (!fAnswersHello || fFrontEnd == nullptr)
			return;
		reply.AddMessenger("Msgr", BMessenger(fFrontEnd));
	}
	message->SendReply(&reply);
}

void
ScriptedHost::InfoRequested(BMessage* message)
{
	BMessage reply(kQuboInfo);
	{
		std::lock_guard locker(fLock);
		fReceived.push_back(message->what);
		if (!fAnswersInfo)
			return;
		if (!fInfo.empty())
			reply.AddData("Info", B_STRING_TYPE, fInfo.data(), fInfo.size(), false);
	}
	message->SendReply(&reply);
}

void
ScriptedHost::PlaylistRequested(BMessage* message)
{
	{
		std::lock_guard locker(fLock);
		fReceived.push_back(message->what);
		if (fHolds) {
			fHeld.emplace_back(DetachCurrentMessage());
			return;
		}
	}
	Answer(message);
}

void
ScriptedHost::Answer(BMessage* request)
{
	BMessage reply(B_REPLY);
	{
		std::lock_guard locker(fLock);
		BMessage specifier;
		int32 current;
		int32 index = -1;
		request->GetCurrentSpecifier(&current, &specifier);
		specifier.FindInt32("index", &index);
		if (request->what == kQuboCountEntries)
			AnswerCount(&reply);
		else if (request->what == kQuboGetEntry)
			AnswerEntry(&reply, index);
		else {
			fPlayedIndex = index;
			fPlayedWithFade = request->GetBool("Fade");
			return;
		}
	}
	request->SendReply(&reply);
}

void
ScriptedHost::AnswerCount(BMessage* reply)
{
	if (++fCountQuestions == fEmptyAtCount)
		fEntries.clear();
	const int32 count = fHasCount ? fCount : static_cast<int32>(fEntries.size());
	if (count >= 0)
		reply->AddInt32("result", count);
}

void
ScriptedHost::AnswerEntry(BMessage* reply, int32 index)
{
	if (index < 0 || index >= static_cast<int32>(fEntries.size()))
		return;
	const Entry& entry = fEntries[index];
	reply->AddString("filename", entry.filename.c_str());
	reply->AddString("title", entry.title.c_str());
	reply->AddInt32("time", 100 + index);
	reply->AddBool("played", index % 2 == 1);
	reply->AddInt32("nr", index);
	if (!entry.leftOut.empty())
		reply->RemoveName(entry.leftOut.c_str());
}
