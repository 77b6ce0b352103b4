#include "server/RefFilterModel.h"

#include <QFileSystemModel>
#include <QTimer>

namespace BPrivate {

RefFilterModel::RefFilterModel(
	QObject* parent, QFileSystemModel* files, std::function<void(const QStringList& paths)> ask)
	: QSortFilterProxyModel(parent),
	  fFiles(files),
	  fAsk(std::move(ask))
{
	// the way to the folder that is shown is never judged
	connect(files, &QFileSystemModel::rootPathChanged, this, [this] { invalidateFilter(); });
}

void
RefFilterModel::Judge(const QStringList& paths, const QList<bool>& accepted)
{
	for (qsizetype i = 0; i < std::min(paths.size(), accepted.size()); i++)
		fVerdicts[paths[i]] = accepted[i];
	invalidateFilter();
}

void
RefFilterModel::Forget()
{
	fGeneration++;
	fVerdicts.clear();
	fUnknown.clear();
	invalidateFilter();
}

//! The files know better what belongs where than their names do.
void
RefFilterModel::sort(int column, Qt::SortOrder order)
{
	fFiles->sort(column, order);
}

bool
RefFilterModel::filterAcceptsRow(int row, const QModelIndex& parent) const
{
	const QString path = fFiles->filePath(fFiles->index(row, 0, parent));
	const QString shown = fFiles->rootPath();
	const QString folder = path.endsWith('/') ? path : path + '/';
	if (shown == path || shown.startsWith(folder))
		return true;
	auto verdict = fVerdicts.constFind(path);
	if (verdict != fVerdicts.constEnd())
		return *verdict;
	if (fFiles->filePath(parent) == shown) {
		if (fUnknown.isEmpty())
			AskSoon();
		fUnknown.append(path);
	}
	return false;
}

//! All that are found out about in one go are asked about together.
void
RefFilterModel::AskSoon() const
{
	QTimer::singleShot(0, this, [this] {
		fUnknown.removeDuplicates();
		if (!fUnknown.isEmpty())
			fAsk(std::exchange(fUnknown, QStringList()));
	});
}

} // namespace BPrivate
