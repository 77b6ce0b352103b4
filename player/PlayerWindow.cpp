#include "PlayerWindow.h"

#include "Deck.h"
#include "player_messages.h"
#include "settings.h"

#include <Application.h>
#include <Button.h>
#include <Entry.h>
#include <FilePanel.h>
#include <Font.h>
#include <ListView.h>
#include <Menu.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <MessageRunner.h>
#include <Path.h>
#include <ScrollView.h>
#include <Slider.h>
#include <StringItem.h>
#include <StringView.h>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace {

// Of this window's controls and menus, to itself.
constexpr uint32 kMsgPulse = 'PWpl';
constexpr uint32 kMsgOpen = 'PWop';
constexpr uint32 kMsgTogglePause = 'PWtp';
constexpr uint32 kMsgPrevious = 'PWpv';
constexpr uint32 kMsgNext = 'PWnx';
constexpr uint32 kMsgBack = 'PWbk';
constexpr uint32 kMsgForward = 'PWfw';
constexpr uint32 kMsgToStart = 'PWts';
constexpr uint32 kMsgSofter = 'PWsf';
constexpr uint32 kMsgLouder = 'PWld';
constexpr uint32 kMsgLyricsEarlier = 'PWle';
constexpr uint32 kMsgLyricsLater = 'PWll';
constexpr uint32 kMsgUsualTiming = 'PWut';
constexpr uint32 kMsgPositionDragged = 'PWpd';
constexpr uint32 kMsgPositionChosen = 'PWpc';
constexpr uint32 kMsgVolumeChosen = 'PWvc';
constexpr uint32 kMsgPlayEntry = 'PWpe'; // "index" (int32)

const BRect kFrame(100, 100, 519, 519);
constexpr float kMinWidth = 380;
constexpr float kMinHeight = 300;
constexpr float kSpace = 8;
constexpr float kTimeWidth = 110;
constexpr float kVolumeWidth = 130;
// The time is looked at when its next second is due, and every second while it stands still.
constexpr bigtime_t kPulse = 1000000;
constexpr bigtime_t kShortestPulse = 50000; // where a position waits just before a second
constexpr bigtime_t kSeekStep = 5000000;
constexpr int32 kVolumeStep = 5;
constexpr int32 kShiftStep = 10;       // ms
constexpr int32 kPositionSteps = 1000; // of the position bar
constexpr const char* kNowPlaying = "▶ ";

std::string
time_text(int32 ms)
{
	char buffer[32];
	int32 seconds = ms / 1000;
	if (seconds >= 3600)
		snprintf(buffer, sizeof(buffer), "%d:%02d:%02d", seconds / 3600, seconds / 60 % 60,
			seconds % 60);
	else
		snprintf(buffer, sizeof(buffer), "%d:%02d", seconds / 60, seconds % 60);
	return buffer;
}

//! Whether it is another text than before.
bool
set_text(BStringView* view, const std::string& text)
{
	if (view->Text() != nullptr && text == view->Text())
		return false;
	view->SetText(text.c_str());
	return true;
}

BMenuItem*
add_on_item(TextKey key, uint32 code, int32 index)
{
	auto message = new BMessage(code);
	message->AddInt32(kAddOnField, index); // "index" is the item's in its menu
	auto item = new BMenuItem(text(key), message);
	item->SetTarget(be_app);
	return item;
}

} // namespace

PlayerWindow::PlayerWindow(Deck& deck, PlayState& list, int32 volume, const BMessenger& finder)
	: BWindow(kFrame, kQuboWindowTitle, B_TITLED_WINDOW, B_ASYNCHRONOUS_CONTROLS),
	  fDeck(deck),
	  fPlaylist(list),
	  fFinder(finder)
{
	BuildMenus();
	BuildViews(fMenuBar->Frame().bottom + 1);
	SetSizeLimits(kMinWidth, 32767, kMinHeight, 32767);
	fVolume->SetValue(volume);
	TakeKeysBack();
	fPulse.reset(new BMessageRunner(BMessenger(this), BMessage(kMsgPulse), kPulse));
	UpdateAll();
}

