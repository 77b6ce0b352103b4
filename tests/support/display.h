#pragma once

#include "server/Registry.h"
#include "server/ServerLink.h"
#include "server/ServerWindow.h"
#include "support/wait_until.h"

#include "interface/ViewData.h"
#include "interface/WindowData.h"

#include <InterfaceDefs.h>
#include <QApplication>
#include <QCoreApplication>
#include <QImage>
#include <QTest>
#include <Window.h>
#include <gtest/gtest.h>

// What tests of shown things need: the server's end of a window, its pixels, and input as a user
// would make it.

//! Runs a function of a window's server end on the server's thread and answers what it returns.
template<typename Function>
auto
on_server(const BWindow* window, Function function)
{
	using namespace BPrivate;
	int64 id = WindowData::Of(window).id;
	return *ServerLink::Default().Call(
		[=] { return function(*Registry::Default().Find<ServerWindow>(id)); });
}

//! The same for a control's widget.
template<typename Widget, typename Function>
auto
on_widget(const BView* control, Function function)
{
	using namespace BPrivate;
	int64 id = ViewData::Of(control).proxy->Id();
	return *ServerLink::Default().Call(
		[=] { return function(*Registry::Default().Find<Widget>(id)); });
}

//! What the window shows, with its controls, in device pixels.
inline QImage
pixels_of(const BWindow* window)
{
	return on_server(
		window, [](BPrivate::ServerWindow& server) { return server.Content()->grab().toImage(); });
}

//! Frames that the window's side has committed so far.
inline int64
count_frames(const BWindow* window)
{
	return BPrivate::WindowData::Of(window).mailbox->CountFrames();
}

/*!	Waits until the window's looper has dealt with all that is in its queue, and drawn. What the window system has to tell of an order
	comes only in the server's next turn but one; the turns are made here, since one of the server's own may run several calls. */
inline void
settle(BWindow* window)
{
	for (int turn = 0; turn < 3; turn++) {
		on_server(window, [](BPrivate::ServerWindow&) {
			QCoreApplication::processEvents();
			return true;
		});
	}
	BMessage question(B_GET_SUPPORTED_SUITES);
	BMessage answer;
	BMessenger(window).SendMessage(&question, &answer);
	if (window->Lock()) {
		window->UpdateIfNeeded();
		window->Unlock();
	}
	on_server(window, [](BPrivate::ServerWindow&) { return true; });
}

inline void
click(BWindow* window, BPoint where, Qt::MouseButton button = Qt::LeftButton,
	Qt::KeyboardModifiers modifiers = {})
{
	on_server(window, [=](BPrivate::ServerWindow& server) {
		QTest::mouseClick(server.windowHandle(), button, modifiers, QPoint(where.x, where.y));
		return true;
	});
}

//! The desktop's time for a double click, ms: one that no busy machine misses, or one that a test can wait for.
inline void
set_click_speed(const BWindow* window, int speed)
{
	on_server(window, [speed](BPrivate::ServerWindow&) {
		QApplication::setDoubleClickInterval(speed);
		// upon which the desktop's settings are read anew
		QEvent changed(QEvent::ApplicationPaletteChange);
		QCoreApplication::sendEvent(qApp, &changed);
		return true;
	});
	bigtime_t told = 0;
	EXPECT_EQ(get_click_speed(&told), B_OK);
	EXPECT_EQ(told, speed * 1000);
}

inline void
type_key(BWindow* window, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
{
	on_server(window, [=](BPrivate::ServerWindow& server) {
		QTest::keyClick(server.windowHandle(), key, modifiers);
		return true;
	});
}

/*!	A window that ends with its test; shown at once, unless told otherwise. */
template<typename WindowClass = BWindow> class WindowHolder {
public:
	template<typename... Arguments>
	explicit WindowHolder(Arguments... arguments) : fWindow(new WindowClass(arguments...))
	{ }
	~WindowHolder()
	{
		if (fWindow->Lock())
			fWindow->Quit();
	}
	WindowHolder(const WindowHolder&) = delete;
	WindowHolder& operator=(const WindowHolder&) = delete;

	WindowClass* operator->() const { return fWindow; }
	operator WindowClass*() const { return fWindow; }

private:
	WindowClass* fWindow;
};
