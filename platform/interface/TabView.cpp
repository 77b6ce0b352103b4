#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerTabs.h"

#include <TabView.h>
#include <algorithm>

using namespace BPrivate;

static const float kFrame = 3; // between the tab view's border and the views in it

BTab::BTab(BView* contents) : fView(contents) { }

//! A view that is shown belongs to the container.
BTab::~BTab()
{
	SetView(NULL);
}

const char*
BTab::Label() const
{
	if (!fHasLabel && fView != NULL && fView->Name() != NULL)
		return fView->Name();
	return fLabel.c_str();
}

void
BTab::SetLabel(const char* label)
{
	fLabel = label != NULL ? label : "";
	fHasLabel = label != NULL;
	ShowState();
}

void
BTab::SetEnabled(bool enabled)
{
	fEnabled = enabled;
	ShowState();
}

bool
BTab::IsSelected() const
{
	return fOwner != NULL && fOwner->TabAt(fOwner->Selection()) == this;
}

void
BTab::SetView(BView* contents)
{
	if (contents == fView)
		return;
	if (fView != NULL)
		fView->RemoveSelf();
	delete fView;
	fView = contents;
	if (IsSelected() && fView != NULL)
		fOwner->ContainerView()->AddChild(fView);
	ShowState();
}

void
BTab::ShowState()
{
	if (fOwner != NULL)
		fOwner->ShowTab(*this);
}

BTabView::BTabView(BRect frame, const char* name, button_width, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags)
{
	Init();
}

BTabView::~BTabView()
{
	for (BTab* tab : fTabs) {
		tab->fOwner = NULL;
		delete tab;
	}
}

void
BTabView::Init()
{
	auto connect = [](ServerTabs* tabs, ProxySink* sink) {
		QObject::connect(tabs, &QTabBar::currentChanged, sink, [sink](int index) {
			BMessage event;
			event.AddInt32("index", index);
			sink->Send(event);
		});
	};
	ViewData::Of(this).SetProxy(
		std::make_unique<WidgetProxy>(WidgetProxy::MakerOf<ServerTabs>(connect),
			[this](BMessage* event) { Select(event->GetInt32("index", -1)); }));

	// A label of its own, for the height that every row has.
	const auto height = ViewData::Of(this).proxy->Ask<ServerTabs>([](ServerTabs& tabs) {
		const QSignalBlocker blocker(tabs);
		tabs.ensurePolished();
		tabs.addTab(QStringLiteral("X"));
		const int row = tabs.RowHeight();
		tabs.removeTab(0);
		return row;
	});
	fTabHeight = height.value_or(0);
	BRect inner = Bounds().InsetByCopy(kFrame, kFrame);
	inner.top = fTabHeight + kFrame;
	inner.bottom = std::max(inner.bottom, inner.top);
	fContainer = new BView(inner, "view container", B_FOLLOW_ALL, B_WILL_DRAW);
	fContainer->SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
	AddChild(fContainer);
}

void
BTabView::GetPreferredSize(float* width, float* height)
{
	float row = 0;
	preferred_size(*this, &row, NULL);
	BSize contents(0, 0);
	for (const BTab* tab : fTabs) {
		if (tab->View() == NULL)
			continue;
		contents.width = std::max(contents.width, tab->View()->Frame().right);
		contents.height = std::max(contents.height, tab->View()->Frame().bottom);
	}
	const BRect inner = fContainer->Frame();
	if (width != NULL)
		*width = std::max(row, contents.width + Bounds().Width() - inner.Width());
	if (height != NULL)
		*height = contents.height + Bounds().Height() - inner.Height();
}

void
BTabView::AddTab(BView* target, BTab* tab)
{
	if (tab == NULL)
		tab = new BTab(target);
	else if (target != NULL)
		tab->SetView(target);
	fTabs.push_back(tab);
	tab->fOwner = this;
	ViewData::Of(this).proxy->Set<ServerTabs>([](ServerTabs& tabs) { tabs.addTab(QString()); });
	ShowTab(*tab);
	if (fTabs.size() == 1)
		Select(0);
}

BTab*
BTabView::RemoveTab(int32 index)
{
	BTab* tab = TabAt(index);
	if (tab == NULL)
		return NULL;
	if (tab->View() != NULL)
		tab->View()->RemoveSelf();
	const bool wasSelected = index == fSelection;
	fTabs.erase(fTabs.begin() + index);
	tab->fOwner = NULL;
	ViewData::Of(this).proxy->Set<ServerTabs>([index](ServerTabs& tabs) { tabs.removeTab(index); });
	if (index < fSelection || fSelection == CountTabs())
		fSelection--;
	if (wasSelected)
		Swap(fSelection);
	return tab;
}

BTab*
BTabView::TabAt(int32 index) const
{
	return index >= 0 && index < CountTabs() ? fTabs[index] : NULL;
}

int32
BTabView::CountTabs() const
{
	return fTabs.size();
}

void
BTabView::Select(int32 index)
{
	if (TabAt(index) == NULL || index == fSelection)
		return;
	if (const BTab* before = TabAt(fSelection); before != NULL && before->View() != NULL)
		before->View()->RemoveSelf();
	Swap(index);
}

void
BTabView::Swap(int32 index)
{
	fSelection = index;
	if (BTab* tab = TabAt(index); tab != NULL && tab->View() != NULL)
		fContainer->AddChild(tab->View());
	ViewData::Of(this).proxy->Set<ServerTabs>(
		[index](ServerTabs& tabs) { tabs.setCurrentIndex(index); });
}

void
BTabView::ShowTab(const BTab& tab)
{
	const int index = std::find(fTabs.begin(), fTabs.end(), &tab) - fTabs.begin();
	ViewData::Of(this).proxy->Adjust<ServerTabs>(
		[index, text = widget_text(tab.Label()), enabled = tab.IsEnabled()](ServerTabs& tabs) {
			tabs.setTabText(index, text);
			tabs.setTabEnabled(index, enabled);
		});
}
