#pragma once

#include "server/RefFilterModel.h"

#include <Message.h>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>

class QItemSelectionModel;
class QLineEdit;

namespace BPrivate {

class ProxySink;

//! What the user may choose in a file panel.
struct FilePanelTraits {
	bool save = false;
	bool files = true;
	bool folders = false;
	bool several = true;
};

/*!	The desktop's file dialog as the content of a panel's window. It never closes by itself and never
	waits: its questions are windows beside it.
	The events that it sends have an int32 "kind", below. Server thread only. */
class ServerFilePanel : public QFileDialog {
public:
	enum Kind {
		kOpen,     // "path" strings
		kSave,     // "folder", "name" strings
		kCancel,   //
		kSelected, // "path" strings, none when nothing is
		kFolder,   // "folder": the one shown
		kJudge,    // "path" strings, "generation": to be answered by Judged()
	};

	explicit ServerFilePanel(const FilePanelTraits& traits);

	void SetSink(ProxySink* sink) { fSink = sink; }
	//! The panel is shown (again).
	void Opened();
	void SetFolder(const QString& path);
	void SetSaveText(const QString& text);
	//! Empty: the desktop's.
	void SetButtonText(DialogLabel button, const QString& text);
	//! With a filter nothing is listed that was not judged.
	void SetFiltered(bool filtered);
	void Judged(int32 generation, const QStringList& paths, const QList<bool>& accepted);
	//! The questions to the filter are asked anew.
	void Refresh();

	void done(int result) override;

protected:
	void accept() override;
	void hideEvent(QHideEvent* event) override;

private:
	QLineEdit* NameEdit() const;
	QItemSelectionModel* Selection() const;
	void Enter(const QString& folder);
	void WatchSelection();
	void KeepButtonText();
	bool GoTyped(const QString& text);
	QStringList ChosenPaths(const QString& text) const;
	void Open(QStringList paths);
	void Save(const QString& text);
	void SaveAs(const QString& folder, const QString& name);
	void AskToReplace(const QString& folder, const QString& name);
	QMessageBox* Warn(const QString& text, QMessageBox::StandardButtons buttons);
	QStringList SelectedPaths() const;
	void SendPaths(Kind kind, const QStringList& paths);
	void Send(Kind kind, BMessage event);

	const FilePanelTraits fTraits;
	ProxySink* fSink = nullptr;
	RefFilterModel* fFilter;
	QPointer<QMessageBox> fBox; // what the user has to answer first
	QString fDefaultText[2];    // of the buttons: accept, cancel
	QString fAcceptText;
};

} // namespace BPrivate
