#pragma once

#include <QHash>
#include <QSortFilterProxyModel>
#include <QStringList>
#include <SupportDefs.h>
#include <functional>

class QFileSystemModel;

namespace BPrivate {

/*!	Keeps from a file dialog's list what somebody else, who takes some time for it, does not want there. What was not judged yet is not
	listed. Server thread only. */
class RefFilterModel : public QSortFilterProxyModel {
public:
	//! `ask` is called with the paths that have to be judged.
	RefFilterModel(QObject* parent, QFileSystemModel* files,
		std::function<void(const QStringList& paths)> ask);

	//! Those of an older generation do not count any more.
	int32 Generation() const { return fGeneration; }
	void Judge(const QStringList& paths, const QList<bool>& accepted);
	void Forget();

	void sort(int column, Qt::SortOrder order) override;

protected:
	bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
	void AskSoon() const;

	QFileSystemModel* fFiles;
	std::function<void(const QStringList& paths)> fAsk;
	QHash<QString, bool> fVerdicts;
	mutable QStringList fUnknown;
	int32 fGeneration = 0;
};

} // namespace BPrivate
