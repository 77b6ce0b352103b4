#include "server/Registry.h"

#include <QApplication>
#include <QThread>
#include <QTimer>
#include <atomic>

namespace BPrivate {

int64
next_widget_id()
{
	static std::atomic<int64> sLast = 0;
	return ++sLast;
}

Registry&
Registry::Default()
{
	static Registry* registry = new Registry;
	return *registry;
}

static constexpr int kLookAgainMs = 20;

static bool
is_within_loop()
{
	return QThread::currentThread()->loopLevel() > 1;
}

static bool
belongs_to(const QObject* object, const QObject* ancestor)
{
	while (object != nullptr && object != ancestor)
		object = object->parent();
	return object != nullptr;
}

void
Registry::Delete(int64 id)
{
	QWidget* widget = fWidgets.take(id).data();
	if (widget == nullptr || !is_within_loop()) {
		delete widget;
		return;
	}
	// what the loop may be waiting for
	for (QWidget* inner : {QApplication::activePopupWidget(), QApplication::activeModalWidget()}) {
		if (inner != widget && belongs_to(inner, widget))
			inner->close();
	}
	widget->hide();
	fLate.append(widget);
	if (fLate.size() == 1)
		QTimer::singleShot(kLookAgainMs, qApp, [this] { DeleteLate(); });
}

void
Registry::DeleteLate()
{
	if (is_within_loop()) {
		QTimer::singleShot(kLookAgainMs, qApp, [this] { DeleteLate(); });
		return;
	}
	for (const QPointer<QWidget>& widget : std::exchange(fLate, {}))
		delete widget.data();
}

void
Registry::DeleteAll()
{
	DeleteLate();
	// a widget may delete others with it: the pointers know
	const QHash<int64, QPointer<QWidget>> widgets = std::move(fWidgets);
	fWidgets.clear();
	for (const QPointer<QWidget>& widget : widgets)
		delete widget.data();
}

} // namespace BPrivate