PlayerWindow::~PlayerWindow()
{
	std::vector<BListItem*> items;
	for (int32 i = 0; i < fList->CountItems(); i++)
		items.push_back(fList->ItemAt(i));
	fList->MakeEmpty(); // looks at them once more
	for (BListItem* item : items)
		delete item;
}

// #pragma mark - views

void
PlayerWindow::BuildMenus()
{
	fMenuBar = new BMenuBar(BRect(0, 0, Bounds().right, 20), "Menus");
	auto file = new BMenu(text(kTextFileMenu));
	file->AddItem(new BMenuItem(text(kTextOpen), new BMessage(kMsgOpen), 'O'));
	file->AddSeparatorItem();
	file->AddItem(new BMenuItem(text(kTextQuit), new BMessage(B_QUIT_REQUESTED), 'Q'));
	fMenuBar->AddItem(file);
	fMenuBar->AddItem(BuildPlaybackMenu());
	fFollowMenu = new BMenu(text(kTextFollowMenu));
	AddFollowItem(text(kTextFollowNone), false, "");
	AddFollowItem(text(kTextFollowAny), true, "");
	fFollowMenu->ItemAt(0)->SetMarked(true);
	fMenuBar->AddItem(fFollowMenu);
	fAddOnsMenu = new BMenu(text(kTextAddOnsMenu));
	auto none = new BMenuItem(text(kTextNoAddOns), nullptr);
	none->SetEnabled(false);
	fAddOnsMenu->AddItem(none);
	fMenuBar->AddItem(fAddOnsMenu);
	AddChild(fMenuBar);
}

BMenu*
PlayerWindow::BuildPlaybackMenu()
{
	auto menu = new BMenu(text(kTextPlaybackMenu));
	menu->AddItem(new BMenuItem(text(kTextPlayItem), new BMessage(kMsgTogglePause), 'P'));
	menu->AddItem(new BMenuItem(text(kTextPreviousItem), new BMessage(kMsgPrevious), 'B'));
	menu->AddItem(new BMenuItem(text(kTextNextItem), new BMessage(kMsgNext), 'N'));
	menu->AddSeparatorItem();
	menu->AddItem(new BMenuItem(text(kTextBack), new BMessage(kMsgBack), 'J'));
	menu->AddItem(new BMenuItem(text(kTextForward), new BMessage(kMsgForward), 'L'));
	menu->AddItem(new BMenuItem(text(kTextToStart), new BMessage(kMsgToStart), 'H'));
	menu->AddSeparatorItem();
	menu->AddItem(new BMenuItem(text(kTextLouder), new BMessage(kMsgLouder), B_UP_ARROW));
	menu->AddItem(new BMenuItem(text(kTextSofter), new BMessage(kMsgSofter), B_DOWN_ARROW));
	menu->AddSeparatorItem();
	menu->AddItem(BuildTimingMenu());
	return menu;
}

BMenu*
PlayerWindow::BuildTimingMenu()
{
	auto menu = new BMenu(text(kTextTimingMenu));
	menu->AddItem(new BMenuItem(text(kTextLyricsEarlier), new BMessage(kMsgLyricsEarlier), '+'));
	menu->AddItem(new BMenuItem(text(kTextLyricsLater), new BMessage(kMsgLyricsLater), '-'));
	menu->AddItem(new BMenuItem(text(kTextUsualTiming), new BMessage(kMsgUsualTiming), '0'));
	return menu;
}

void
PlayerWindow::AddFollowItem(const char* label, bool on, const char* player)
{
	auto message = new BMessage(kMsgFollow);
	message->AddBool("on", on);
	message->AddString("player", player);
	auto item = new BMenuItem(label, message);
	fFollowMenu->AddItem(item);
	item->SetTarget(be_app);
}

