#pragma once

#include <QAbstractListModel>
#include <QListView>
#include <vector>

namespace BPrivate {

class ProxySink;

struct ListRow {
	QString text;
	bool enabled = true;
};

//! First and last index of rows in a row.
using RowRange = std::pair<int, int>;

/*!	The rows of a list. Server thread only. */
class ListModel : public QAbstractListModel {
public:
	int rowCount(const QModelIndex& parent = QModelIndex()) const override;
	QVariant data(const QModelIndex& index, int role) const override;
	Qt::ItemFlags flags(const QModelIndex& index) const override;

	//! At the end when there is no such index.
	void Insert(int at, const std::vector<ListRow>& rows);
	void Remove(int first, int count);
	void Set(int at, const ListRow& row);
	void Clear();

private:
	std::vector<ListRow> fRows;
};

/*!	A list of lines. The events that it sends: "first" and "last" (int32), the ranges that are selected; "invoked" (bool): by a double click or
	Return. What the program changes sends nothing; but when the user had selected something just before, which the other side may have taken
	for outdated, the selection is sent again. Server thread only. */
class ServerList : public QListView {
public:
	ServerList();

	void SetSink(ProxySink* sink) { fSink = sink; }
	void SetMultiple(bool multiple);
	void InsertRows(int at, const std::vector<ListRow>& rows);
	//! None of them is selected any more, and no other one instead.
	void RemoveRows(int first, int count);
	void SetRow(int at, const ListRow& row) { fModel.Set(at, row); }
	void Clear();
	void SelectRows(const std::vector<RowRange>& ranges);
	void ScrollToSelection();

protected:
	void keyPressEvent(QKeyEvent* event) override;

private:
	std::vector<RowRange> Selection() const;
	void UserSelected();
	void Send(bool invoked);
	void ProgramChanged();

	ListModel fModel;
	ProxySink* fSink = nullptr;
	bool fByProgram = false;
	bool fByUser = false; // since the program's last change
};

} // namespace BPrivate
