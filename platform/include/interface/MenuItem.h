#pragma once

#include <Archivable.h>
#include <InterfaceDefs.h>
#include <Invoker.h>
#include <Menu.h>

namespace BPrivate {
class MenuAccess;
}

/*!	A line of a menu: what is sent when the user chooses it, or a sub-menu.
	Thread: its menu's. Owner: the menu that it is in; without one its maker. It owns its message and its sub-menu. */
class BMenuItem : public BArchivable, public BInvoker {
public:
	/*!	`shortcut`: a key that, together with Command and `modifiers` (B_SHIFT_KEY, B_CONTROL_KEY, B_OPTION_KEY), invokes the item while
		the window of its menu bar is active, whether the menu is open or not; 0 for none. `message` may be NULL. */
	BMenuItem(const char* label, BMessage* message, char shortcut = 0, uint32 modifiers = 0);
	//! Its label is the menu's name.
	explicit BMenuItem(BMenu* submenu, BMessage* message = NULL);
	explicit BMenuItem(BMessage* data);
	//! Takes itself off its menu.
	~BMenuItem() override;

	static BArchivable* Instantiate(BMessage* data);
	//! `deep`: with the sub-menu.
	status_t Archive(BMessage* data, bool deep = true) const override;

	virtual void SetLabel(const char* label);
	virtual void SetEnabled(bool enabled);
	//! In a menu in radio mode, the others lose their mark. An item for which this was ever called is shown as one that can have a mark.
	virtual void SetMarked(bool marked);
	virtual void SetShortcut(char shortcut, uint32 modifiers);

	const char* Label() const;
	//! False also when its menu, or one above, is not enabled.
	bool IsEnabled() const;
	bool IsMarked() const;
	//! `modifiers` (may be NULL) has B_COMMAND_KEY in it. 0 if there is none.
	char Shortcut(uint32* modifiers = NULL) const;
	BMenu* Submenu() const;
	//! The menu that it is in, NULL if in none.
	BMenu* Menu() const;

protected:
	/*!	Sends a copy of `message`, or of its own for NULL, with "when" (int64), "source" (pointer), "index" (int32) and "be:sender" (messenger);
		in radio mode it is marked before. B_ERROR when it is not enabled, B_BAD_VALUE without a message. */
	status_t Invoke(BMessage* message = NULL) override;

private:
	friend class BMenu;
	friend class BPrivate::MenuAccess;

	void Install(BWindow* window);
	void Changed();

	int64 fId;
	char* fLabel;
	BMenu* fSubmenu;
	BMenu* fSuper;
	uint32 fModifiers;
	char fShortcut;
	bool fEnabled;
	bool fMarked;
	bool fCanBeMarked;
};

#include <SeparatorItem.h>
