#include "lyrics/TTavoraDWin.h"

#include <algorithm>
#include <cmath>

#include <AppDefs.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <Messenger.h>
#include <OS.h>

#include "framework/TLLT.h"
#include "host/qubo_window.h"
#include "lyrics/TDisplayMenu.h"
#include "lyrics/TTavoraDView.h"
#include "lyrics/lyrics_codes.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/TWMFilter.h"
#include "plugin/helpers/commman_codes.h"
#include "plugin/helpers/settings_files.h"
#include "plugin/helpers/window_feel.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"

namespace {

constexpr int32 kMenuKeyCode = 0x68; // of the keyboard's menu key
constexpr int8 kControlC = 0x03;     // its byte, on keyboards with other letters too
constexpr float kMinWidth = 80;
constexpr float kMinHeight = 24;
constexpr float kMaxSize = 16384;
constexpr bigtime_t kReportTime = 5000000; // a move that is not reported by then never is

//! Control+C, which many are used to; Command+C is the window's shortcut.
bool
is_copy_key(const BMessage* message)
{
	constexpr uint32 kOthers = B_COMMAND_KEY | B_OPTION_KEY;
	const uint32 modifiers = message->GetInt32("modifiers", 0);
	return (modifiers & B_CONTROL_KEY) && !(modifiers & kOthers)
		&& (message->GetInt32("raw_char", 0) == 'c' || message->GetInt8("byte", 0) == kControlC);
}

// A settings file may hold any numbers, and some that are none.
BRect
usable_frame(BRect frame)
{
	const BRect fallback(5, 24, 300, 100);
	const auto isUsable = [](float number) { return std::fabs(number) <= kMaxSize; };
	if (!isUsable(frame.left) || !isUsable(frame.top) || !isUsable(frame.right)
		|| !isUsable(frame.bottom))
		return fallback;
	frame.right = frame.left + std::max(frame.Width(), kMinWidth);
	frame.bottom = frame.top + std::max(frame.Height(), kMinHeight);
	return frame;
}

} // namespace

TTavoraDWin::TTavoraDWin(BRect frame, TCommMan* manager)
	: TMERWin(usable_frame(frame), gLLT->Text("Win_Title_Display"), B_TITLED_WINDOW_LOOK,
		B_NORMAL_WINDOW_FEEL, B_AVOID_FRONT | B_ASYNCHRONOUS_CONTROLS),
	  fManager(manager),
	  fView(new TTavoraDView(Bounds()))
{
	SetSizeLimits(kMinWidth, kMaxSize, kMinHeight, kMaxSize);
	AddChild(fView);
	TDisplayMenu::AddShortcuts(this);
	AddShortcut('C', 0, new BMessage(B_COPY));
	set_proper_feel(this);
	if (gExitState->Version().empty() || !merion::is_on_screen(Frame(), merion::screen_frames()))
		OpenBesideHost();
	WatchHostWindow();
	RememberFrame();
}

TTavoraDWin::~TTavoraDWin()
{
	LeaveHostWindow();
}

void
TTavoraDWin::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kHostWindowMoved:
			HostWindowMoved();
			break;
		case kStayOnTopItemClicked:
			PopMItemStayOnTopClicked();
			break;
		case kPositionItemClicked:
			PopMItemPositionClicked(static_cast<merion::side>(message->GetInt32(kItemNumber, 0)));
			break;
		case kSizeItemClicked:
			PopMItemSizeClicked(message->GetInt32(kItemNumber, kHostWidth));
			break;
		case kHideItemClicked:
			PopMItemHideClicked();
			break;
		case kAcceleratorPressed:
			fView->AcceleratorPressed(message->GetInt8("Key", 0));
			break;
		case B_UNMAPPED_KEY_DOWN:
			if (message->GetInt32("key", 0) == kMenuKeyCode)
				fView->ShowMenu();
			break;
		case B_KEY_DOWN:
			if (!is_copy_key(message)) {
				TMERWin::MessageReceived(message);
				break;
			}
			[[fallthrough]];
		case B_COPY:
			fView->CopyCurrentLine();
			break;
		case kPrefStayOnTopChanged:
			set_proper_feel(this);
			break;
		case kPrefAppearanceChanged:
			fView->PrefAppearanceChanged();
			break;
		case kPrefDoubleBufferingChanged:
			fView->PrefDoubleBufferingChanged();
			break;
		case kIAPChanged:
			fView->IAPChanged(message);
			break;
		default:
			TMERWin::MessageReceived(message);
	}
}

void
TTavoraDWin::Appear()
{
	if (!Lock())
		return;
	// The host's window may have come, or be another one, since the last time.
	LeaveHostWindow();
	WatchHostWindow();
	Unlock();
	TMERWin::Appear();
}