/*!	From top to bottom: title, position and time, buttons and volume, playlist, status. */
void
PlayerWindow::BuildViews(float top)
{
	BRect bounds = Bounds();
	bounds.top = top;
	fBack = new BView(bounds, "Back", B_FOLLOW_ALL, B_WILL_DRAW);
	fBack->SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
	AddChild(fBack);
	float right = bounds.Width() - kSpace;
	float bottom = bounds.Height() - kSpace;

	BRect row(kSpace, kSpace, right, kSpace + 20);
	fTitle = new BStringView(row, "Title", "", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP);
	fTitle->SetFont(be_bold_font);
	fBack->AddChild(fTitle);

	row.OffsetTo(kSpace, row.bottom + kSpace);
	row.bottom = row.top + 24;
	row.right = right - kTimeWidth - kSpace;
	fPosition = new BSlider(row, "Position", nullptr, new BMessage(kMsgPositionChosen), 0,
		kPositionSteps, B_BLOCK_THUMB, B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP);
	fPosition->SetModificationMessage(new BMessage(kMsgPositionDragged));
	fBack->AddChild(fPosition);
	row.left = right - kTimeWidth;
	row.right = right;
	fTime = new BStringView(row, "Time", "", B_FOLLOW_RIGHT | B_FOLLOW_TOP);
	fTime->SetAlignment(B_ALIGN_RIGHT);
	fBack->AddChild(fTime);

	BPoint where(kSpace, row.bottom + kSpace);
	AddButton(fBack, where, "Previous", kTextPrevious, kMsgPrevious);
	fPlay = AddButton(fBack, where, "Play", kTextPlay, kMsgTogglePause);
	AddButton(fBack, where, "Next", kTextNext, kMsgNext);
	row.Set(right - kVolumeWidth, where.y, right, fPlay->Frame().bottom);
	fVolume = new BSlider(row, "Volume", nullptr, new BMessage(kMsgVolumeChosen), 0, 100,
		B_BLOCK_THUMB, B_FOLLOW_RIGHT | B_FOLLOW_TOP);
	fVolume->SetModificationMessage(new BMessage(kMsgVolumeChosen));
	fBack->AddChild(fVolume);

	row.Set(kSpace, fPlay->Frame().bottom + kSpace, right, bottom - 20 - kSpace);
	fList = new BListView(row, "Playlist", B_SINGLE_SELECTION_LIST, B_FOLLOW_ALL);
	fList->SetInvocationMessage(new BMessage(kMsgPlayEntry));
	auto scroll = new BScrollView("Scroll", fList, B_FOLLOW_ALL, 0, false, true);
	fBack->AddChild(scroll);
	scroll->MoveTo(row.LeftTop()); // it is the list and more
	scroll->ResizeTo(row.Width(), row.Height());

	row.Set(kSpace, bottom - 20, right, bottom);
	fStatus = new BStringView(row, "Status", "", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_BOTTOM);
	fBack->AddChild(fStatus);
}

//! At `where`, which moves on to the right.
BButton*
PlayerWindow::AddButton(BView* parent, BPoint& where, const char* name, TextKey label, uint32 code)
{
	auto button = new BButton(BRect(where, where + BPoint(80, 26)), name, text(label),
		new BMessage(code), B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW);
	parent->AddChild(button);
	where.x = button->Frame().right + kSpace;
	return button;
}

// #pragma mark - messages

void
PlayerWindow::DispatchMessage(BMessage* message, BHandler* target)
{
	if (message->what != B_KEY_DOWN || !KeyPressed(message))
		BWindow::DispatchMessage(message, target);
}

