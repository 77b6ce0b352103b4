#include "server/X11Extras.h"

#include <InterfaceDefs.h>
#include <QGuiApplication>
#include <QWindow>
#include <View.h>
#include <memory>
#include <stdlib.h>
#include <string.h>
#include <xcb/xcb.h>

namespace BPrivate::X11Extras {

namespace {

struct FreeReply {
	void operator()(void* reply) const { free(reply); }
};

template<typename Reply> using ReplyPtr = std::unique_ptr<Reply, FreeReply>;

// NULL without an X server
xcb_connection_t*
connection()
{
	auto* native = qApp->nativeInterface<QNativeInterface::QX11Application>();
	return native != nullptr ? native->connection() : nullptr;
}

xcb_window_t
root_window(xcb_connection_t* x)
{
	return xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
}

xcb_atom_t
find_atom(xcb_connection_t* x, const char* name)
{
	ReplyPtr<xcb_intern_atom_reply_t> reply(
		xcb_intern_atom_reply(x, xcb_intern_atom(x, false, strlen(name), name), nullptr));
	return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/*!	To the window manager, about one of our windows (freedesktop.org's Extended Window Manager
	Hints). */
bool
send_hint(const QWidget& window, const char* type, uint32 first, uint32 second, uint32 third)
{
	xcb_connection_t* x = connection();
	if (x == nullptr || window.windowHandle() == nullptr)
		return false;
	xcb_client_message_event_t event{};
	event.response_type = XCB_CLIENT_MESSAGE;
	event.format = 32;
	// asked each time: a changed flag may have made a new native window
	event.window = window.windowHandle()->winId();
	event.type = find_atom(x, type);
	event.data.data32[0] = first;
	event.data.data32[1] = second;
	event.data.data32[2] = third;
	event.data.data32[3] = 1; // from an application
	xcb_send_event(x, false, root_window(x),
		XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
		reinterpret_cast<const char*>(&event));
	xcb_flush(x);
	return true;
}

} // namespace

bool
QueryPointer(PointerMask& mask)
{
	xcb_connection_t* x = connection();
	if (x == nullptr)
		return false;
	ReplyPtr<xcb_query_pointer_reply_t> reply(
		xcb_query_pointer_reply(x, xcb_query_pointer(x, root_window(x)), nullptr));
	if (!reply)
		return false;
	if (reply->mask & XCB_BUTTON_MASK_1)
		mask.buttons |= B_PRIMARY_MOUSE_BUTTON;
	if (reply->mask & XCB_BUTTON_MASK_3)
		mask.buttons |= B_SECONDARY_MOUSE_BUTTON;
	if (reply->mask & XCB_BUTTON_MASK_2)
		mask.buttons |= B_TERTIARY_MOUSE_BUTTON;
	if (reply->mask & XCB_MOD_MASK_LOCK)
		mask.locks |= B_CAPS_LOCK;
	if (reply->mask & XCB_MOD_MASK_2)
		mask.locks |= B_NUM_LOCK;
	return true;
}

bool
SkipTaskbar(const QWidget& window)
{
	xcb_connection_t* x = connection();
	constexpr uint32 kAdd = 1;
	return x != nullptr
		&& send_hint(window, "_NET_WM_STATE", kAdd, find_atom(x, "_NET_WM_STATE_SKIP_TASKBAR"),
			find_atom(x, "_NET_WM_STATE_SKIP_PAGER"));
}

bool
ShowOnAllWorkspaces(const QWidget& window)
{
	constexpr uint32 kAll = 0xffffffff;
	return send_hint(window, "_NET_WM_DESKTOP", kAll, 1, 0);
}

} // namespace BPrivate::X11Extras
