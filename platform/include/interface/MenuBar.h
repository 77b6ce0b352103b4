#pragma once

#include <Menu.h>

namespace BPrivate {
struct MenuModel;
}

/*!	A row of menus at the top of a window. It takes the shortcuts of its items.
	Thread: with the window's lock. What is changed is shown some time later, all that one message changed at once. */
class BMenuBar : public BMenu {
public:
	//! `resizeToFit`: when it comes into a window, its height becomes what its items need.
	BMenuBar(BRect frame, const char* name,
		uint32 resizingMode = B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP,
		menu_layout layout = B_ITEMS_IN_ROW, bool resizeToFit = true);
	explicit BMenuBar(BMessage* data);

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	void AttachedToWindow() override;
	void MessageReceived(BMessage* message) override;
	void GetPreferredSize(float* width, float* height) override;

protected:
	void ShowChanges();

private:
	void Init();
	void TreeChanged() override;
	virtual void ShowModel(const BPrivate::MenuModel& model);
	void ItemChosen(BMessage* event);

	bool fChangesPosted;
};