void
PlayerWindow::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMsgPulse:
		case kMsgSought:
			UpdatePosition();
			break;
		case kMsgPlayingChanged:
			UpdateAll();
			break;
		case kMsgTogglePause:
			fDeck.On().TogglePause();
			TakeKeysBack();
			break;
		case kMsgPrevious:
			fDeck.On().Previous();
			TakeKeysBack();
			break;
		case kMsgNext:
			fDeck.On().Next();
			TakeKeysBack();
			break;
		case kMsgBack:
			fDeck.On().SeekBy(-kSeekStep);
			break;
		case kMsgForward:
			fDeck.On().SeekBy(kSeekStep);
			break;
		case kMsgToStart:
			fDeck.On().SeekTo(0);
			break;
		case kMsgSofter:
			StepVolume(-kVolumeStep);
			break;
		case kMsgLouder:
			StepVolume(kVolumeStep);
			break;
		case kMsgLyricsEarlier:
			SetShift(fDeck.Shift() + kShiftStep);
			break;
		case kMsgLyricsLater:
			SetShift(fDeck.Shift() - kShiftStep);
			break;
		case kMsgUsualTiming:
			SetShift(Deck::kUsualShift);
			break;
		case kMsgPositionDragged:
			PositionDragged();
			break;
		case kMsgPositionChosen:
			PositionChosen();
			break;
		case kMsgVolumeChosen:
			VolumeChosen();
			break;
		case kMsgPlayEntry:
			EntryInvoked(message);
			break;
		case kMsgOpen:
			MItemOpenClicked();
			break;
		case B_CANCEL:
			break; // of the panel, which tells whenever it is hidden
		case B_SIMPLE_DATA:
		case B_REFS_RECEIVED:
			FilesDropped(message);
			break;
		case kMsgSetVolume:
			SetVolumeRqtd(message);
			break;
		case kMsgPlayFiles:
			PlayFilesRqtd(message);
			break;
		case kMsgFilesFound:
			FilesFound(message);
			break;
		case kMsgAddOnsLoaded:
			AddOnsLoaded(message);
			break;
		case kMsgFollowingChanged:
			FollowingChanged(message);
			break;
		case kMsgProblem:
			ProblemTold(message);
			break;
		default:
			BWindow::MessageReceived(message);
	}
}

//! The application asks on its own thread; on this one it is the user, and then the whole program is meant.
bool
PlayerWindow::QuitRequested()
{
	if (find_thread(nullptr) != Thread())
		return true;
	be_app->PostMessage(B_QUIT_REQUESTED);
	return false;
}

/*!	The keys of a player work wherever the focus is, but for those that a focused control has taken for itself. */
bool
PlayerWindow::KeyPressed(BMessage* message)
{
	const char* bytes;
	if (message->FindString("bytes", &bytes) != B_OK
		|| (message->GetInt32("modifiers", 0) & B_COMMAND_KEY) != 0)
		return false;
	switch (bytes[0]) {
		case B_SPACE:
			PostMessage(kMsgTogglePause);
			return true;
		case B_LEFT_ARROW:
			PostMessage(kMsgBack);
			return true;
		case B_RIGHT_ARROW:
			PostMessage(kMsgForward);
			return true;
		case B_HOME:
			PostMessage(kMsgToStart);
			return true;
		case B_PAGE_UP:
			PostMessage(kMsgPrevious);
			return true;
		case B_PAGE_DOWN:
			PostMessage(kMsgNext);
			return true;
		case '+':
			PostMessage(kMsgLyricsEarlier);
			return true;
		case '-':
			PostMessage(kMsgLyricsLater);
			return true;
		default:
			return false;
	}
}

//! After a control was used its own keys (the space bar presses a button) give way to the player's.
void
PlayerWindow::TakeKeysBack()
{
	fBack->MakeFocus();
}

void
PlayerWindow::PositionDragged()
{
	fDragging = true;
}

void
PlayerWindow::PositionChosen()
{
	fDragging = false;
	bigtime_t length = fDeck.State().Info().lengthMs * bigtime_t(1000);
	fDeck.On().SeekTo(length * fPosition->Value() / kPositionSteps);
}

void
PlayerWindow::VolumeChosen()
{
	fDeck.On().SetVolume(fVolume->Value());
	set_text(fStatus, text(kTextVolume, std::to_string(fVolume->Value())));
}

void
PlayerWindow::SetVolumeRqtd(const BMessage* message)
{
	int32 percent;
	if (message->FindInt32("volume", &percent) != B_OK)
		return;
	fVolume->SetValue(percent);
	VolumeChosen();
}

void
PlayerWindow::StepVolume(int32 step)
{
	if (fFollowing)
		return; // the other player's volume is its own
	fVolume->SetValue(std::clamp<int32>(fVolume->Value() + step, 0, 100));
	VolumeChosen();
}

