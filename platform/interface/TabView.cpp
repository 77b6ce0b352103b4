#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerTabs.h"
#include "support/ArchiveFields.h"

#include <Message.h>
#include <QScopedValueRollback>
#include <TabView.h>
#include <Window.h>
#include <algorithm>

using namespace BPrivate;

// of tabs that cannot be asked, around the text
static constexpr float kTabMargin = 4;

// In archives: the tabs and, in the same order, their views.
static constexpr const char* kTabs = "_l_items";
static constexpr const char* kPages = "_view_list";

static BView*
new_container()
{
	return new BView(BRect(), "view container", B_FOLLOW_ALL, B_WILL_DRAW);
}

BTabView::BTabView(
	BRect frame, const char* name, button_width width, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  fContainer(new_container()),
	  fTabWidth(width),
	  fSelection(-1),
	  fByUser(false)
{
	Init();
	AddChild(fContainer);
}

BTabView::BTabView(BMessage* data)
	: BView(BUnarchiver::PrepareArchive(data)),
	  fContainer(ChildAt(0)),
	  fTabWidth(B_WIDTH_AS_USUAL),
	  fSelection(-1),
	  fByUser(false)
{
	BUnarchiver unarchiver(data);
	const int16 width = archive_or_empty(data).GetInt16("_but_width", B_WIDTH_AS_USUAL);
	if (width >= B_WIDTH_AS_USUAL && width <= B_WIDTH_FROM_LABEL)
		fTabWidth = button_width(width);
	if (fContainer == NULL) {
		fContainer = new_container();
		AddChild(fContainer);
	}
	Init();
	unarchiver.Finish(ReadTabs(unarchiver));
}

BArchivable*
BTabView::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BTabView") ? new BTabView(data) : NULL;
}

status_t
BTabView::Archive(BMessage* data, bool deep) const
{
	BArchiver archiver(data);
	ArchiveWriter writer(data, BView::Archive(data, deep));
	writer.Int16("_but_width", fTabWidth);
	writer.Float("_high", fTabHeight);
	writer.Int32("_sel", fSelection);
	for (size_t i = 0; deep && i < fTabs.size(); i++) {
		writer.Done(archiver.AddArchivable(kTabs, fTabs[i]));
		writer.Done(archiver.AddArchivable(kPages, fTabs[i]->View()));
	}
	return archiver.Finish(writer.Status());
}

status_t
BTabView::ReadTabs(BUnarchiver& unarchiver)
{
	const BMessage& archive = archive_or_empty(unarchiver.ArchiveMessage());
	// in the older form the view that is seen is there twice
	while (BView* copy = archive.HasMessage(kPages) ? fContainer->ChildAt(0) : NULL) {
		fContainer->RemoveChild(copy);
		delete copy;
	}
	type_code type;
	int32 count = 0;
	archive.GetInfo(kTabs, &type, &count);
	status_t result = B_OK;
	for (int32 i = 0; i < count; i++) {
		BTab* tab;
		BView* page;
		status_t status = unarchiver.FindObject(kTabs, i, tab);
		if (status == B_OK)
			status = tab != NULL ? ReadPage(unarchiver, i, page) : B_BAD_VALUE;
		if (status == B_OK)
			BTabView::AddTab(page, tab);
		else
			delete tab;
		if (result == B_OK)
			result = status;
	}
	BTabView::Select(archive.GetInt32("_sel", -1));
	return result;
}

//! The one that is seen is the container's already. With a layout all are, and those that are not seen are hidden.
status_t
BTabView::ReadPage(BUnarchiver& unarchiver, int32 index, BView*& page)
{
	const BMessage& archive = *unarchiver.ArchiveMessage();
	status_t status = unarchiver.FindObject(kPages, index, page);
	if (status == B_OK || !archive.HasInt32(kPages, index))
		return status;
	status = unarchiver.FindObject(kPages, index, BUnarchiver::B_DONT_ASSUME_OWNERSHIP, page);
	if (status != B_OK)
		return status;
	if (page->Parent() != fContainer)
		return B_BAD_VALUE;
	if (index != archive.GetInt32("_sel", -1) && page->IsHidden(fContainer))
		page->Show();
	page->RemoveSelf();
	return B_OK;
}

BTabView::~BTabView()
{
	for (BTab* tab : fTabs) {
		tab->fTabView = NULL;
		delete tab;
	}
}

void
BTabView::Init()
{
	auto connect = [](ServerTabs* tabs, ProxySink* sink) { tabs->SetSink(sink); };
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerTabs>(connect), [this](BMessage* event) {
			QScopedValueRollback guard(fByUser, true);
			Select(event->GetInt32("tab", fSelection));
		}));
	fContainer->SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
	FitContainer();
}

