#pragma once

#include <MenuItem.h>

//! A line between groups of items, which cannot be chosen.
class BSeparatorItem : public BMenuItem {
public:
	BSeparatorItem();
	explicit BSeparatorItem(BMessage* data);

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	//! Does nothing: it is never enabled.
	void SetEnabled(bool enabled) override;
};