void
PlayerWindow::SetShift(int32 ms)
{
	fDeck.SetShift(ms);
	const std::string shift = std::to_string(fDeck.Shift());
	const bool isKept = set_int_setting(kShiftSetting, fDeck.Shift()) == B_OK;
	set_text(fStatus, text(isKept ? kTextTiming : kTextTimingNotKept, shift));
}

void
PlayerWindow::EntryInvoked(BMessage* message)
{
	int32 index;
	if (message->FindInt32("index", &index) == B_OK)
		fDeck.On().Play(index);
	TakeKeysBack();
}

//! The panel sends what was chosen as if it had been dropped.
void
PlayerWindow::MItemOpenClicked()
{
	if (fOpenPanel == nullptr) {
		BMessenger target(this);
		fOpenPanel.reset(
			new BFilePanel(B_OPEN_PANEL, &target, nullptr, B_FILE_NODE | B_DIRECTORY_NODE));
	}
	fOpenPanel->Show();
}

//! They go to the end of the list, and play when nothing does.
void
PlayerWindow::FilesDropped(BMessage* message)
{
	BMessage find(kMsgFindFiles);
	entry_ref ref;
	for (int32 i = 0; message->FindRef("refs", i, &ref) == B_OK; i++) {
		if (BPath path(&ref); path.InitCheck() == B_OK)
			find.AddString("path", path.Path());
	}
	fFinder.SendMessage(&find, this);
}

//! They go to the end of the list and play at once, whatever does now. The user is led here, who may have forgotten this window.
void
PlayerWindow::PlayFilesRqtd(const BMessage* message)
{
	int32 value;
	SetVolumeRqtd(message);
	if (message->FindInt32("shift", &value) == B_OK)
		fDeck.SetShift(value);
	BMessage find(*message);
	find.what = kMsgFindFiles;
	find.AddBool("at once", true);
	fFinder.SendMessage(&find, this);
	Activate();
}

void
PlayerWindow::FilesFound(const BMessage* message)
{
	UpdateAll();
	be_app->PostMessage(kMsgListChanged);
	const char* missing;
	for (int32 i = 0; message->FindString("missing", i, &missing) == B_OK; i++)
		set_text(fStatus, text(kTextCannotPlay, missing, text(kTextReasonNotThere)));
	int32 first;
	const bool plays = fPlaylist.Info().state != PlayState::kStopped && !fFollowing;
	if (message->FindInt32("first", &first) == B_OK
		&& (message->GetBool("at once", false) || !plays))
		PlayOwn(first, message->GetInt64("start", 0));
}

//! A song of the playlist, which ends following.
void
PlayerWindow::PlayOwn(int32 index, bigtime_t start)
{
	if (!fFollowing) {
		fDeck.On().Play(index, false, start);
		return;
	}
	BMessage message(kMsgFollow);
	message.AddBool("on", false);
	message.AddInt32("play", index);
	message.AddInt64("start", start);
	be_app->PostMessage(&message);
}

void
PlayerWindow::AddOnsLoaded(BMessage* message)
{
	const char* name;
	for (int32 i = 0; message->FindString("name", i, &name) == B_OK; i++) {
		if (i == 0)
			delete fAddOnsMenu->RemoveItem(int32(0)); // "No add-ons"
		auto menu = new BMenu(name);
		menu->AddItem(add_on_item(kTextShow, kMsgShowAddOn, i));
		if (message->GetBool("prefs", i, false))
			menu->AddItem(add_on_item(kTextPreferences, kMsgAddOnPreferences, i));
		if (message->GetBool("about", i, false))
			menu->AddItem(add_on_item(kTextAbout, kMsgAboutAddOn, i));
		fAddOnsMenu->AddItem(menu);
	}
}

void
PlayerWindow::ProblemTold(BMessage* message)
{
	fStatus->SetText(message->GetString("text", ""));
}

