#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerList.h"

#include <ListView.h>
#include <Message.h>
#include <Window.h>
#include <algorithm>

using namespace BPrivate;

BListView::BListView(
	BRect frame, const char* name, list_view_type type, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  fType(type),
	  fSelectionMessage(NULL)
{
	auto connect = [spoken = QString::fromUtf8(name)](ServerList* list, ProxySink* sink) {
		list->SetSink(sink);
		list->setAccessibleName(spoken);
	};
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerList>(connect), [this](BMessage* event) { UserActed(event); }));
	SetListType(type);
}

BListView::~BListView()
{
	delete fSelectionMessage;
}

//! Without a target of its own, its messages go to the window.
void
BListView::AttachedToWindow()
{
	BView::AttachedToWindow();
	if (!Messenger().IsValid())
		SetTarget(Window());
}

void
BListView::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

// Items

bool
BListView::AddItem(BListItem* item, int32 index)
{
	BList one(1);
	one.AddItem(item);
	return item != NULL && BListView::AddList(&one, index);
}

bool
BListView::AddItem(BListItem* item)
{
	return AddItem(item, CountItems());
}

bool
BListView::AddList(BList* items, int32 index)
{
	if (items == NULL || items->HasItem(NULL) || index < 0 || index > CountItems())
		return false;
	bool atEnd = index == CountItems();
	bool selected = false;
	std::vector<ListRow> rows;
	for (int32 i = 0; i < items->CountItems(); i++) {
		auto item = static_cast<BListItem*>(items->ItemAt(i));
		rows.push_back({QString::fromUtf8(item->_Label()), item->IsEnabled()});
		selected |= item->IsSelected();
	}
	if (!fItems.AddList(items, index))
		return false;
	WidgetProxy& proxy = *ViewData::Of(this).proxy;
	auto insert
		= [rows = std::move(rows), index](ServerList& list) { list.InsertRows(index, rows); };
	// at the end, the indices that are on their way stay right
	if (atEnd)
		proxy.Adjust<ServerList>(insert);
	else
		proxy.Set<ServerList>(insert);
	if (selected)
		ShowSelection();
	return true;
}

bool
BListView::AddList(BList* items)
{
	return AddList(items, CountItems());
}

bool
BListView::RemoveItem(BListItem* item)
{
	return BListView::RemoveItem(IndexOf(item)) != NULL;
}

BListItem*
BListView::RemoveItem(int32 index)
{
	BListItem* item = ItemAt(index);
	return item != NULL && BListView::RemoveItems(index, 1) ? item : NULL;
}

bool
BListView::RemoveItems(int32 index, int32 count)
{
	count = std::min(count, CountItems() - index);
	if (index < 0 || count <= 0)
		return false;
	bool selected = SetSelected(index, index + count - 1, false);
	fItems.RemoveItems(index, count);
	ViewData::Of(this).proxy->Set<ServerList>(
		[=](ServerList& list) { list.RemoveRows(index, count); });
	if (selected)
		SelectionChanged();
	return true;
}

void
BListView::MakeEmpty()
{
	bool selected = SetSelected(0, CountItems() - 1, false);
	fItems.MakeEmpty();
	ViewData::Of(this).proxy->Set<ServerList>([](ServerList& list) { list.Clear(); });
	if (selected)
		SelectionChanged();
}

int32
BListView::CountItems() const
{
	return fItems.CountItems();
}

bool
BListView::IsEmpty() const
{
	return fItems.IsEmpty();
}

BListItem*
BListView::ItemAt(int32 index) const
{
	return static_cast<BListItem*>(fItems.ItemAt(index));
}

BListItem*
BListView::FirstItem() const
{
	return static_cast<BListItem*>(fItems.FirstItem());
}

BListItem*
BListView::LastItem() const
{
	return static_cast<BListItem*>(fItems.LastItem());
}

bool
BListView::HasItem(BListItem* item) const
{
	return fItems.HasItem(item);
}

int32
BListView::IndexOf(BListItem* item) const
{
	return fItems.IndexOf(item);
}

void
BListView::InvalidateItem(int32 index)
{
	const BListItem* item = ItemAt(index);
	if (item == NULL)
		return;
	ListRow row{QString::fromUtf8(item->_Label()), item->IsEnabled()};
	ViewData::Of(this).proxy->Adjust<ServerList>(
		[=](ServerList& list) { list.SetRow(index, row); });
}

// The selection

void
BListView::Select(int32 index, bool extend)
{
	Select(index, index, extend);
}

void
BListView::Select(int32 from, int32 to, bool extend)
{
	if (from < 0 || to >= CountItems() || from > to)
		return;
	if (fType == B_SINGLE_SELECTION_LIST) {
		to = from;
		extend = false;
	}
	bool changed = false;
	if (!extend) {
		changed |= SetSelected(0, from - 1, false);
		changed |= SetSelected(to + 1, CountItems() - 1, false);
	}
	changed |= SetSelected(from, to, true);
	ShowSelection();
	if (changed)
		TellSelection();
}

