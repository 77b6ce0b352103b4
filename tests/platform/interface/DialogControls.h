#pragma once

#include "support/LoggingWindow.h"

#include "server/ServerText.h"

#include <QAccessible>
#include <TextControl.h>
#include <TextView.h>
#include <string>

using namespace BPrivate;

//! Writes down the four characters of what its controls send, and the value.
class LogWindow : public LoggingWindow {
public:
	LogWindow() : LoggingWindow(BRect(100, 100, 499, 399), "controls", B_TITLED_WINDOW, 0) { }

	void MessageReceived(BMessage* message) override
	{
		if (message->what < 'aaaa' || message->what > 'zzzz')
			BWindow::MessageReceived(message);
		else
			Note(TextOf(message) + " ");
	}

	bool QuitRequested() override
	{
		Note("quit ");
		return false;
	}
};

//!	A window with controls, and what a test does with them as a user does.
class DialogControls : public testing::Test {
protected:
	template<typename View> View* Add(View* view, BView* parent = NULL)
	{
		fWindow->Lock();
		parent != NULL ? parent->AddChild(view) : fWindow->AddChild(view);
		fWindow->Unlock();
		return view;
	}
	void Show()
	{
		fWindow->Show();
		// before that no control can have the focus
		EXPECT_TRUE(wait_until([this] {
			return on_server(fWindow, [](ServerWindow& server) { return server.isActiveWindow(); });
		}));
		settle(fWindow);
	}
	template<typename Function> void Locked(Function function)
	{
		fWindow->Lock();
		function();
		fWindow->Unlock();
		if (!fWindow->IsHidden())
			settle(fWindow);
	}

	WindowHolder<LogWindow> fWindow;
};

inline std::string
spoken(const BView* view, QAccessible::Text which = QAccessible::Name)
{
	return on_widget<QWidget>(view, [which](QWidget& widget) {
		return QAccessible::queryAccessibleInterface(&widget)->text(which).toStdString();
	});
}

//! Of a widget whose name is its value.
inline std::string
label_of(const BView* view)
{
	return on_widget<QWidget>(view, [](QWidget& widget) {
		const auto labels
			= QAccessible::queryAccessibleInterface(&widget)->relations(QAccessible::Label);
		return labels.size() == 1 ? labels[0].first->text(QAccessible::Name).toStdString() : "";
	});
}

inline void
press_keys(const BView* view, const QString& keys)
{
	on_widget<QWidget>(view, [keys](QWidget& widget) {
		QTest::keyClicks(&widget, keys);
		return true;
	});
}

inline void
press_key(const BView* view, Qt::Key key)
{
	on_widget<QWidget>(view, [key](QWidget& widget) {
		QTest::keyClick(&widget, key);
		return true;
	});
}

inline bool
has_focus(const BView* view)
{
	return on_widget<QWidget>(view, [](QWidget& widget) {
		return widget.hasFocus() || (widget.focusProxy() && widget.focusProxy()->hasFocus());
	});
}

inline BView*
input_of(BTextControl* control)
{
	return control->TextView();
}
