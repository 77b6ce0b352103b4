#pragma once

#include <Archivable.h>
#include <SupportDefs.h>

class BListView;

/*!	A line of a list. Thread: the list's, once it is in one. Owner: its maker; a list deletes no items. */
class BListItem : public BArchivable {
public:
	BListItem();
	~BListItem() override;

	//! Of the item alone: the list learns of it by BListView::Select() only.
	void Select();
	void Deselect();
	bool IsSelected() const;
	//! The user can select only what is enabled; shown after BListView::InvalidateItem().
	void SetEnabled(bool enabled);
	bool IsEnabled() const;

private:
	friend class BListView;
	//! What the list shows: UTF-8.
	virtual const char* _Label() const = 0;

	bool fSelected;
	bool fEnabled;
};

#include <StringItem.h>
