#include <cstring>

#include <Entry.h>
#include <Message.h>
#include <Messenger.h>
#include <Window.h>

#include "framework/TIAPItemAccKeyFormat.h"
#include "lyrics/TDisplayMenu.h"
#include "lyrics/TTavoraDView.h"
#include "lyrics/TTavoraDWin.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/commman_codes.h"
#include "prefs/TPref.h"

// What the user does with the display view: its popup menu and the mouse.

namespace {

//! Where the mouse was on the screen when the message was made; the view may have moved since.
BPoint
screen_place(const BView* view, BPoint where)
{
	const BMessage* message = view->Looper()->CurrentMessage();
	BPoint place;
	return message != nullptr && message->FindPoint("screen_where", &place) == B_OK
		? place
		: view->ConvertToScreen(where);
}

} // namespace

void
TTavoraDView::MouseDown(BPoint where)
{
	const BMessage* message = Looper()->CurrentMessage();
	if (message->GetInt32("buttons", 0) == B_SECONDARY_MOUSE_BUTTON)
		ShowMenu(where);
	else
		TMERView::MouseDown(where);
}

void
TTavoraDView::DoubleClicked(BPoint, uint32 buttons, uint32)
{
	const TTavoraDWin* window = dynamic_cast<TTavoraDWin*>(Window());
	if (window != nullptr && buttons == B_PRIMARY_MOUSE_BUTTON)
		window->Manager()->PostMessage(kPrefItemChosen);
}

void
TTavoraDView::DragStarted(BPoint where, uint32 buttons, uint32)
{
	fMovesWindow = buttons == B_PRIMARY_MOUSE_BUTTON;
	fGrip = ConvertToScreen(where) - Window()->Frame().LeftTop();
}

void
TTavoraDView::Dragged(BPoint where)
{
	if (fMovesWindow)
		Window()->MoveTo(screen_place(this, where) - fGrip);
}

void
TTavoraDView::MakeMenu()
{
	const TTavoraDWin* window = dynamic_cast<TTavoraDWin*>(Window());
	fMenu.reset();
	if (window != nullptr)
		fMenu = std::make_unique<TDisplayMenu>(BMessenger(Window()), BMessenger(window->Manager()));
}

void
TTavoraDView::UpdateMenu()
{
	entry_ref ref;
	const bool hasSong
		= fSong.filename != nullptr && get_ref_for_path(LyricsFName().c_str(), &ref) == B_OK;
	fMenu->Update(hasSong ? &ref : nullptr, gPref->fStayOnTop);
}

void
TTavoraDView::ShowMenu(BPoint where)
{
	if (fMenu == nullptr)
		return;
	UpdateMenu();
	// The lyrics go on while it is open.
	fMenu->Go(ConvertToScreen(where), true, true, true);
}

void
TTavoraDView::ShowMenu()
{
	const BRect bounds = Bounds();
	ShowMenu(BPoint(bounds.Width() / 2, bounds.Height() / 2));
}

void
TTavoraDView::AcceleratorPressed(char key)
{
	if (fMenu == nullptr)
		return;
	UpdateMenu();
	fMenu->InvokeAccelerator(key);
}

void
TTavoraDView::LanguageChanged()
{
	MakeMenu();
	if (!fShowsLyrics)
		SongChanged();
}

void
TTavoraDView::IAPChanged(const BMessage* message)
{
	if (strcmp(message->GetString(merion::kIAPSourceItem, ""), merion::TIAPItemAccKeyFormat::kName)
		== 0)
		MakeMenu();
}
