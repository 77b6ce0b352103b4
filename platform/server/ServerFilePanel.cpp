#include "server/ServerFilePanel.h"

#include "server/WidgetProxy.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QHideEvent>
#include <QLineEdit>
#include <QTreeView>
#include <StorageDefs.h>

namespace BPrivate {

ServerFilePanel::ServerFilePanel(const FilePanelTraits& traits) : fTraits(traits)
{
	setOption(DontUseNativeDialog);
	setAcceptMode(traits.save ? AcceptSave : AcceptOpen);
	if (traits.save)
		setFileMode(AnyFile);
	else if (!traits.files)
		setFileMode(Directory);
	else
		setFileMode(traits.several ? ExistingFiles : ExistingFile);
	setOption(ShowDirsOnly, !traits.save && !traits.files);
	// the window's frame counts, not the place where a dialog would go
	setAttribute(Qt::WA_Moved);
	setAutoFillBackground(true);
	setSizeGripEnabled(false);
	findChild<QTreeView*>("treeView")->header()->setSectionResizeMode(0, QHeaderView::Stretch);
	for (const char* name : {"fileTypeLabel", "fileTypeCombo"}) {
		if (auto* widget = findChild<QWidget*>(name))
			widget->hide();
	}
	auto* files = findChild<QFileSystemModel*>();
	fFilter = new RefFilterModel(this, files, [this](const QStringList& paths) {
		BMessage event;
		event.AddInt32("generation", fFilter->Generation());
		for (const QString& path : paths)
			event.AddString("path", path.toUtf8().constData());
		Send(kJudge, std::move(event));
	});
	connect(files, &QFileSystemModel::rootPathChanged, this, [this](const QString& path) {
		BMessage event;
		event.AddString("folder", path.toUtf8().constData());
		Send(kFolder, std::move(event));
	});
	fDefaultText[0] = labelText(Accept);
	fDefaultText[1] = labelText(Reject);
	fAcceptText = fDefaultText[0];
	connect(NameEdit(), &QLineEdit::textChanged, this, [this] { KeepButtonText(); });
	WatchSelection();
}

//! Whatever is installed for the list brings a new selection.
void
ServerFilePanel::WatchSelection()
{
	connect(Selection(), &QItemSelectionModel::selectionChanged, this, [this] {
		KeepButtonText();
		SendPaths(kSelected, SelectedPaths());
	});
}

//! The toolkit calls the button of a folder "Open", because it would go into it.
void
ServerFilePanel::KeepButtonText()
{
	if (fTraits.folders && !fTraits.save)
		setLabelText(Accept, fAcceptText);
}

void
ServerFilePanel::Opened()
{
	Selection()->clear();
	if (!fTraits.save)
		NameEdit()->clear();
	NameEdit()->selectAll();
	NameEdit()->setFocus();
}

void
ServerFilePanel::SetFolder(const QString& path)
{
	setDirectory(path);
}

void
ServerFilePanel::SetSaveText(const QString& text)
{
	NameEdit()->setText(text);
	NameEdit()->selectAll();
}

void
ServerFilePanel::SetButtonText(DialogLabel button, const QString& text)
{
	const QString& shown = text.isEmpty() ? fDefaultText[button == Accept ? 0 : 1] : text;
	setLabelText(button, shown);
	if (button == Accept)
		fAcceptText = shown;
}

void
ServerFilePanel::SetFiltered(bool filtered)
{
	fFilter->Forget();
	if (filtered == (proxyModel() != nullptr))
		return;
	setProxyModel(filtered ? fFilter : nullptr);
	WatchSelection();
}

void
ServerFilePanel::Judged(int32 generation, const QStringList& paths, const QList<bool>& accepted)
{
	if (generation == fFilter->Generation())
		fFilter->Judge(paths, accepted);
}

void
ServerFilePanel::Refresh()
{
	fFilter->Forget();
}

//! The toolkit's way of closing: the window is not the dialog's to close.
void
ServerFilePanel::done(int)
{
	Send(kCancel, BMessage());
}

/*!	In place of the toolkit's, which takes no folders and files together, and waits for the answers to
	its questions. */
void
ServerFilePanel::accept()
{
	const QString text = NameEdit()->text();
	if (fBox != nullptr || GoTyped(text))
		return;
	if (fTraits.save)
		Save(text);
	else
		Open(ChosenPaths(text));
}

void
ServerFilePanel::hideEvent(QHideEvent* event)
{
	QFileDialog::hideEvent(event);
	if (!event->spontaneous())
		delete fBox.data();
}

//! The name may be that of a folder to go to.
bool
ServerFilePanel::GoTyped(const QString& text)
{
	const bool isWay = text.endsWith('/') || text == ".." || text == ".";
	const QFileInfo path(directory(), text);
	if (text.isEmpty() || !path.isDir() || !(isWay || fTraits.save))
		return false;
	Enter(path.canonicalFilePath());
	NameEdit()->clear();
	return true;
}

QStringList
ServerFilePanel::ChosenPaths(const QString& text) const
{
	// by what is selected and not by the text, in which the toolkit puts quotation marks around several names
	const QStringList selected = SelectedPaths();
	if (!selected.isEmpty())
		return selected;
	if (!text.isEmpty())
		return {QFileInfo(directory(), text).absoluteFilePath()};
	return fTraits.files ? QStringList() : QStringList(directory().absolutePath());
}

void
ServerFilePanel::Open(QStringList paths)
{
	for (const QString& path : paths) {
		if (!QFileInfo::exists(path)) {
			Warn(tr("%1\nFile not found.\nPlease verify the correct file name was given.")
					 .arg(QFileInfo(path).fileName()),
				QMessageBox::Ok);
			return;
		}
	}
	if (paths.size() == 1 && !fTraits.folders && QFileInfo(paths[0]).isDir()) {
		Enter(paths[0]);
		NameEdit()->clear();
		return;
	}
	paths.removeIf([this](const QString& path) {
		return QFileInfo(path).isDir() ? !fTraits.folders : !fTraits.files;
	});
	if (paths.size() == 1 || (fTraits.several && !paths.isEmpty()))
		SendPaths(kOpen, paths);
}

void
ServerFilePanel::Save(const QString& text)
{
	const QStringList selected = SelectedPaths();
	if (selected.size() == 1 && QFileInfo(selected[0]).isDir()) {
		Enter(selected[0]);
		return;
	}
	const QString path = text.startsWith('/') ? text : directory().path() + '/' + text;
	const qsizetype leaf = path.lastIndexOf('/') + 1;
	const QString folder = QFileInfo(path.left(leaf)).canonicalFilePath();
	const QString name = path.mid(leaf);
	if (name.isEmpty())
		return;
	if (folder.isEmpty())
		Warn(tr("%1\nDirectory not found.\nPlease verify the correct directory name was given.")
				 .arg(path.left(leaf)),
			QMessageBox::Ok);
	else if (name.toUtf8().size() >= B_FILE_NAME_LENGTH)
		Warn(QCoreApplication::translate("QFileSystemModel",
				 "<b>The name \"%1\" cannot be used.</b><p>Try using another name, with fewer "
				 "characters or no punctuation marks.")
				 .arg(name.toHtmlEscaped()),
			QMessageBox::Ok);
	else if (QFileInfo info(path); info.exists() || info.isSymLink())
		AskToReplace(folder, name);
	else
		SaveAs(folder, name);
}

void
ServerFilePanel::SaveAs(const QString& folder, const QString& name)
{
	BMessage event;
	event.AddString("folder", folder.toUtf8().constData());
	event.AddString("name", name.toUtf8().constData());
	Send(kSave, std::move(event));
}

void
ServerFilePanel::AskToReplace(const QString& folder, const QString& name)
{
	QMessageBox* box = Warn(tr("%1 already exists.\nDo you want to replace it?").arg(name),
		QMessageBox::Yes | QMessageBox::No);
	box->setDefaultButton(QMessageBox::No);
	connect(box, &QMessageBox::finished, this, [this, folder, name](int answer) {
		if (answer == QMessageBox::Yes)
			SaveAs(folder, name);
	});
}

QMessageBox*
ServerFilePanel::Warn(const QString& text, QMessageBox::StandardButtons buttons)
{
	delete fBox.data();
	fBox = new QMessageBox(QMessageBox::Warning, window()->windowTitle(), text, buttons, this);
	fBox->setAttribute(Qt::WA_DeleteOnClose);
	connect(fBox, &QMessageBox::finished, this, [this] { fBox.clear(); });
	fBox->open();
	return fBox;
}

void
ServerFilePanel::Enter(const QString& folder)
{
	setDirectory(folder);
	Selection()->clear();
}

QItemSelectionModel*
ServerFilePanel::Selection() const
{
	return findChild<QAbstractItemView*>("listView")->selectionModel();
}

QLineEdit*
ServerFilePanel::NameEdit() const
{
	return findChild<QLineEdit*>("fileNameEdit");
}

//! A way that is typed is selected too, out of sight.
QStringList
ServerFilePanel::SelectedPaths() const
{
	QStringList paths;
	const QModelIndex shown = findChild<QAbstractItemView*>("listView")->rootIndex();
	const QModelIndexList rows = Selection()->selectedRows();
	for (const QModelIndex& row : rows) {
		if (row.parent() == shown)
			paths.append(row.data(QFileSystemModel::FilePathRole).toString());
	}
	return paths;
}

void
ServerFilePanel::SendPaths(Kind kind, const QStringList& paths)
{
	BMessage event;
	for (const QString& path : paths)
		event.AddString("path", path.toUtf8().constData());
	Send(kind, std::move(event));
}

void
ServerFilePanel::Send(Kind kind, BMessage event)
{
	event.AddInt32("kind", kind);
	if (fSink != nullptr)
		fSink->Send(std::move(event));
}

} // namespace BPrivate