void
PlayerWindow::FollowingChanged(BMessage* message)
{
	const std::string text = message->GetString("text", "");
	fFollowing = message->GetBool("on", false);
	fCanSeek = !fFollowing || message->GetBool("seeks", false);
	if (text != std::exchange(fFollowText, text))
		set_text(fStatus, text);
	if (fVolume->IsEnabled() == fFollowing)
		fVolume->SetEnabled(!fFollowing);
	UpdateFollowMenu(message);
	UpdateAll();
}

//! Only when something in it is another: it may be open.
void
PlayerWindow::UpdateFollowMenu(const BMessage* message)
{
	const std::string pinned = message->GetString("pinned", "");
	std::vector<std::string> players;
	const char* player;
	for (int32 i = 0; message->FindString("player", i, &player) == B_OK; i++)
		players.push_back(player);
	const int32 none = 0;
	const int32 any = 1;
	const int32 first = 2;
	bool same = fFollowMenu->CountItems() == first + static_cast<int32>(players.size());
	for (size_t i = 0; same && i < players.size(); i++)
		same = players[i] == fFollowMenu->ItemAt(first + static_cast<int32>(i))->Label();
	if (!same) {
		fFollowMenu->RemoveItems(first, fFollowMenu->CountItems() - first, true);
		for (const std::string& name : players)
			AddFollowItem(name.c_str(), true, name.c_str());
	}
	fFollowMenu->ItemAt(none)->SetMarked(!fFollowing);
	fFollowMenu->ItemAt(any)->SetMarked(fFollowing && pinned.empty());
	for (size_t i = 0; i < players.size(); i++)
		fFollowMenu->ItemAt(first + static_cast<int32>(i))
			->SetMarked(fFollowing && pinned == players[i]);
}

// #pragma mark - what is shown

void
PlayerWindow::UpdateAll()
{
	QuboInfo info = fDeck.State().Info();
	std::string title = info.title;
	SetTitle(title.empty() ? kQuboWindowTitle : (kQuboWindowTitle + (" – " + title)).c_str());
	const std::string nothing = fFollowing ? fFollowText : text(kTextDropHere);
	set_text(fTitle, title.empty() ? nothing : title);
	fPlay->SetLabel(text(info.state == PlayState::kPlaying ? kTextPause : kTextPlay));
	UpdateList();
	UpdatePosition();
}

void
PlayerWindow::SetNextPulse(const QuboInfo& info)
{
	bigtime_t interval = kPulse;
	if (info.state == PlayState::kPlaying)
		interval = std::max(kPulse - info.positionMs * bigtime_t(1000) % kPulse, kShortestPulse);
	fPulse->SetInterval(interval);
}

//!	The bar moves with the seconds: to draw it more often would cost as much as a tick of the lyrics.
void
PlayerWindow::UpdatePosition()
{
	QuboInfo info = fDeck.State().Info();
	SetNextPulse(info);
	// What stays as it is does not wake the display server: while paused that is all.
	const bool hasLength = info.lengthMs > 0;
	const bool canSeek = hasLength && fCanSeek && info.state != PlayState::kStopped;
	if (canSeek != fPosition->IsEnabled())
		fPosition->SetEnabled(canSeek);
	if (!set_text(fTime, time_text(info.positionMs) + " / " + time_text(info.lengthMs)))
		return;
	if (!fDragging && hasLength)
		fPosition->SetValue(
			static_cast<int32>(int64(info.positionMs) * kPositionSteps / info.lengthMs));
}

void
PlayerWindow::UpdateList()
{
	int32 current = fDeck.State().CurrentIndex();
	PlaylistEntry entry;
	for (int32 i = fList->CountItems() - 1; i >= fDeck.State().CountEntries(); i--)
		delete fList->RemoveItem(i);
	for (int32 i = 0; fDeck.State().GetEntry(i, entry); i++) {
		std::string label = (i == current ? kNowPlaying : "") + entry.title;
		auto item = static_cast<BStringItem*>(fList->ItemAt(i));
		if (item == nullptr) {
			fList->AddItem(new BStringItem(label.c_str()));
		} else if (label != item->Text()) {
			item->SetText(label.c_str());
			fList->InvalidateItem(i);
		}
	}
}
