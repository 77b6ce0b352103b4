#pragma once

#include <string>

#include <Menu.h>
#include <Messenger.h>

/*!	The installed font families; the chosen one is marked. They are listed when the menu opens for the first time, and anew when others
	have been installed since; before that only the chosen one is there. A family that is not installed is listed too when it
	is the chosen one, with the family that stands in for it in brackets.
	Thread and owner: as every menu. */
class TFontFamilyMenu : public BMenu {
public:
	//! `command`: of the items' messages, which have kFontFamily.
	explicit TFontFamilyMenu(uint32 command);

	//! Marks it. Nothing is sent.
	void SetFamily(const std::string& family);

	//! Also of those that are listed later.
	status_t SetTargetForItems(BMessenger target) override;
	using BMenu::SetTargetForItems;

protected:
	bool AddDynamicItem(add_state state) override;

private:
	void AddFamily(const char* family, const char* label, int32 index);
	void ListFamilies();
	BMenuItem* FindFamily() const;

	const uint32 fCommand;
	BMessenger fTarget;
	std::string fFamily;
	bool fIsListed = false;
	bool fIsFirstUnlisted = false; // the chosen one, or one that was
};
