#pragma once

#include <InterfaceDefs.h>
#include <View.h>

class BMenu;
class BMenuBar;
class BMenuItem;
class _BMCMenuBar_;

/*!	A label, and a button that shows a menu's title, or, of a pop-up menu, the label of the marked
	item, and opens the menu: the desktop's combo box, with the menu for a list. The space bar and the
	arrow keys open it.
	Items without a target of their own send to the window. */
class BMenuField : public BView {
public:
	//! Owns the menu. With a label, the button begins in the middle; NULL or "": no label.
	BMenuField(BRect frame, const char* name, const char* label, BMenu* menu,
		uint32 resizingMode = B_FOLLOW_LEFT_TOP, uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
	//! `fixedSize` is only kept: the button takes all the room from the divider on.
	BMenuField(BRect frame, const char* name, const char* label, BMenu* menu, bool fixedSize,
		uint32 resizingMode = B_FOLLOW_LEFT_TOP, uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
	//! The menu is that of the child that is its bar; NULL without one.
	explicit BMenuField(BMessage* data);
	~BMenuField() override;

	static BArchivable* Instantiate(BMessage* data);
	//! `deep`: with the menu.
	status_t Archive(BMessage* data, bool deep = true) const override;

	void MakeFocus(bool focus = true) override;
	//! With room for the longest item.
	void GetPreferredSize(float* width, float* height) override;
	//! The label gets just the room that it needs.
	void ResizeToPreferred() override;

	BMenu* Menu() const;
	BMenuBar* MenuBar() const;
	//! What the menu is the sub-menu of, in the bar; its label is shown.
	BMenuItem* MenuItem() const;

	virtual void SetLabel(const char* label);
	//! NULL if it has none.
	const char* Label() const;
	virtual void SetEnabled(bool enabled);
	bool IsEnabled() const;
	//! The label's.
	virtual void SetAlignment(alignment label);
	alignment Alignment() const;
	//! Where the button begins, from the left edge.
	virtual void SetDivider(float divider);
	float Divider() const;

private:
	void Init();

	char* fLabel;
	_BMCMenuBar_* fBar;
	alignment fAlignment;
	float fDivider;
	bool fEnabled;
	bool fFixedSize;
};
