#include "app/LooperAccess.h"
#include "app/MessageAccess.h"
#include "interface/MenuAccess.h"
#include "interface/ViewData.h"
#include "server/Desktop.h"
#include "server/ServerMenu.h"
#include "server/ServerWindow.h"
#include "server/UserAnswer.h"

#include <PopUpMenu.h>

using namespace BPrivate;

namespace BPrivate {

// "item" int64, 0 for none: from the server to the session
static constexpr uint32 kMenuClosed = '_PMC';

/*!	The opening of a menu, from Go() to its end; it may be part of the looper that is to hear of the end. */
class PopUpSession : public BHandler {
public:
	struct Place {
		QPoint where;
		bool needsButton;
		QRect clickToOpen;
	};

	PopUpSession(BPopUpMenu& menu, bool deliver)
		: fMenu(menu),
		  fDeliver(deliver),
		  fId(next_widget_id())
	{ }
	~PopUpSession() override
	{
		ServerLink::Default().Post([id = fId] { Registry::Default().Delete(id); });
	}

	void Open(const Place& place, std::shared_ptr<MenuResult> result);
	void Show(const MenuModel& model);
	//! For a session that becomes a handler of the looper.
	std::shared_ptr<MenuResult> ResultByMessage(BLooper* looper);
	void MessageReceived(BMessage* message) override;
	bool IsAsynchronous() const { return fAsynchronous; }

private:
	BPopUpMenu& fMenu;
	bool fDeliver;
	int64 fId;
	bool fAsynchronous = false;
};

void
PopUpSession::Open(const Place& place, std::shared_ptr<MenuResult> result)
{
	auto* window = dynamic_cast<BWindow*>(LooperAccess::OfThisThread());
	int64 parent = window != NULL ? WindowData::Of(window).id : 0;
	ServerLink::Default().Post([id = fId, parent, place, result = std::move(result),
								   model = MenuAccess::ModelOf(fMenu)] {
		PointerState pointer = Desktop::Pointer();
		if (place.needsButton && pointer.buttons == 0 && !place.clickToOpen.contains(pointer.where))
			return;
		auto* menu = new ServerPopUp(Registry::Default().Find(parent), id, result);
		Registry::Default().Add(id, menu);
		menu->Open(place.where, model);
	});
}

void
PopUpSession::Show(const MenuModel& model)
{
	ServerLink::Default().Post([id = fId, model] {
		if (auto* menu = Registry::Default().Find<ServerPopUp>(id))
			show_menu(*menu, model);
	});
}

std::shared_ptr<MenuResult>
PopUpSession::ResultByMessage(BLooper* looper)
{
	fAsynchronous = true;
	looper->AddHandler(this);
	return std::make_shared<MenuResult>([port = std::weak_ptr(LooperAccess::Port(looper)),
											token = MessengerAccess::TokenOf(this)](int64 chosen) {
		BMessage message(kMenuClosed);
		message.AddInt64("item", chosen);
		if (std::shared_ptr<MessagePort> target = port.lock())
			target->PostEvent(std::move(message), token);
	});
}

void
PopUpSession::MessageReceived(BMessage* message)
{
	if (message->what == kMenuClosed)
		fMenu.Closed(message->GetInt64("item", 0), fDeliver); // deletes this
	else
		BHandler::MessageReceived(message);
}

} // namespace BPrivate

BPopUpMenu::BPopUpMenu(const char* name, bool radioMode, bool labelFromMarked, menu_layout layout)
	: BMenu(name, layout)
{
	if (radioMode)
		SetRadioMode(true);
	if (labelFromMarked)
		SetLabelFromMarked(true);
}

BPopUpMenu::BPopUpMenu(BMessage* data) : BMenu(data) { }

BPopUpMenu::~BPopUpMenu() = default;

BArchivable*
BPopUpMenu::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BPopUpMenu") ? new BPopUpMenu(data) : NULL;
}

status_t
BPopUpMenu::Archive(BMessage* data, bool deep) const
{
	return BMenu::Archive(data, deep);
}

BMenuItem*
BPopUpMenu::Go(BPoint screenPoint, bool deliversMessage, bool openAnyway, bool asynchronous)
{
	return Open(screenPoint, deliversMessage, openAnyway, BRect(), !asynchronous);
}

BMenuItem*
BPopUpMenu::Go(
	BPoint screenPoint, bool deliversMessage, bool openAnyway, BRect clickToOpen, bool asynchronous)
{
	return Open(screenPoint, deliversMessage, openAnyway, clickToOpen, !asynchronous);
}

BMenuItem*
BPopUpMenu::Open(BPoint where, bool deliver, bool openAnyway, BRect clickToOpen, bool wait)
{
	// somebody waits for it
	if (fSession && !fSession->IsAsynchronous())
		return NULL;
	MenuAccess::AddDynamicItems(*this);
	fSession = std::make_unique<PopUpSession>(*this, deliver);
	QRect clickArea = clickToOpen.IsValid() ? to_qrect(clickToOpen) : QRect();
	const PopUpSession::Place place{QPoint(where.x, where.y), !openAnyway, clickArea};
	BLooper* looper = LooperAccess::OfThisThread();
	if (!wait && looper != NULL) {
		fSession->Open(place, fSession->ResultByMessage(looper));
		return NULL;
	}
	auto answer = std::make_shared<UserAnswer>();
	fSession->Open(
		place, std::make_shared<MenuResult>([answer](int64 chosen) { answer->Give(chosen); }));
	return Closed(answer->Wait().value_or(0), deliver);
}

//! The item that was chosen; the menu may be gone when it was invoked.
BMenuItem*
BPopUpMenu::Closed(int64 chosen, bool deliver)
{
	std::unique_ptr<PopUpSession> session = std::move(fSession);
	BMenuItem* item = MenuAccess::Find(*this, chosen);
	if (item == NULL)
		return NULL;
	if (deliver)
		MenuAccess::Invoke(*item);
	else
		MenuAccess::Mark(*item);
	return item;
}

void
BPopUpMenu::TreeChanged()
{
	if (fSession)
		fSession->Show(MenuAccess::ModelOf(*this));
}
