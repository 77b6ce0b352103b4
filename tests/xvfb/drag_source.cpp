/*!	drag_source PATH...: a window whose drags carry these files, one after the other. On standard output it says whether what is
	below would take them, each time that changes ("may" or "may not"), and at the end whether it has ("taken" or "refused"). */

#include <QApplication>
#include <QDrag>
#include <QFileInfo>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>
#include <cstdio>

namespace {

class Source : public QWidget {
public:
	explicit Source(const QStringList& paths) : fPaths(paths)
	{
		setWindowTitle("Drag source");
		setGeometry(40, 500, 120, 80);
	}

protected:
	void mousePressEvent(QMouseEvent*) override
	{
		if (fPaths.isEmpty())
			return;
		auto* files = new QMimeData;
		files->setUrls({QUrl::fromLocalFile(fPaths.takeFirst())});
		auto* drag = new QDrag(this);
		drag->setMimeData(files);
		connect(drag, &QDrag::actionChanged,
			[](Qt::DropAction action) { puts(action == Qt::IgnoreAction ? "may not" : "may"); });
		// As file managers offer it; a move would be the end of the file.
		const Qt::DropAction done = drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
		puts(done == Qt::CopyAction ? "taken" : done == Qt::MoveAction ? "moved" : "refused");
	}

private:
	QStringList fPaths;
};

} // namespace

int
main(int argc, char** argv)
{
	setvbuf(stdout, nullptr, _IOLBF, 0);
	QApplication application(argc, argv);
	Source source(application.arguments().mid(1));
	source.show();
	return application.exec();
}
