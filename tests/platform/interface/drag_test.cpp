#include "support/display.h"

#include <Button.h>
#include <Cursor.h>
#include <Entry.h>
#include <Message.h>
#include <Path.h>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <mutex>
#include <string>
#include <vector>

#include "support/temp_folder.h"

using namespace BPrivate;

namespace {

std::vector<std::string>
paths_of(const BMessage& message)
{
	std::vector<std::string> paths;
	entry_ref ref;
	for (int32 i = 0; message.FindRef("refs", i, &ref) == B_OK; i++)
		paths.push_back(BPath(&ref).Path());
	return paths;
}

//! Takes what is dragged if its first name ends in "yes", and writes down what it is told.
class PickyView : public BView {
public:
	PickyView(BRect frame, const char* name) : BView(frame, name, B_FOLLOW_NONE, B_WILL_DRAW) { }

	void MouseMoved(BPoint where, uint32 transit, const BMessage* dragged) override
	{
		const std::vector<std::string> paths
			= dragged != NULL ? paths_of(*dragged) : std::vector<std::string>();
		const bool isOver = transit == B_ENTERED_VIEW || transit == B_INSIDE_VIEW;
		const bool isRefused
			= isOver && dragged != NULL && (paths.empty() || !paths[0].ends_with("yes"));
		SetViewCursor(isRefused ? &fNotAllowed : &fDefault, std::string_view(Name()) == "waits");
		std::lock_guard lock(fMutex);
		const char* const kTransits[] = {"enter", "inside", "exit", "outside"};
		fTransits.push_back(std::string(kTransits[transit]) + (dragged != NULL ? "+" : ""));
		if (dragged != NULL)
			fDragged = paths;
		fWhere = where;
	}
	void MessageReceived(BMessage* message) override
	{
		if (message->what != B_SIMPLE_DATA)
			return BView::MessageReceived(message);
		std::lock_guard lock(fMutex);
		fDropped = paths_of(*message);
	}

	template<typename T> T Get(T PickyView::*member)
	{
		std::lock_guard lock(fMutex);
		return this->*member;
	}
	bool Has(const char* transit)
	{
		std::lock_guard lock(fMutex);
		return std::find(fTransits.begin(), fTransits.end(), transit) != fTransits.end();
	}

	std::mutex fMutex;
	std::vector<std::string> fTransits;
	std::vector<std::string> fDragged;
	std::vector<std::string> fDropped;
	BPoint fWhere;

private:
	const BCursor fDefault{B_CURSOR_ID_SYSTEM_DEFAULT};
	const BCursor fNotAllowed{B_CURSOR_ID_NOT_ALLOWED};
};

class DragWindow : public BWindow {
public:
	DragWindow() : BWindow(BRect(100, 100, 299, 199), "drag", B_TITLED_WINDOW, 0)
	{
		AddChild(fLeft = new PickyView(BRect(0, 0, 99, 99), "waits"));
		AddChild(fRight = new PickyView(BRect(100, 0, 199, 99), "goes on"));
		fRight->AddChild(new BButton(BRect(10, 60, 89, 89), "button", "Button", NULL));
	}

	PickyView* fLeft;
	PickyView* fRight;
};

//! Another program's drag, as the toolkit tells it to a window.
class Drags : public testing::Test {
protected:
	Drags()
	{
		fWindow->Show();
		settle(fWindow);
	}

	template<typename Event> bool Send(BPoint where, Qt::DropActions actions = Qt::CopyAction)
	{
		return on_server(fWindow, [=, urls = fUrls](ServerWindow& server) {
			QMimeData data;
			data.setUrls(urls);
			Event event(QPoint(where.x, where.y), actions, &data, Qt::LeftButton, Qt::NoModifier);
			event.ignore();
			QCoreApplication::sendEvent(server.windowHandle(), &event);
			EXPECT_TRUE(!event.isAccepted() || event.dropAction() == Qt::CopyAction);
			return event.isAccepted();
		});
	}
	bool Enter(BPoint where) { return Send<QDragEnterEvent>(where); }
	bool Move(BPoint where)
	{
		const bool isTaken = Send<QDragMoveEvent>(where);
		settle(fWindow);
		return isTaken;
	}
	bool Drop(BPoint where) { return Send<QDropEvent>(where); }
	void Leave()
	{
		on_server(fWindow, [](ServerWindow& server) {
			QDragLeaveEvent event;
			return QCoreApplication::sendEvent(server.windowHandle(), &event);
		});
		settle(fWindow);
	}

	void Take(const std::vector<std::string>& names)
	{
		fUrls.clear();
		fPaths.clear();
		for (const std::string& name : names) {
			fPaths.push_back(fFolder.Write(name, "x"));
			fUrls.push_back(QUrl::fromEncoded(QByteArray("file://")
				+ QByteArray::fromStdString(fPaths.back()).toPercentEncoding("/")));
		}
	}

	const BPoint kLeft{30, 40};
	const BPoint kRight{130, 40};
	const BPoint kButton{140, 75};

