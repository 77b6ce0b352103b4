#pragma once

#include <vector>

#include <Window.h>

namespace merion {

/*!	Base of the maker's windows.
	Thread: made and shown from any, otherwise as every window. Owner: its own looper. */
class TMERWin : public BWindow {
public:
	TMERWin(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
		uint32 workspaces = B_CURRENT_WORKSPACE);

	void DispatchMessage(BMessage* message, BHandler* target) override;
	void MessageReceived(BMessage* message) override;

	//! Shows the window when it is hidden or minimised; brings it to the front when it was there already.
	virtual void Appear();
	//! Moves the window beside another one's frame (place_beside()).
	void PlaceBeside(BRect other);
	//! Beside `frame`; if not `beside`, which leaves `frame` out of account, to the middle of the screen.
	void SetPos(bool beside, BRect frame);

	/*!	A key that posts `command` to the window, whatever has the focus in it: unlike AddShortcut() with any modifiers, also
		none. `key`: the only byte that the key produces, a letter in lower case; `modifiers`: of Shift, Command, Control and Option those
		that must be held, and no others. */
	void AddKey(uint32 key, uint32 modifiers, uint32 command);

	//! gLLT holds another language: the window sets its title and labels again. Does nothing here.
	virtual void LanguageChanged();

protected:
	//! Within QuitRequested(): is it the user who closes the window, by its button? The application asks without a message.
	bool IsClosedByUser() const;

private:
	struct Key {
		uint32 key;
		uint32 modifiers;
		uint32 command;
	};

	bool RunKey(const BMessage* message);

	std::vector<Key> fKeys;
};

} // namespace merion