bool
TTavoraDWin::QuitRequested()
{
	// The application asks by calling, the user's close button by a message.
	const BMessage* message = CurrentMessage();
	if (message == nullptr || message->what != B_QUIT_REQUESTED)
		return true;
	PopMItemHideClicked();
	return false;
}

void
TTavoraDWin::SetSongTitle(std::string_view song)
{
	fSongTitle = song;
	std::string title(gLLT->Text("Win_Title_Display"));
	if (!song.empty())
		title.append(" – ").append(song);
	if (title != Title())
		SetTitle(title.c_str());
}

void
TTavoraDWin::PopMItemStayOnTopClicked()
{
	gPref->fStayOnTop = !gPref->fStayOnTop;
	set_proper_feel(this);
	save_pref(false);
	fManager->PostMessage(kStayOnTopItemChanged);
}

//! The user has placed it: it keeps that distance from now on.
void
TTavoraDWin::PopMItemPositionClicked(merion::side side)
{
	BRect host;
	if (get_qubo_win_frame(&host) != 0)
		return;
	fOwnMoves.clear();
	MoveTo(merion::place_at_side(Frame(), host, side, merion::screen_frames()));
}

void
TTavoraDWin::PopMItemSizeClicked(int32 lines)
{
	BRect host;
	if (lines > 0)
		ResizeTo(Frame().Width(), fView->HeightOfLines(lines));
	else if (get_qubo_win_frame(&host) == 0)
		ResizeTo(host.Width(), Frame().Height());
	MoveTo(merion::keep_on_screen(Frame(), merion::screen_frames()));
}

void
TTavoraDWin::PopMItemHideClicked()
{
	if (!IsHidden())
		Hide();
}

void
TTavoraDWin::LanguageChanged()
{
	SetSongTitle(std::string(fSongTitle));
	fView->LanguageChanged();
}

void
TTavoraDWin::OpenBesideHost()
{
	BRect host;
	if (get_qubo_win_frame(&host) == 0)
		PlaceBeside(host);
	else
		MoveTo(merion::keep_on_screen(Frame(), merion::screen_frames()));
}

void
TTavoraDWin::WatchHostWindow()
{
	BWindow* host;
	if (get_qubo_window(&host) != 0 || !host->Lock())
		return;
	fHostWindow = host;
	fFilter = new TWMFilter(BMessenger(this));
	host->AddFilter(fFilter);
	host->Unlock();
	if (!fHasOffset)
		RememberOffset();
}

void
TTavoraDWin::LeaveHostWindow()
{
	// A window that is gone has taken the filter with it; another one in its place does not know the filter.
	if (fHostWindow != nullptr && fHostWindow->Lock()) {
		if (fHostWindow->RemoveFilter(fFilter))
			delete fFilter;
		fHostWindow->Unlock();
	}
	fHostWindow = nullptr;
	fFilter = nullptr;
}

void
TTavoraDWin::HostWindowMoved()
{
	BRect host;
	if (!fHasOffset || get_qubo_win_frame(&host) != 0)
		return;
	// A notice that comes late must not undo what the user has done meanwhile.
	if (host.LeftTop() == fHostPlace)
		return;
	fHostPlace = host.LeftTop();
	BRect frame = Frame();
	frame.OffsetTo(fHostPlace + fOffset);
	const BPoint place = merion::keep_on_screen(frame, merion::screen_frames());
	if (place == Frame().LeftTop())
		return;
	ForgetOldMoves();
	fOwnMoves.push_back({place, system_time()});
	MoveTo(place);
	RememberFrame();
}

void
TTavoraDWin::FrameMoved(BPoint newPosition)
{
	if (!IsOwnMove(newPosition)) {
		fOwnMoves.clear();
		RememberOffset();
	}
	RememberFrame();
	TMERWin::FrameMoved(newPosition);
}

//!	Of moves in quick succession each may be reported several times, or not at all, and an older one after a newer one.
bool
TTavoraDWin::IsOwnMove(BPoint position)
{
	ForgetOldMoves();
	return std::any_of(fOwnMoves.begin(), fOwnMoves.end(),
		[position](const OwnMove& move) { return move.place == position; });
}

void
TTavoraDWin::ForgetOldMoves()
{
	while (!fOwnMoves.empty() && system_time() - fOwnMoves.front().when > kReportTime)
		fOwnMoves.pop_front();
}

void
TTavoraDWin::FrameResized(float newWidth, float newHeight)
{
	RememberFrame();
	TMERWin::FrameResized(newWidth, newHeight);
}

void
TTavoraDWin::RememberOffset()
{
	BRect host;
	if (get_qubo_win_frame(&host) != 0)
		return;
	fHostPlace = host.LeftTop();
	fOffset = Frame().LeftTop() - fHostPlace;
	fHasOffset = true;
}

void
TTavoraDWin::RememberFrame()
{
	gExitState->SetWindowFrame(Frame());
}
