#pragma once

#include <utility>
#include <vector>

#include <PopUpMenu.h>

class BMessenger;
class BWindow;
struct entry_ref;

/*!	The display's popup menu, with the labels of the language and the accelerators in the format that hold when it is
	made: after a change of either it is made anew. Thread: the display window's. Owner: the view that shows it. */
class TDisplayMenu : public BPopUpMenu {
public:
	/*!	`window`: gets what the display does itself (lyrics_codes.h); all else goes to the communication manager
		(commman_codes.h). */
	TDisplayMenu(const BMessenger& window, const BMessenger& manager);

	//! Shows how things are. `lyrics`: the playing song's lyrics file, whether it is there or not; null without a song.
	void Update(const entry_ref* lyrics, bool isOnTop);
	//! Does what the item with that accelerator does; nothing when there is none or it is off.
	void InvokeAccelerator(char accelerator) const;

	//! With Command, each accelerator then posts kAcceleratorPressed to the window, whose lock the caller holds.
	static void AddShortcuts(BWindow* window);

private:
	BMenuItem* AddMenuItem(
		const BMessenger& target, const char* key, uint32 what, char accelerator = 0);
	BMenu* AddSubMenu(const char* key);

	int32 fFormat; // of the accelerators
	std::vector<std::pair<char, BMenuItem*>> fAccelerators;
	BMenuItem* fPopMItemOpen;
	BMenuItem* fPopMItemStayOnTop;
};
