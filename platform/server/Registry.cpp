#include "server/Registry.h"

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

void
Registry::DeleteAll()
{
	// a widget may delete others with it: the pointers know
	const QHash<int64, QPointer<QWidget>> widgets = std::move(fWidgets);
	fWidgets.clear();
	for (const QPointer<QWidget>& widget : widgets)
		delete widget.data();
}

} // namespace BPrivate