void
BListView::Deselect(int32 index)
{
	if (ItemAt(index) == NULL || !SetSelected(index, index, false))
		return;
	ShowSelection();
	TellSelection();
}

void
BListView::DeselectAll()
{
	if (!SetSelected(0, CountItems() - 1, false))
		return;
	ShowSelection();
	TellSelection();
}

bool
BListView::IsItemSelected(int32 index) const
{
	const BListItem* item = ItemAt(index);
	return item != NULL && item->IsSelected();
}

int32
BListView::CurrentSelection(int32 index) const
{
	for (int32 i = 0; i < CountItems() && index >= 0; i++) {
		if (ItemAt(i)->IsSelected() && index-- == 0)
			return i;
	}
	return -1;
}

void
BListView::ScrollToSelection()
{
	ViewData::Of(this).proxy->Adjust<ServerList>(
		[](ServerList& list) { list.ScrollToSelection(); });
}

//! Whether that changes anything.
bool
BListView::SetSelected(int32 from, int32 to, bool selected)
{
	bool changed = false;
	for (int32 i = from; i <= to; i++) {
		BListItem* item = ItemAt(i);
		if (item->IsSelected() == selected)
			continue;
		changed = true;
		selected ? item->Select() : item->Deselect();
	}
	return changed;
}

void
BListView::ShowSelection()
{
	std::vector<RowRange> ranges;
	for (int32 i = 0; i < CountItems(); i++) {
		if (!ItemAt(i)->IsSelected())
			continue;
		if (!ranges.empty() && ranges.back().second == i - 1)
			ranges.back().second = i;
		else
			ranges.emplace_back(i, i);
	}
	ViewData::Of(this).proxy->Set<ServerList>(
		[ranges = std::move(ranges)](ServerList& list) { list.SelectRows(ranges); });
}

void
BListView::TellSelection()
{
	SelectionChanged();
	if (fSelectionMessage != NULL)
		InvokeNotify(fSelectionMessage, B_CONTROL_MODIFIED);
}

void
BListView::SelectionChanged()
{ }

void
BListView::SetListType(list_view_type type)
{
	fType = type;
	bool multiple = type == B_MULTIPLE_SELECTION_LIST;
	ViewData::Of(this).proxy->Adjust<ServerList>(
		[multiple](ServerList& list) { list.SetMultiple(multiple); });
	int32 first = CurrentSelection();
	if (!multiple && CurrentSelection(1) >= 0)
		Select(first);
}

list_view_type
BListView::ListType() const
{
	return fType;
}

// Messages

void
BListView::SetSelectionMessage(BMessage* message)
{
	if (message != fSelectionMessage)
		delete fSelectionMessage;
	fSelectionMessage = message;
}

void
BListView::SetInvocationMessage(BMessage* message)
{
	SetMessage(message);
}

BMessage*
BListView::SelectionMessage() const
{
	return fSelectionMessage;
}

BMessage*
BListView::InvocationMessage() const
{
	return Message();
}

uint32
BListView::SelectionCommand() const
{
	return fSelectionMessage != NULL ? fSelectionMessage->what : 0;
}

uint32
BListView::InvocationCommand() const
{
	return Command();
}

status_t
BListView::Invoke(BMessage* message)
{
	if (message == NULL)
		message = Message();
	if (message == NULL)
		return B_BAD_VALUE;
	BMessage copy(*message);
	copy.AddMessenger("be:sender", BMessenger(this));
	if (fType == B_SINGLE_SELECTION_LIST)
		copy.AddInt32("index", CurrentSelection());
	else {
		for (int32 i = 0; i < CountItems(); i++) {
			if (ItemAt(i)->IsSelected())
				copy.AddInt32("index", i);
		}
	}
	return BInvoker::Invoke(&copy);
}

void
BListView::UserActed(BMessage* event)
{
	if (AdoptSelection(event))
		TellSelection();
	if (event->GetBool("invoked", false))
		Invoke();
}

//! Whether that is another one.
bool
BListView::AdoptSelection(BMessage* event)
{
	bool changed = false;
	int32 done = 0;
	int32 first;
	int32 last;
	for (int32 i = 0; event->FindInt32("first", i, &first) == B_OK
		 && event->FindInt32("last", i, &last) == B_OK && last < CountItems();
		 i++) {
		changed |= SetSelected(done, first - 1, false);
		changed |= SetSelected(first, last, true);
		done = last + 1;
	}
	changed |= SetSelected(done, CountItems() - 1, false);
	return changed;
}
