#include "server/WidgetProxy.h"

#include "server/ServerWindow.h"

#include <QEvent>

namespace BPrivate {

ProxySink::ProxySink(QWidget* widget) : QObject(widget)
{
	widget->installEventFilter(this);
}

void
ProxySink::Send(BMessage event)
{
	if (!fPort)
		return;
	if (event.what != kProxyFocus)
		event.what = kProxyEvent;
	event.AddInt64("be:serial", fSerial);
	fPort->Send(std::move(event), fTarget);
}

void
ProxySink::SetTarget(std::shared_ptr<EventPort> port, const BMessenger& target)
{
	fPort = std::move(port);
	fTarget = target;
}

bool
ProxySink::eventFilter(QObject*, QEvent* event)
{
	if (event->type() == QEvent::FocusIn)
		Send(BMessage(kProxyFocus));
	return false;
}

static ProxySink*
sink_of(QWidget* widget)
{
	const QObjectList& children = widget->children();
	for (QObject* child : children) {
		if (auto* sink = dynamic_cast<ProxySink*>(child))
			return sink;
	}
	return nullptr;
}

WidgetProxy::WidgetProxy(Maker make, EventHook onEvent)
	: fId(next_widget_id()),
	  fOnEvent(std::move(onEvent))
{
	ServerLink::Default().Post([id = fId, make = std::move(make)] {
		QWidget* widget = make();
		widget->hide();
		Registry::Default().Add(id, widget);
	});
}

WidgetProxy::~WidgetProxy()
{
	ServerLink::Default().Post([id = fId] { Registry::Default().Delete(id); });
}

std::optional<QSize>
WidgetProxy::PreferredSize()
{
	std::optional<QSize> size = Ask<QWidget>([](QWidget& widget) {
		widget.ensurePolished();
		return widget.sizeHint().expandedTo(widget.minimumSizeHint());
	});
	if (size)
		*size -= QSize(1, 1);
	return size;
}

void
WidgetProxy::Attach(int64 window, const BMessenger& view)
{
	ServerLink::Default().Post([id = fId, window, view] {
		auto* widget = Registry::Default().Find(id);
		auto* parent = Registry::Default().Find<ServerWindow>(window);
		if (widget == nullptr || parent == nullptr)
			return;
		widget->setParent(parent->Content());
		if (ProxySink* sink = sink_of(widget))
			sink->SetTarget(parent->Content()->Port(), view);
	});
	fPlaced = false;
}

void
WidgetProxy::Detach()
{
	ServerLink::Default().Post([id = fId] {
		auto* widget = Registry::Default().Find(id);
		if (widget == nullptr)
			return;
		widget->hide();
		widget->setParent(nullptr);
		if (ProxySink* sink = sink_of(widget))
			sink->SetTarget(nullptr, BMessenger());
	});
	fPlaced = false;
}

void
WidgetProxy::Place(QRect frame, const QRegion& visible)
{
	if (fPlaced && frame == fFrame && visible == fVisible)
		return;
	fPlaced = true;
	fFrame = frame;
	fVisible = visible;
	ServerLink::Default().Post([id = fId, frame, visible] {
		auto* widget = Registry::Default().Find(id);
		if (widget == nullptr || widget->parentWidget() == nullptr)
			return;
		if (widget->geometry() != frame)
			widget->setGeometry(frame);
		if (visible == QRegion(frame))
			widget->clearMask();
		else
			widget->setMask(visible.translated(-frame.topLeft()));
		widget->setVisible(!visible.isEmpty());
	});
}

//! The toolkit does not order what has no focus, nor anything behind that.
void
WidgetProxy::SetFocusOrder(const std::vector<int64>& ids)
{
	ServerLink::Default().Post([ids] {
		QWidget* before = nullptr;
		for (int64 id : ids) {
			QWidget* widget = Registry::Default().Find(id);
			if (widget == nullptr || widget->parentWidget() == nullptr
				|| widget->focusPolicy() == Qt::NoFocus)
				continue;
			if (before != nullptr && before->window() == widget->window())
				QWidget::setTabOrder(before, widget);
			before = widget;
		}
	});
}

void
WidgetProxy::SetFocus(bool focus)
{
	ServerLink::Default().Post([id = fId, focus] {
		if (auto* widget = Registry::Default().Find(id))
			focus ? widget->setFocus() : widget->clearFocus();
	});
}

void
WidgetProxy::SetFont(const BFont& font)
{
	font_family family;
	font.GetFamilyAndStyle(&family, NULL);
	Adjust<QWidget>([family = QString::fromUtf8(family), size = font.Size(), face = font.Face()](
						QWidget& widget) {
		QFont changed = widget.font();
		changed.setFamily(family);
		changed.setPixelSize(std::max(1, qRound(size)));
		changed.setBold(face & B_BOLD_FACE);
		changed.setItalic(face & B_ITALIC_FACE);
		widget.setFont(changed);
	});
}

void
WidgetProxy::HandleEvent(BMessage* event)
{
	if (event->GetInt64("be:serial", 0) >= fSerial)
		fOnEvent(event);
}

void
WidgetProxy::SetSerial(int64 id, int64 serial)
{
	auto* widget = Registry::Default().Find(id);
	if (ProxySink* sink = widget != nullptr ? sink_of(widget) : nullptr)
		sink->SetSerial(serial);
}

} // namespace BPrivate
