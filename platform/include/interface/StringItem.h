#pragma once

#include <ListItem.h>

//! A line of text.
class BStringItem : public BListItem {
public:
	explicit BStringItem(const char* text);
	~BStringItem() override;

	//! Shown after BListView::InvalidateItem().
	virtual void SetText(const char* text);
	//! NULL if it has none.
	const char* Text() const;

private:
	const char* _Label() const override;

	char* fText;
};
