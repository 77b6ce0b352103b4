#include "interface/MenuAccess.h"
#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerMenu.h"

#include <MenuBar.h>
#include <QMenuBar>
#include <Window.h>

using namespace BPrivate;

// The bar to itself: the last item that the current message changes is not the first.
static constexpr uint32 kShowChanges = '_MBC';

BMenuBar::BMenuBar(
	BRect frame, const char* name, uint32 resizingMode, menu_layout layout, bool resizeToFit)
	: BMenu(frame, name, resizingMode, B_WILL_DRAW, layout),
	  fChangesPosted(false)
{
	fResizeToFit = resizeToFit;
	Init();
}

BMenuBar::BMenuBar(BMessage* data) : BMenu(data), fChangesPosted(false)
{
	Init();
}

BArchivable*
BMenuBar::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BMenuBar") ? new BMenuBar(data) : NULL;
}

status_t
BMenuBar::Archive(BMessage* data, bool deep) const
{
	return BMenu::Archive(data, deep);
}

void
BMenuBar::Init()
{
	auto connect = [](QMenuBar* bar, ProxySink* sink) {
		bar->setNativeMenuBar(false);
		QObject::connect(bar, &QMenuBar::triggered, sink, [sink](QAction* action) {
			BMessage event;
			event.AddInt64("item", chosen_item(*action));
			sink->Send(std::move(event));
		});
	};
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<QMenuBar>(connect), [this](BMessage* event) { ItemChosen(event); }));
}

void
BMenuBar::AttachedToWindow()
{
	BMenu::AttachedToWindow();
	ShowChanges();
	if (!fResizeToFit)
		return;
	float height;
	GetPreferredSize(NULL, &height);
	ResizeTo(Bounds().Width(), height);
}

void
BMenuBar::MessageReceived(BMessage* message)
{
	if (message->what != kShowChanges)
		BMenu::MessageReceived(message);
	else if (fChangesPosted) // else somebody could not wait for it
		ShowChanges();
}

void
BMenuBar::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

void
BMenuBar::TreeChanged()
{
	if (Window() == NULL || fChangesPosted)
		return;
	fChangesPosted = Window()->PostMessage(kShowChanges, this) == B_OK;
	if (!fChangesPosted)
		ShowChanges();
}

void
BMenuBar::ShowChanges()
{
	fChangesPosted = false;
	ShowModel(MenuAccess::ModelOf(*this));
}

void
BMenuBar::ShowModel(const MenuModel& model)
{
	ViewData::Of(this).proxy->Adjust<QMenuBar>([model](QMenuBar& bar) { show_menu(bar, model); });
}

void
BMenuBar::ItemChosen(BMessage* event)
{
	if (BMenuItem* item = MenuAccess::Find(*this, event->GetInt64("item", 0)))
		MenuAccess::Invoke(*item);
}
