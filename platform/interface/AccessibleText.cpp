#include "interface/AccessibleText.h"

#include "interface/ViewData.h"
#include "server/Registry.h"
#include "server/ServerLink.h"
#include "server/ServerWindow.h"

#include <AppDefs.h>
#include <Message.h>
#include <PropertyInfo.h>

namespace BPrivate {

static const char* const kProperty = "CurrentLine";

//! Runs `change` on the server, with the texts of a window that is still there.
template<typename Function>
static void
post_to_texts(int64 window, Function change)
{
	ServerLink::Default().Post([window, change] {
		if (auto* server = Registry::Default().Find<ServerWindow>(window))
			change(server->Content()->Texts());
	});
}

std::unique_ptr<AccessibleText>
AccessibleText::Of(BView* view)
{
	const ViewData& data = ViewData::Of(view);
	if (data.IsProxy() || !(data.flags & B_WILL_DRAW) || WindowData::Of(data.window).offscreen
		|| !HasText(view))
		return nullptr;
	return std::make_unique<AccessibleText>(view);
}

bool
AccessibleText::HasText(BView* view)
{
	BMessage suites;
	if (view->GetSupportedSuites(&suites) != B_OK)
		return false;
	BMessage get(B_GET_PROPERTY);
	BMessage specifier(B_DIRECT_SPECIFIER);
	BPropertyInfo properties;
	for (int32 i = 0; suites.FindFlat("messages", i, &properties) == B_OK; i++) {
		if (properties.FindMatch(&get, 0, &specifier, B_DIRECT_SPECIFIER, kProperty) >= 0)
			return true;
	}
	return false;
}

AccessibleText::AccessibleText(BView* view)
	: BHandler("accessible text"),
	  fView(view),
	  fWindow(WindowData::Of(view->Window()).id),
	  fId(next_widget_id())
{
	view->Window()->AddHandler(this);
	view->StartWatchingAll(this);
	post_to_texts(fWindow, [id = fId](AccessibleTexts& texts) { texts.Add(id); });
	Ask();
}

AccessibleText::~AccessibleText()
{
	fView->StopWatchingAll(this);
	post_to_texts(fWindow, [id = fId](AccessibleTexts& texts) { texts.Remove(id); });
}

void
AccessibleText::Place(QRect visible)
{
	if (visible == fVisible)
		return;
	fVisible = visible;
	post_to_texts(
		fWindow, [id = fId, visible](AccessibleTexts& texts) { texts.Place(id, visible); });
}

void
AccessibleText::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case B_OBSERVER_NOTICE_CHANGE:
			message->HasString(kProperty) ? Tell(message->GetString(kProperty)) : Ask();
			break;
		case B_REPLY:
			Tell(message->GetString("result", ""));
			break;
		default:
			BHandler::MessageReceived(message);
	}
}

//! The answer comes as a message.
void
AccessibleText::Ask()
{
	BMessage get(B_GET_PROPERTY);
	get.AddSpecifier(kProperty);
	BMessenger(fView).SendMessage(&get, this, 0);
}

void
AccessibleText::Tell(const char* text)
{
	post_to_texts(fWindow, [id = fId, text = QString::fromUtf8(text)](AccessibleTexts& texts) {
		texts.SetText(id, text);
	});
}

} // namespace BPrivate
