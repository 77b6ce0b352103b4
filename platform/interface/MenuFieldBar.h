#pragma once

#include <MenuBar.h>

//! The bar of a menu field, shown as a button; archived by this name. Its one item has the menu.
class _BMCMenuBar_ : public BMenuBar {
public:
	explicit _BMCMenuBar_(BRect frame);
	explicit _BMCMenuBar_(BMessage* data);

	static BArchivable* Instantiate(BMessage* data);

	//! Before it comes into a window.
	void Refresh() { ShowChanges(); }

private:
	void Init();
	void HandleEvent(const BMessage& event);
	void ShowModel(const BPrivate::MenuModel& model) override;
};
