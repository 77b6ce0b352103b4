// Another one of the maker's applications.
//   inter_app_peer watch              tells each change that it hears of, "NAME=VALUE", until it is killed
//   inter_app_peer change NAME VALUE  changes a value; ends by the code 0 when that was stored
// "ready" on standard output tells that it watches.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <Application.h>

#include "framework/TInterAppPrefs.h"
#include "framework/ValueItem.h"
#include "framework/framework_codes.h"

namespace {

constexpr const char* kSignature = "application/x-vnd.MERION-TavoraEditor";

class Peer : public BApplication {
public:
	Peer() : BApplication(kSignature)
	{
		fPrefs.SetAppSignatureRef(kSignature);
		fPrefs.AddItem(new ValueItem("AccKeyFormat"));
	}

	void ReadyToRun() override { Say("ready"); }

	void MessageReceived(BMessage* message) override
	{
		if (message->what != merion::kIAPChanged) {
			BApplication::MessageReceived(message);
			return;
		}
		const char* name = "";
		message->FindString(merion::kIAPSourceItem, &name);
		int32 value = -1;
		if (fPrefs.SetValue(*message) == B_OK && fPrefs.GetValue(name, &value) == B_OK)
			Say((std::string(name) + "=" + std::to_string(value)).c_str());
	}

	int Change(const char* name, int32 value) { return fPrefs.ChangeValue(name, value) != B_OK; }

private:
	static void Say(const char* line)
	{
		puts(line);
		fflush(stdout);
	}

	merion::TInterAppPrefs fPrefs;
};

} // namespace

int
main(int argc, char** argv)
{
	Peer peer;
	if (argc == 4 && strcmp(argv[1], "change") == 0)
		return peer.Change(argv[2], atoi(argv[3]));
	peer.Run();
	return 0;
}
