#pragma once

#include <Invoker.h>
#include <List.h>
#include <ListItem.h>
#include <View.h>

enum list_view_type { B_SINGLE_SELECTION_LIST, B_MULTIPLE_SELECTION_LIST };

/*!	A list of lines of which the user selects one or some. It has scroll bars when it is in a BScrollView.
	A change of the selection, by the user or the program, calls SelectionChanged() and sends the selection message; a double
	click or Return sends the invocation message. Both get "when" (int64), "source" (pointer), "be:sender" (messenger) and "index"
	(int32): one for each selected item; -1 if none is in a list of single selection.
	Thread: with the window's lock, once it is in a window. Ten thousand items are fine; AddList() is the quick way. */
class BListView : public BView, public BInvoker {
public:
	BListView(BRect frame, const char* name, list_view_type type = B_SINGLE_SELECTION_LIST,
		uint32 resizingMode = B_FOLLOW_LEFT_TOP,
		uint32 flags = B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE);
	//! The items remain.
	~BListView() override;

	void AttachedToWindow() override;
	void GetPreferredSize(float* width, float* height) override;

	//! `index` from 0 to CountItems(). False: out of range, or no item.
	virtual bool AddItem(BListItem* item, int32 index);
	virtual bool AddItem(BListItem* item);
	virtual bool AddList(BList* items, int32 index);
	virtual bool AddList(BList* items);
	// What is removed belongs to the caller, and is no longer selected.
	virtual bool RemoveItem(BListItem* item);
	//! NULL if there is none.
	virtual BListItem* RemoveItem(int32 index);
	virtual bool RemoveItems(int32 index, int32 count);
	virtual void MakeEmpty();

	int32 CountItems() const;
	bool IsEmpty() const;
	//! NULL if out of range.
	BListItem* ItemAt(int32 index) const;
	BListItem* FirstItem() const;
	BListItem* LastItem() const;
	bool HasItem(BListItem* item) const;
	//! Negative if it is not in the list.
	int32 IndexOf(BListItem* item) const;
	//! The items are shown as they are now.
	void InvalidateItem(int32 index);

	//! `extend`: what was selected remains so, where several may be.
	void Select(int32 index, bool extend = false);
	void Select(int32 from, int32 to, bool extend = false);
	void Deselect(int32 index);
	void DeselectAll();
	bool IsItemSelected(int32 index) const;
	//! The index of the selected item number `index`, negative if there are not so many.
	int32 CurrentSelection(int32 index = 0) const;
	void ScrollToSelection();

	virtual void SetListType(list_view_type type);
	list_view_type ListType() const;

	//! Owns the message; NULL for none.
	virtual void SetSelectionMessage(BMessage* message);
	virtual void SetInvocationMessage(BMessage* message);
	BMessage* SelectionMessage() const;
	BMessage* InvocationMessage() const;
	//! what of the messages, 0 without one.
	uint32 SelectionCommand() const;
	uint32 InvocationCommand() const;

	virtual void SelectionChanged();

protected:
	//! B_BAD_VALUE without a message.
	status_t Invoke(BMessage* message = NULL) override;

private:
	void UserActed(BMessage* event);
	bool AdoptSelection(BMessage* event);
	bool SetSelected(int32 from, int32 to, bool selected);
	void TellSelection();
	void ShowSelection();

	BList fItems;
	list_view_type fType;
	BMessage* fSelectionMessage;
};