void
BTabView::FitContainer()
{
	const QSize size = to_qrect(Bounds()).size();
	const auto inner = ViewData::Of(this).proxy->Ask<ServerTabs>(
		[size](ServerTabs& tabs) { return std::pair(tabs.InnerRect(size), tabs.TabHeight()); });
	font_height font;
	GetFontHeight(&font);
	fTabHeight = inner ? inner->second : ceilf(font.ascent + font.descent) + 2 * kTabMargin;
	BRect frame = Bounds();
	frame.top += fTabHeight;
	if (inner)
		frame = to_brect(inner->first);
	fContainer->MoveTo(frame.LeftTop());
	fContainer->ResizeTo(frame.Width(), frame.Height());
}

void
BTabView::AttachedToWindow()
{
	BView::AttachedToWindow();
	if (fSelection < 0)
		Select(0);
}

void
BTabView::GetPreferredSize(float* width, float* height)
{
	float page[2] = {0, 0};
	for (const BTab* tab : fTabs) {
		if (tab->View() == NULL)
			continue;
		page[0] = std::max(page[0], tab->View()->Frame().right);
		page[1] = std::max(page[1], tab->View()->Frame().bottom);
	}
	const auto tabs = ViewData::Of(this).proxy->Ask<ServerTabs>(
		[](ServerTabs& widget) { return widget.TabsWidth(); });
	const BRect bounds = Bounds();
	const BRect inner = fContainer->Frame();
	if (width != NULL)
		*width = std::max<float>(page[0] + bounds.Width() - inner.Width(), tabs.value_or(0));
	if (height != NULL)
		*height = page[1] + bounds.Height() - inner.Height();
}

void
BTabView::AddTab(BView* target, BTab* tab)
{
	if (tab == NULL)
		tab = new BTab(target);
	else
		tab->SetView(target);
	fTabs.push_back(tab);
	tab->fTabView = this;
	// the tabs that are on their way stay right
	ViewData::Of(this).proxy->Adjust<ServerTabs>([](ServerTabs& tabs) { tabs.Append(); });
	ShowTab(tab);
	if (CountTabs() == 1 && Window() != NULL)
		Select(0);
}

BTab*
BTabView::RemoveTab(int32 index)
{
	BTab* tab = TabAt(index);
	if (tab == NULL)
		return NULL;
	const bool isSelected = index == fSelection;
	if (isSelected)
		tab->Deselect();
	fTabs.erase(fTabs.begin() + index);
	tab->fTabView = NULL;
	ViewData::Of(this).proxy->Set<ServerTabs>([index](ServerTabs& tabs) { tabs.Remove(index); });
	if (isSelected) {
		fSelection = -1;
		Select(std::max(index - 1, 0));
	} else if (index < fSelection)
		fSelection--;
	return tab;
}

BTab*
BTabView::TabAt(int32 index) const
{
	return index >= 0 && index < CountTabs() ? fTabs[index] : NULL;
}

BView*
BTabView::ViewForTab(int32 index) const
{
	const BTab* tab = TabAt(index);
	return tab != NULL ? tab->View() : NULL;
}

int32
BTabView::CountTabs() const
{
	return fTabs.size();
}

void
BTabView::Select(int32 index)
{
	BTab* tab = TabAt(index);
	if (tab == NULL || index == fSelection)
		return;
	if (BTab* old = TabAt(fSelection))
		old->Deselect();
	fSelection = index;
	tab->Select(fContainer);
	if (!fByUser)
		ViewData::Of(this).proxy->Set<ServerTabs>(
			[index](ServerTabs& tabs) { tabs.Choose(index); });
}

int32
BTabView::Selection() const
{
	return fSelection;
}

BView*
BTabView::ContainerView() const
{
	return fContainer;
}

button_width
BTabView::TabWidth() const
{
	return fTabWidth;
}

float
BTabView::TabHeight() const
{
	return fTabHeight;
}

BRect
BTabView::TabFrame(int32 index) const
{
	const auto frame = ViewData::Of(this).proxy->Ask<ServerTabs>(
		[index](ServerTabs& tabs) { return tabs.TabRect(index); });
	return frame && frame->isValid() ? to_brect(*frame) : BRect();
}

void
BTabView::ShowTab(const BTab* tab)
{
	const int32 index = std::find(fTabs.begin(), fTabs.end(), tab) - fTabs.begin();
	ViewData::Of(this).proxy->Adjust<ServerTabs>(
		[index, text = widget_text(tab->Label()), enabled = tab->IsEnabled()](
			ServerTabs& tabs) { tabs.Show(index, text, enabled); });
}
