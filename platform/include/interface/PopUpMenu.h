#pragma once

#include <Menu.h>
#include <memory>

namespace BPrivate {
class PopUpSession;
}

/*!	A menu that opens anywhere on the screen. */
class BPopUpMenu : public BMenu {
public:
	BPopUpMenu(const char* name, bool radioMode = true, bool labelFromMarked = true,
		menu_layout layout = B_ITEMS_IN_COLUMN);
	explicit BPopUpMenu(BMessage* data);
	//! Closes it.
	~BPopUpMenu() override;

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	/*!	Opens the menu with its left top corner at `screenPoint`, as far as the screen allows.
		Synchronous: waits until it is closed and answers the item that was chosen; NULL when none was, or when the server or the looper that
		waits is about to end. Only the calling looper waits, with what it has locked.
		Asynchronous: answers NULL at once. The choice is then dealt with by the looper that called, as a message; a thread without a looper
		has to wait all the same. A menu that is open already is closed and opened anew.
		`deliversMessage`: the item is invoked. In radio mode it is marked in any case.
		`openAnyway`: else the menu opens only while a mouse button is held down. */
	BMenuItem* Go(BPoint screenPoint, bool deliversMessage = false, bool openAnyway = false,
		bool asynchronous = false);
	//! `clickToOpen`, on the screen: with the pointer in it, the menu opens without a button too.
	BMenuItem* Go(BPoint screenPoint, bool deliversMessage, bool openAnyway, BRect clickToOpen,
		bool asynchronous = false);

private:
	friend class BPrivate::PopUpSession;

	void TreeChanged() override;
	BMenuItem* Open(BPoint where, bool deliver, bool openAnyway, BRect clickToOpen, bool wait);
	BMenuItem* Closed(int64 chosen, bool deliver);

	std::unique_ptr<BPrivate::PopUpSession> fSession; // while it is open
};
