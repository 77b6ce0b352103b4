#include "server/ServerList.h"

#include "server/WidgetProxy.h"

#include <QKeyEvent>
#include <QScopedValueRollback>

namespace BPrivate {

int
ListModel::rowCount(const QModelIndex& parent) const
{
	return parent.isValid() ? 0 : fRows.size();
}

QVariant
ListModel::data(const QModelIndex& index, int role) const
{
	if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != Qt::DisplayRole)
		return QVariant();
	return fRows[index.row()].text;
}

Qt::ItemFlags
ListModel::flags(const QModelIndex& index) const
{
	if (!checkIndex(index, CheckIndexOption::IndexIsValid) || !fRows[index.row()].enabled)
		return Qt::NoItemFlags;
	return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

void
ListModel::Insert(int at, const std::vector<ListRow>& rows)
{
	if (rows.empty())
		return;
	if (at < 0 || at > rowCount())
		at = rowCount();
	beginInsertRows(QModelIndex(), at, at + rows.size() - 1);
	fRows.insert(fRows.begin() + at, rows.begin(), rows.end());
	endInsertRows();
}

void
ListModel::Remove(int first, int count)
{
	beginRemoveRows(QModelIndex(), first, first + count - 1);
	fRows.erase(fRows.begin() + first, fRows.begin() + first + count);
	endRemoveRows();
}

void
ListModel::Set(int at, const ListRow& row)
{
	if (at >= rowCount())
		return;
	fRows[at] = row;
	emit dataChanged(index(at), index(at));
}

void
ListModel::Clear()
{
	beginResetModel();
	fRows.clear();
	endResetModel();
}

//! Without border and scroll bars: those belong to the view around it, if there is one.
ServerList::ServerList()
{
	setModel(&fModel);
	setUniformItemSizes(true);
	setEditTriggers(NoEditTriggers);
	setFrameShape(QFrame::NoFrame);
	setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
	setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
	connect(
		selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { UserSelected(); });
	connect(this, &QListView::doubleClicked, this, [this] { Send(true); });
}

void
ServerList::SetMultiple(bool multiple)
{
	setSelectionMode(multiple ? ExtendedSelection : SingleSelection);
}

void
ServerList::InsertRows(int at, const std::vector<ListRow>& rows)
{
	QScopedValueRollback guard(fByProgram, true);
	fModel.Insert(at, rows);
	ProgramChanged();
}

void
ServerList::RemoveRows(int first, int count)
{
	QScopedValueRollback guard(fByProgram, true);
	const std::vector<RowRange> before = Selection();
	fModel.Remove(first, count);
	// the toolkit selects a neighbour
	if (before.size() == 1 && before[0].first >= first && before[0].second < first + count)
		clearSelection();
	ProgramChanged();
}

void
ServerList::Clear()
{
	QScopedValueRollback guard(fByProgram, true);
	fModel.Clear();
	ProgramChanged();
}

void
ServerList::SelectRows(const std::vector<RowRange>& ranges)
{
	QScopedValueRollback guard(fByProgram, true);
	QItemSelection selection;
	for (const RowRange& range : ranges)
		selection.select(fModel.index(range.first), fModel.index(range.second));
	selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
	// where the arrow keys go on from
	if (!ranges.empty())
		selectionModel()->setCurrentIndex(
			fModel.index(ranges[0].first), QItemSelectionModel::NoUpdate);
	ProgramChanged();
}

void
ServerList::ScrollToSelection()
{
	const std::vector<RowRange> selection = Selection();
	if (!selection.empty())
		scrollTo(fModel.index(selection[0].first));
}

//! The keys that a list has no use for are the window's.
void
ServerList::keyPressEvent(QKeyEvent* event)
{
	const Qt::KeyboardModifiers foreign = Qt::AltModifier | Qt::MetaModifier;
	bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
	if ((event->modifiers() & foreign) || event->key() == Qt::Key_Escape)
		event->ignore();
	else if (isReturn && selectionModel()->hasSelection())
		Send(true);
	else
		QListView::keyPressEvent(event);
}

std::vector<RowRange>
ServerList::Selection() const
{
	std::vector<RowRange> ranges;
	for (const QItemSelectionRange& range : selectionModel()->selection())
		ranges.emplace_back(range.top(), range.bottom());
	std::sort(ranges.begin(), ranges.end());
	return ranges;
}

void
ServerList::UserSelected()
{
	if (fByProgram)
		return;
	fByUser = true;
	Send(false);
}

void
ServerList::Send(bool invoked)
{
	BMessage event;
	for (const RowRange& range : Selection()) {
		event.AddInt32("first", range.first);
		event.AddInt32("last", range.second);
	}
	event.AddBool("invoked", invoked);
	if (fSink != nullptr)
		fSink->Send(std::move(event));
}

//! Later, when this change counts as the newest.
void
ServerList::ProgramChanged()
{
	if (!std::exchange(fByUser, false))
		return;
	QMetaObject::invokeMethod(
		this, [this] { Send(false); }, Qt::QueuedConnection);
}

} // namespace BPrivate
