/*!	An add-on that tries out its host: it notes in the file that $ADD_ON_LOG names what the front-end protocol answers, and has a
	window with a view that passes for the lyrics view: a new line every 500 ms of the song, noted in the same file's ".lines". */

#include "host/GeneralPlugin.h"
#include "host/Qubo_FrontEnd.h"
#include "host/qubo_window.h"

#include <Application.h>
#include <Message.h>
#include <MessageRunner.h>
#include <View.h>
#include <Window.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

namespace {

constexpr uint32 kMsgLook = 'look';
constexpr int32 kPriority = 10;
constexpr int32 kLineMs = 500;

template<typename... Values>
void
note(const Values&... values)
{
	std::ofstream file(getenv("ADD_ON_LOG"), std::ios::app);
	((file << values << ' '), ...) << '\n';
}

class ProbeView : public BView {
public:
	explicit ProbeView(BRect frame) : BView(frame, "TavoraDisplayerView", B_FOLLOW_ALL, B_WILL_DRAW)
	{
		SetViewColor(200, 30, 30);
		fFrontEnd.StartPolling(kPriority);
	}

	void AttachedToWindow() override
	{
		fRunner.reset(new BMessageRunner(BMessenger(this), BMessage(kMsgLook), 10000));
	}

	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override
	{
		if (strcmp(property, "CurrentLine") == 0)
			return this;
		return BView::ResolveSpecifier(message, index, specifier, form, property);
	}

	void MessageReceived(BMessage* message) override
	{
		const char* property;
		BMessage specifier;
		if (message->what == kMsgLook) {
			Look();
		} else if (message->what == B_GET_PROPERTY
			&& message->GetCurrentSpecifier(nullptr, &specifier, nullptr, &property) == B_OK
			&& strcmp(property, "CurrentLine") == 0) {
			BMessage reply(B_REPLY);
			reply.AddString("result", LineText().c_str());
			message->SendReply(&reply);
		} else
			BView::MessageReceived(message);
	}

private:
	std::string LineText() const { return fLine < 0 ? "" : "line " + std::to_string(fLine); }

	void Look()
	{
		fFrontEnd.UpdateInfo();
		fFrontEnd.SendInfoRequest();
		int32 line = fFrontEnd.InfoTitle().empty() ? -1 : fFrontEnd.Info().positionMs / kLineMs;
		if (line == fLine)
			return;
		fLine = line;
		if (line >= 0)
			std::ofstream(std::string(getenv("ADD_ON_LOG")) + ".lines", std::ios::app)
				<< line << '\n';
		BMessage notice('CLch');
		notice.AddString("CurrentLine", LineText().c_str());
		notice.AddInt32("Index", line);
		SendNotices('CLch', &notice);
	}

	Qubo_FrontEnd fFrontEnd{false, 10000};
	std::unique_ptr<BMessageRunner> fRunner;
	int32 fLine = -1;
};

class ProbePlugin : public GeneralPlugin {
public:
	ProbePlugin()
	{
		name = strdup("Probe");
		infoLine = strdup("Probe  for tests");
		fFrontEnd.StartPolling(kPriority);
	}

	~ProbePlugin() override
	{
		fEnd = true;
		if (fThread.joinable())
			fThread.join();
		note("count at the end", fFrontEnd.CountEntries());
		if (fWindow != nullptr && fWindow->Lock())
			fWindow->Quit();
		free(name);
		free(infoLine);
	}

	int32 Init() override
	{
		if (fWindow != nullptr)
			return 1;
		fWindow = new BWindow(BRect(600, 100, 799, 199), "Lyrics", B_TITLED_WINDOW, B_AVOID_FRONT);
		fWindow->AddChild(new ProbeView(fWindow->Bounds()));
		fWindow->Show();
		fThread = std::thread(&ProbePlugin::Probe, this);
		return 1;
	}

	void Cleanup() override { note("cleanup"); }
	int32 About(bool) override { return 1; }
	int32 Prefs(bool) override { return 1; }
	uint32 GetFlags() override { return 0; }

private:
	void Probe()
	{
		if (!WaitForTitle(""))
			return;
		note("info", fFrontEnd.Info().state, fFrontEnd.Info().lengthMs, fFrontEnd.InfoTitle());
		ProbePlaylist();
		ProbeScripting();
		BWindow* window;
		note("window", get_qubo_window(&window) == 0);
		std::string first(fFrontEnd.InfoTitle());
		fFrontEnd.PlayThis(1, false);
		if (WaitForTitle(first))
			note("playing", fFrontEnd.InfoTitle());
	}

	void ProbePlaylist()
	{
		int32 count = fFrontEnd.CountEntries();
		note("count", count);
		for (int32 i = -1; i <= count; i++) {
			QuboSongEntry entry;
			if (!fFrontEnd.GetEntry(&entry, i))
				note("no entry", i);
			else
				note("entry", i, entry.Filename(), entry.Title(), entry.time, entry.nr,
					entry.played);
		}
		QuboSongEntry current;
		if (get_current_song_entry(&fFrontEnd, &current))
			note("current", current.Filename());
	}

	//! The codes of playlist requests are scripting commands of the platform too.
	void ProbeScripting()
	{
		BMessage request(B_COUNT_PROPERTIES);
		BMessage reply;
		request.AddSpecifier("Window");
		BMessenger(kQuboSignature).SendMessage(&request, &reply);
		note("windows", reply.GetInt32("result", -1));
		BMessage noIndex(kQuboGetEntry);
		noIndex.AddSpecifier("Entry");
		noIndex.AddSpecifier("Playlist");
		BMessenger(kQuboSignature).SendMessage(&noIndex, &reply);
		note("entry without index", reply.HasInt32("error"), reply.HasString("title"));
	}

	//! Asks until another song than `title` plays; false at the end.
	bool WaitForTitle(const std::string& title)
	{
		while (!fEnd) {
			fFrontEnd.SendInfoRequest();
			snooze(2000);
			fFrontEnd.UpdateInfo();
			if (!fFrontEnd.InfoTitle().empty() && fFrontEnd.InfoTitle() != title)
				return true;
		}
		return false;
	}

	Qubo_FrontEnd fFrontEnd{false, 10000};
	BWindow* fWindow = nullptr;
	std::thread fThread;
	std::atomic<bool> fEnd{false};
};

} // namespace

extern "C" GeneralPlugin*
NewPlugin(PluginConstructorStruct* construct)
{
	auto plugin = new ProbePlugin;
	construct->version = 1;
	return plugin;
}
