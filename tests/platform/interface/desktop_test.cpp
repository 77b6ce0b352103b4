#include "support/display.h"

#include <Clipboard.h>
#include <Message.h>
#include <PropertyInfo.h>
#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <View.h>
#include <string>
#include <thread>

// What other programs of the desktop see: the clipboard, and the tree that screen readers read.

using namespace BPrivate;

namespace {

std::string
clipboard_text()
{
	return ServerLink::Default()
		.Call([] { return QGuiApplication::clipboard()->text().toStdString(); })
		.value_or("the server has gone");
}

std::string
text_of(const BMessage* data)
{
	const void* bytes;
	ssize_t size;
	if (data == NULL || data->FindData("text/plain", B_MIME_TYPE, &bytes, &size) != B_OK)
		return "none";
	return std::string(static_cast<const char*>(bytes), size);
}

status_t
copy_text(std::string_view text)
{
	be_clipboard->Clear();
	be_clipboard->Data()->AddData("text/plain", B_MIME_TYPE, text.data(), text.size());
	return be_clipboard->Commit();
}

} // namespace

TEST(Clipboard, IsTheDesktops)
{
	EXPECT_EQ(be_clipboard->Data(), nullptr);
	EXPECT_EQ(be_clipboard->Clear(), B_NOT_ALLOWED);
	EXPECT_EQ(be_clipboard->Commit(), B_NOT_ALLOWED);
	ASSERT_TRUE(be_clipboard->Lock());
	EXPECT_EQ(copy_text("曲 one"), B_OK);
	EXPECT_EQ(clipboard_text(), "曲 one");
	EXPECT_EQ(copy_text("bad \xff"), B_OK);
	EXPECT_EQ(clipboard_text(), "bad \xef\xbf\xbd");
	std::thread([] {
		EXPECT_FALSE(be_clipboard->IsLocked());
		be_clipboard->Unlock(); // it is not this one's
		EXPECT_EQ(be_clipboard->Data(), nullptr);
	}).join();
	EXPECT_TRUE(be_clipboard->IsLocked());
	be_clipboard->Unlock();

	ServerLink::Default().CallJob([] { QGuiApplication::clipboard()->setText("another's é"); });
	ASSERT_TRUE(be_clipboard->Lock());
	EXPECT_EQ(text_of(be_clipboard->Data()), "another's é");
	be_clipboard->Clear();
	EXPECT_EQ(text_of(be_clipboard->Data()), "none");
	EXPECT_EQ(clipboard_text(), "another's é") << "nothing was committed";
	EXPECT_EQ(be_clipboard->Revert(), B_OK);
	EXPECT_EQ(text_of(be_clipboard->Data()), "another's é");
	be_clipboard->Clear();
	EXPECT_EQ(be_clipboard->Commit(), B_OK);
	EXPECT_EQ(clipboard_text(), "");
	be_clipboard->Unlock();
	EXPECT_FALSE(be_clipboard->IsLocked());
}

namespace {

const property_info kProperties[] = {
	{"CurrentLine", {B_GET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0}, NULL, 0, {B_STRING_TYPE}},
	{},
};

//! Draws a text, as far as others can tell.
class TextView : public BView {
public:
	explicit TextView(BRect frame) : BView(frame, "text", B_FOLLOW_NONE, B_WILL_DRAW) { }

	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override
	{
		BPropertyInfo properties(kProperties);
		if (properties.FindMatch(message, index, specifier, form, property) >= 0)
			return this;
		return BView::ResolveSpecifier(message, index, specifier, form, property);
	}
	status_t GetSupportedSuites(BMessage* data) override
	{
		BPropertyInfo properties(kProperties);
		data->AddFlat("messages", &properties);
		return BView::GetSupportedSuites(data);
	}
	void MessageReceived(BMessage* message) override
	{
		if (message->what != B_GET_PROPERTY)
			return BView::MessageReceived(message);
		BMessage reply(B_REPLY);
		reply.AddString("result", fText.c_str());
		message->SendReply(&reply);
	}
	void Change(const char* text, bool tell)
	{
		fText = text;
		BMessage notice('chng');
		if (tell)
			notice.AddString("CurrentLine", text);
		SendNotices('chng', &notice);
	}

private:
	std::string fText = "first";
};

//! The texts that the canvas has in the tree.
std::vector<std::string>
texts_in_tree(const BWindow* window)
{
	return on_server(window, [](ServerWindow& server) {
		std::vector<std::string> texts;
		QAccessibleInterface* canvas = QAccessible::queryAccessibleInterface(server.Content());
		for (int i = 0; i < canvas->childCount(); i++) {
			QAccessibleInterface* child = canvas->child(i);
			EXPECT_EQ(canvas->indexOfChild(child), i);
			EXPECT_EQ(child->parent(), canvas);
			if (child->role() == QAccessible::StaticText)
				texts.push_back(child->text(QAccessible::Name).toStdString()
					+ (child->state().invisible ? " (hidden)" : ""));
		}
		return texts;
	});
}

using Texts = std::vector<std::string>;

} // namespace

TEST(Accessibility, ADrawnViewsTextIsInTheTree)
{
	WindowHolder<> window(BRect(100, 100, 399, 299), "tree", B_TITLED_WINDOW, 0);
	auto* view = new TextView(BRect(10, 20, 109, 39));
	window->AddChild(new BView(BRect(0, 0, 299, 9), "mute", B_FOLLOW_NONE, B_WILL_DRAW));
	window->AddChild(view);
	window->Show();
	EXPECT_TRUE(wait_until([&] { return texts_in_tree(window) == Texts{"first"}; }));

	const auto change = [&](const char* text, bool tell) {
		ASSERT_TRUE(window->Lock());
		view->Change(text, tell);
		window->Unlock();
		EXPECT_TRUE(wait_until([&] { return texts_in_tree(window) == Texts{text}; })) << text;
	};
	change("二", true);
	change("asked for", false);
	change("", true);
	ASSERT_TRUE(window->Lock());
	view->MoveTo(50, 60);
	window->Unlock();
	settle(window);
	EXPECT_TRUE(on_server(window, [](ServerWindow& server) {
		const QPoint origin = server.Content()->mapToGlobal(QPoint(0, 0));
		QAccessibleInterface* canvas = QAccessible::queryAccessibleInterface(server.Content());
		QAccessibleInterface* text = canvas->childAt(origin.x() + 149, origin.y() + 79);
		return text != nullptr && text->rect() == QRect(origin + QPoint(50, 60), QSize(100, 20))
			&& canvas->childAt(origin.x() + 20, origin.y() + 30) == nullptr;
	}));

	ASSERT_TRUE(window->Lock());
	view->Hide();
	window->Unlock();
	settle(window);
	EXPECT_EQ(texts_in_tree(window), Texts{" (hidden)"});
	ASSERT_TRUE(window->Lock());
	view->RemoveSelf();
	window->Unlock();
	settle(window);
	EXPECT_EQ(texts_in_tree(window), Texts());
	EXPECT_FALSE(view->IsWatched());
	ASSERT_TRUE(window->Lock());
	view->Show();
	window->AddChild(view);
	window->Unlock();
	settle(window);
	EXPECT_TRUE(wait_until([&] { return texts_in_tree(window) == Texts{""}; }));
}
