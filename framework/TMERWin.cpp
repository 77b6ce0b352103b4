#include "framework/TMERWin.h"

#include <cctype>

#include <AppDefs.h>
#include <Message.h>

#include "framework/framework_codes.h"
#include "framework/screen_utils.h"

namespace merion {

namespace {

constexpr uint32 kKeyModifiers = B_SHIFT_KEY | B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY;

} // namespace

TMERWin::TMERWin(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
	uint32 workspaces)
	: BWindow(frame, title, look, feel, flags, workspaces)
{ }

void
TMERWin::DispatchMessage(BMessage* message, BHandler* target)
{
	if (message->what != B_KEY_DOWN || !RunKey(message))
		BWindow::DispatchMessage(message, target);
}

void
TMERWin::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kLanguageChanged:
			LanguageChanged();
			break;
		default:
			BWindow::MessageReceived(message);
	}
}

void
TMERWin::Appear()
{
	if (!Lock())
		return;
	if (IsMinimized())
		Minimize(false);
	if (IsHidden())
		Show();
	else
		Activate();
	Unlock();
}

void
TMERWin::PlaceBeside(BRect other)
{
	MoveTo(place_beside(Frame(), other, screen_frames()));
}

void
TMERWin::SetPos(bool beside, BRect frame)
{
	if (beside)
		PlaceBeside(frame);
	else
		CenterOnScreen();
}

void
TMERWin::AddKey(uint32 key, uint32 modifiers, uint32 command)
{
	fKeys.push_back({key, modifiers & kKeyModifiers, command});
}

bool
TMERWin::RunKey(const BMessage* message)
{
	int32 rawChar;
	int32 held;
	if (message->FindInt32("raw_char", &rawChar) != B_OK
		|| message->FindInt32("modifiers", &held) != B_OK)
		return false;
	const uint32 key = rawChar < 0x80 ? std::tolower(rawChar) : rawChar;
	for (const Key& known : fKeys) {
		if (known.key == key && known.modifiers == (held & kKeyModifiers)) {
			PostMessage(known.command);
			return true;
		}
	}
	return false;
}

void
TMERWin::LanguageChanged()
{ }

bool
TMERWin::IsClosedByUser() const
{
	const BMessage* message = CurrentMessage();
	return message != nullptr && message->what == B_QUIT_REQUESTED;
}

} // namespace merion
