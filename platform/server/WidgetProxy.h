#pragma once

#include "server/EventPort.h"
#include "server/Registry.h"
#include "server/ServerLink.h"

#include <Font.h>
#include <QRegion>
#include <QSignalBlocker>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class BView;

namespace BPrivate {

/*!	The server's end of a proxy: sends what the user does with the widget to the view. Server thread
	only. Owner: its proxy's widget. */
class ProxySink : public QObject {
public:
	explicit ProxySink(QWidget* widget);

	/*!	To the proxy's event hook, on the window's thread. Nothing happens while the view is in no
		window. */
	void Send(BMessage event);
	void SetTarget(std::shared_ptr<EventPort> port, const BMessenger& target);
	void SetSerial(int64 serial) { fSerial = serial; }
	//! The part of its widget that has the focus for it.
	void WatchFocus(QWidget* part) { part->installEventFilter(this); }
	bool eventFilter(QObject* object, QEvent* event) override;

private:
	std::shared_ptr<EventPort> fPort;
	BMessenger fTarget;
	int64 fSerial = 0;
};

/*!	The views' end of a real widget that stands for a view: a control of the desktop's own, child of
	the window's canvas.
	A control's class makes one in its constructor and gives it to its view (ViewData::SetProxy()).
	The widget lives as long as the proxy; it is shown where the view is while that is in a window.
	Everything that is set is kept by the control itself as well, so that reading a value never
	waits.
	Thread: the view's. The functions given in run on the server's thread: they are the layer's own
	code, and capture plain values only. */
class WidgetProxy {
public:
	//! Makes the widget, without a parent, with a sink for it: see MakerOf().
	using Maker = std::function<QWidget*()>;
	//! Called with such a message, in the window's thread, locked.
	using EventHook = std::function<void(BMessage* event)>;

	WidgetProxy(Maker make, EventHook onEvent);
	~WidgetProxy();
	WidgetProxy(const WidgetProxy&) = delete;
	WidgetProxy& operator=(const WidgetProxy&) = delete;

	/*!	The usual maker: a new Widget without arguments, then `connect(widget, sink)`, which
		connects the widget's signals to calls of `sink->Send()`, a message with fields of the
		control's own. */
	template<typename Widget, typename Connect> static Maker MakerOf(Connect connect)
	{
		return [connect]() -> QWidget* {
			auto* widget = new Widget;
			connect(widget, new ProxySink(widget));
			return widget;
		};
	}

	/*!	Changes the widget some time later; its signals are blocked meanwhile, so that no event
		comes back. Events that were on their way before the change are stale: they do not reach the
		hook. */
	template<typename Widget, typename Function> void Set(Function change)
	{
		ServerLink::Default().Post([id = fId, serial = ++fSerial, change] {
			if (auto* widget = Registry::Default().Find<Widget>(id)) {
				QSignalBlocker blocker(widget);
				change(*widget);
				SetSerial(id, serial);
			}
		});
	}
	//! For what is no value of the control (its label, its font): events on their way stay good.
	template<typename Widget, typename Function> void Adjust(Function change)
	{
		ServerLink::Default().Post([id = fId, change] {
			if (auto* widget = Registry::Default().Find<Widget>(id)) {
				QSignalBlocker blocker(widget);
				change(*widget);
			}
		});
	}
	//! Asks the widget and waits; nothing when the server has gone.
	template<typename Widget, typename Function>
	auto Ask(Function question) -> std::optional<std::invoke_result_t<Function, Widget&>>
	{
		using Answer = std::optional<std::invoke_result_t<Function, Widget&>>;
		std::optional<Answer> answer = ServerLink::Default().Call([id = fId, question]() -> Answer {
			auto* widget = Registry::Default().Find<Widget>(id);
			return widget != nullptr ? Answer(question(*widget)) : std::nullopt;
		});
		return answer ? *answer : std::nullopt;
	}
	/*!	What the widget would like, as BView::GetPreferredSize() counts; nothing when the server has
		gone. */
	std::optional<QSize> PreferredSize();
	int64 Id() const { return fId; }

	// For the views.
	void Attach(int64 window, const BMessenger& view);
	void Detach();
	//! In the window's coordinates; only `visible` of it is shown.
	void Place(QRect frame, const QRegion& visible);
	//! The focus goes through them in that order, with the Tab key.
	static void SetFocusOrder(const std::vector<int64>& ids);
	void SetFocus(bool focus);
	void SetFont(const BFont& font);
	void HandleEvent(BMessage* event);

private:
	static void SetSerial(int64 id, int64 serial);

	int64 fId;
	int64 fSerial = 0;
	EventHook fOnEvent;
	QRect fFrame;
	QRegion fVisible;
	bool fPlaced = false;
};

} // namespace BPrivate
