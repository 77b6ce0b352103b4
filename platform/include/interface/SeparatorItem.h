#pragma once

#include <MenuItem.h>

//! A line between groups of items, which cannot be chosen.
class BSeparatorItem : public BMenuItem {
public:
	BSeparatorItem();

	//! Does nothing: it is never enabled.
	void SetEnabled(bool enabled) override;
};
