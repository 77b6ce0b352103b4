#include "interface/ViewData.h"
#include "server/Registry.h"
#include "server/ServerLink.h"
#include "server/ServerWindow.h"

#include "app/MessageAccess.h"

#include <AppDefs.h>
#include <Entry.h>

namespace BPrivate {

//! The platform's message for files, by what the server tells.
static BMessage
refs_of(const BMessage& files)
{
	BMessage refs(B_SIMPLE_DATA);
	const char* path;
	for (int32 i = 0; files.FindString("path", i, &path) == B_OK; i++) {
		entry_ref ref;
		if (get_ref_for_path(path, &ref) == B_OK)
			refs.AddRef("refs", &ref);
	}
	return refs;
}

void
WindowData::FilesDragged(BMessage* message)
{
	drag = message->GetInt64("be:drag", 0);
	dragged = refs_of(*message);
}

void
WindowData::EndDrag()
{
	drag = 0;
	dragged.MakeEmpty();
}

void
WindowData::FilesDropped(BMessage* message)
{
	EndDrag();
	BMessage refs = refs_of(*message);
	if (!refs.HasRef("refs"))
		return;
	BPoint where = message->GetPoint("be:window_where", BPoint());
	BView* under = ViewData::Of(root).ViewAt(where);
	refs.AddInt64("when", message->GetInt64("when", 0));
	MessageAccess::SetDropped(refs, message->GetPoint("screen_where", BPoint()), BPoint());
	// through the queue, so that message filters see it; when that is full, at once
	BHandler* target = under != NULL ? static_cast<BHandler*>(under) : window;
	if (window->PostMessage(&refs, target) != B_OK)
		target->MessageReceived(&refs);
}

void
WindowData::TellPointer(bool wait)
{
	const int32 cursor
		= pointerView != NULL ? ViewData::Of(pointerView).cursor : B_CURSOR_ID_SYSTEM_DEFAULT;
	if (offscreen || (cursor == toldCursor && (drag == 0 || drag == toldDrag)))
		return;
	toldCursor = cursor;
	toldDrag = drag;
	const auto tell = [id = id, cursor, drag = drag] {
		if (auto* server = Registry::Default().Find<ServerWindow>(id))
			server->Content()->SetPointer(cursor, drag);
	};
	wait ? ServerLink::Default().CallJob(tell) : ServerLink::Default().Post(tell);
}

} // namespace BPrivate
