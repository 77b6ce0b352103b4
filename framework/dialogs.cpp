#include "framework/dialogs.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <Alert.h>
#include <Button.h>
#include <FilePanel.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <Messenger.h>
#include <OS.h>
#include <Roster.h>
#include <Window.h>

#include "framework/TLLT.h"

namespace merion {

namespace {

std::mutex sLock; // guards the rest
std::vector<BMessenger> sOpenAlerts;
bool sAreDismissed = false;

int32
count_buttons(BAlert* alert)
{
	int32 count = 0;
	while (alert->ButtonAt(count) != nullptr)
		count++;
	return count;
}

bool
register_alert(BAlert* alert)
{
	const std::lock_guard lock(sLock);
	if (!sAreDismissed)
		sOpenAlerts.push_back(BMessenger(alert));
	return !sAreDismissed;
}

void
unregister_alert(const BMessenger& alert)
{
	const std::lock_guard lock(sLock);
	std::erase(sOpenAlerts, alert);
}

// The box may just be being answered by the user; then it is gone, or takes the first answer.
void
press_last_button(const BMessenger& messenger)
{
	if (!messenger.LockTarget())
		return;
	BLooper* looper;
	messenger.Target(&looper);
	if (auto* alert = dynamic_cast<BAlert*>(looper))
		alert->ButtonAt(count_buttons(alert) - 1)->Invoke();
	looper->Unlock();
}

const char*
url_type(std::string_view url)
{
	return url.starts_with("https:") ? "application/x-vnd.Be.URL.https"
									 : "application/x-vnd.Be.URL.http";
}

status_t
open_in_browser(const char* url)
{
	const status_t status = be_roster->Launch(url_type(url), 1, &url);
	if (status == B_OK || status == B_ALREADY_RUNNING)
		return B_OK;
	// Systems without a handler of addresses still have one of pages.
	const status_t second = be_roster->Launch("text/html", 1, &url);
	return second == B_ALREADY_RUNNING ? B_OK : second;
}

} // namespace

void
set_alert_keys(BAlert* alert, const char* keys)
{
	const int32 count = count_buttons(alert);
	alert->SetShortcut(count - 1, B_ESCAPE);
	for (int32 i = 0; i < count && keys != nullptr && keys[i] != '\0'; i++) {
		const BButton* button = alert->ButtonAt(i);
		if (keys[i] != ' ' && button->Message() != nullptr)
			alert->AddShortcut(std::tolower(static_cast<unsigned char>(keys[i])), B_COMMAND_KEY,
				new BMessage(*button->Message()));
	}
}

int32
show_alert(const char* title, const char* text, const char* button1, const char* button2,
	const char* button3, const char* keys)
{
	auto* alert = new BAlert(title, text, button1, button2, button3);
	const int32 escapeAnswer = count_buttons(alert) - 1;
	set_alert_keys(alert, keys);
	const BMessenger messenger(alert);
	if (!register_alert(alert)) {
		alert->Quit(); // ours as long as it has not been shown
		return escapeAnswer;
	}
	const int32 answer = alert->Go();
	unregister_alert(messenger);
	return answer >= 0 ? answer : escapeAnswer;
}

void
dismiss_alerts()
{
	std::vector<BMessenger> open;
	{
		const std::lock_guard lock(sLock);
		sAreDismissed = true;
		open = sOpenAlerts;
	}
	for (const BMessenger& alert : open)
		press_last_button(alert);
}

void
allow_alerts()
{
	const std::lock_guard lock(sLock);
	sAreDismissed = false;
}

status_t
show_url(const char* url, const char* title, const char* failureText)
{
	const status_t status = open_in_browser(url);
	if (status != B_OK) {
		const std::string text = std::string(failureText) + url;
		show_alert(title, text.c_str(), gLLT->Text("Button_OK"));
	}
	return status;
}

void
set_file_panel_priority(BFilePanel* panel, int32 priority)
{
	BWindow* window = panel->Window();
	if (window != nullptr && window->Lock()) {
		set_thread_priority(window->Thread(), priority);
		window->Unlock();
	}
}

} // namespace merion