	TempFolder fFolder;
	QList<QUrl> fUrls;
	std::vector<std::string> fPaths;
	WindowHolder<DragWindow> fWindow;
};

} // namespace

TEST_F(Drags, AreSeenByTheViewUnderThePointerWhateverTheNames)
{
	Take({"a b #1 %41?.yes", "曲 ~é&;+.txt", "no text \xff\xfe.lrc"});
	fUrls.push_back(QUrl("https://example.org/elsewhere.lrc"));
	fUrls.push_back(QUrl("file://elsewhere.example.org/etc/passwd"));
	EXPECT_TRUE(Enter(kLeft));
	EXPECT_TRUE(Move(kLeft));
	EXPECT_TRUE(fWindow->fLeft->Has("enter+"));
	EXPECT_TRUE(Move(kLeft + BPoint(1, 1)));
	EXPECT_TRUE(fWindow->fLeft->Has("inside+"));
	EXPECT_EQ(fWindow->fLeft->Get(&PickyView::fDragged), fPaths);
	EXPECT_TRUE(Move(kRight));
	EXPECT_TRUE(fWindow->fLeft->Has("exit+"));
	EXPECT_TRUE(fWindow->fRight->Has("enter+"));
	EXPECT_EQ(fWindow->fRight->Get(&PickyView::fWhere), BPoint(30, 40));
	EXPECT_TRUE(Move(kRight));
	EXPECT_TRUE(Drop(kRight));
	EXPECT_TRUE(wait_until([&] { return fWindow->fRight->Get(&PickyView::fDropped) == fPaths; }));
	// the drag is over: nothing is dragged by a move without it
	on_server(fWindow, [](ServerWindow& server) {
		QTest::mouseMove(server.windowHandle(), QPoint(131, 41));
		return true;
	});
	settle(fWindow);
	EXPECT_TRUE(fWindow->fRight->Has("inside"));
}

TEST_F(Drags, AreRefusedByAViewThatShowsIt)
{
	Take({"no"});
	EXPECT_TRUE(Enter(kLeft)) << "nobody has been asked yet";
	Move(kLeft);
	EXPECT_FALSE(Move(kLeft));
	EXPECT_EQ(
		on_server(fWindow, [](ServerWindow& server) { return server.Content()->cursor().shape(); }),
		Qt::ForbiddenCursor);
	EXPECT_FALSE(Drop(kLeft));
	settle(fWindow);
	EXPECT_TRUE(fWindow->fLeft->Has("exit+"));
	EXPECT_TRUE(fWindow->fLeft->Get(&PickyView::fDropped).empty());
	EXPECT_EQ(
		on_server(fWindow, [](ServerWindow& server) { return server.Content()->cursor().shape(); }),
		Qt::ArrowCursor);

	// over a control the answer is that of the window's view beneath it
	EXPECT_TRUE(Enter(kButton));
	Move(kButton);
	EXPECT_TRUE(Move(kButton)) << "a control without an opinion";
	Move(kRight);
	EXPECT_FALSE(Move(kRight));
	Leave();
	EXPECT_TRUE(fWindow->fRight->Has("exit+"));

	// a refused drag says nothing about the next one
	Take({"yes"});
	EXPECT_TRUE(Enter(kRight));
	Move(kRight);
	EXPECT_TRUE(Move(kRight));
	EXPECT_TRUE(Drop(kRight));
	EXPECT_TRUE(wait_until([&] { return fWindow->fRight->Get(&PickyView::fDropped) == fPaths; }));
}

TEST_F(Drags, NeverWaitForTheViewAndNeverMove)
{
	Take({"no"});
	ASSERT_TRUE(fWindow->Lock()); // its looper answers nothing
	EXPECT_TRUE(Enter(kLeft));
	for (int i = 0; i < 20; i++)
		EXPECT_TRUE(Send<QDragMoveEvent>(kLeft + BPoint(i, 0)));
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_FALSE(Move(kLeft));
	Leave();
	EXPECT_FALSE(Send<QDragEnterEvent>(kLeft, Qt::MoveAction)) << "only to move the file";
	EXPECT_FALSE(Send<QDragMoveEvent>(kLeft, Qt::MoveAction));
	fUrls = {QUrl("https://example.org/a.yes")};
	EXPECT_FALSE(Enter(kLeft));
}

TEST_F(Drags, CursorsOfViewsThatAreInNoWindow)
{
	const BCursor copy(B_CURSOR_ID_COPY);
	EXPECT_TRUE(copy == BCursor(copy) && !(copy == BCursor(B_CURSOR_ID_MOVE)));
	PickyView view(BRect(0, 0, 9, 9), "alone");
	view.SetViewCursor(&copy);
	ASSERT_TRUE(fWindow->Lock());
	fWindow->fLeft->SetViewCursor(NULL);
	fWindow->fLeft->SetViewCursor(&copy, true);
	fWindow->Unlock();
	EXPECT_EQ(
		on_server(fWindow, [](ServerWindow& server) { return server.Content()->cursor().shape(); }),
		Qt::ArrowCursor)
		<< "the pointer is not over it";
}
