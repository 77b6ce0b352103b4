#pragma once

#include <QHash>
#include <QPointer>
#include <QWidget>
#include <SupportDefs.h>

namespace BPrivate {

//! A number for a widget-to-be, never used twice. Any thread.
int64 next_widget_id();

/*!	The server's widgets by number: a client never holds a widget, only its number, and a job that
	finds none does nothing. Server thread only. */
class Registry {
public:
	static Registry& Default();

	void Add(int64 id, QWidget* widget) { fWidgets.insert(id, widget); }
	//! NULL when it was never made, was deleted, or is no T.
	template<typename T = QWidget> T* Find(int64 id) const
	{
		return dynamic_cast<T*>(fWidgets.value(id).data());
	}
	/*!	While a loop within the main loop runs (a dialog has opened a menu, something is dragged), code of the widget's own may be
		below it: then the widget is only hidden, and deleted after that. */
	void Delete(int64 id);
	void DeleteAll();
	int32 CountWidgets() const { return fWidgets.size(); }

private:
	void DeleteLate();

	QHash<int64, QPointer<QWidget>> fWidgets;
	QList<QPointer<QWidget>> fLate;
};

} // namespace BPrivate
