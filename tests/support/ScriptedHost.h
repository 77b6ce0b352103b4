#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <Application.h>
#include <Message.h>

#include "host/QuboProtocol.h"

/*!	A host that answers the front-end protocol as a test says. It is the test program's application (host_main.cpp).
	Thread: messages on its own looper; the rest from the test's thread, with a lock inside. */
class ScriptedHost : public BApplication {
public:
	struct Entry {
		std::string filename;
		std::string title;
		std::string leftOut = {}; // the field that the answer lacks
	};

	ScriptedHost();
	~ScriptedHost() override;

	//! Everything as at the beginning: running, nothing in the playlist, nothing playing.
	void Reset();

	void SetPlaylist(std::vector<Entry> entries);
	//! What is told of the number of entries, -1: nothing at all; ResetCount(): the truth.
	void SetCount(int32 count);
	//! At the given question about the number of entries, counted from 1, the playlist becomes empty.
	void EmptyPlaylistAtCount(int32 question);
	//! Its information is sent in a block of `infoSize` bytes; 0: the field is left out.
	void Play(std::string_view title, int32 positionMs, size_t infoSize = sizeof(QuboInfo));

	//! Whether greetings, and requests for information, are answered at all.
	void SetAnswersHello(bool answers);
	void SetAnswersInfo(bool answers);
	//! Playlist requests are kept until they are released.
	void HoldPlaylistAnswers(bool hold);
	int32 CountHeld() const;

	//! The front-end handler ends, as when the host quits; or a new one is there.
	void GoAway();
	void ComeBack();

	//! Requests of that code received so far.
	int32 CountOf(uint32 what) const;
	//! The last request to play an entry.
	int32 PlayedIndex() const;
	bool PlayedWithFade() const;

	void MessageReceived(BMessage* message) override;
	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override;

private:
	class FrontEnd;

	void HelloReceived(BMessage* message);
	void InfoRequested(BMessage* message);
	void PlaylistRequested(BMessage* message);
	void Answer(BMessage* request);
	void AnswerCount(BMessage* reply);
	void AnswerEntry(BMessage* reply, int32 index);

	mutable std::mutex fLock;
	FrontEnd* fFrontEnd = nullptr;
	std::vector<Entry> fEntries;
	std::string fInfo;
	std::vector<uint32> fReceived;
	std::vector<std::unique_ptr<BMessage>> fHeld;
	int32 fCount = 0;
	bool fHasCount = false;
	int32 fCountQuestions = 0;
	int32 fEmptyAtCount = 0;
	bool fAnswersHello = true;
	bool fAnswersInfo = true;
	bool fHolds = false;
	int32 fPlayedIndex = -1;
	bool fPlayedWithFade = false;
};

//! The program's application.
ScriptedHost& host();
