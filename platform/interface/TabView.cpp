#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerTabs.h"

#include <Message.h>
#include <QScopedValueRollback>
#include <TabView.h>
#include <Window.h>
#include <algorithm>

using namespace BPrivate;

// of tabs that cannot be asked, around the text
static constexpr float kTabMargin = 4;

BTabView::BTabView(
	BRect frame, const char* name, button_width width, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  fContainer(new BView(BRect(), "view container", B_FOLLOW_ALL, B_WILL_DRAW)),
	  fTabWidth(width),
	  fSelection(-1),
	  fByUser(false)
{
	Init();
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
	auto connect = [spoken = QString::fromUtf8(Name())](ServerTabs* tabs, ProxySink* sink) {
		tabs->setAccessibleName(spoken);
		tabs->SetSink(sink);
	};
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerTabs>(connect), [this](BMessage* event) {
			QScopedValueRollback guard(fByUser, true);
			Select(event->GetInt32("tab", fSelection));
		}));
	fContainer->SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
	FitContainer();
	AddChild(fContainer);
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
