#include "support/display.h"

#include <Alert.h>
#include <Button.h>
#include <Clipboard.h>
#include <Entry.h>
#include <Message.h>
#include <Messenger.h>
#include <TextView.h>
#include <atomic>

#include "lyrics/TTavoraDView.h"
#include "lyrics/TTavoraDWin.h"
#include "lyrics/dropped_file.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/commman_codes.h"
#include "plugin/helpers/settings_files.h"
#include "support/DisplayFixture.h"

namespace {

using namespace std::literals;

//! One grey point, 24 bits.
const std::string kBitmap
	= "BM\x3a\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\4\0\0\0"s
	+ std::string(16, '\0') + "\x80\x80\x80\0"s;
constexpr const char* kColors = "[Text]\nNormal=#00FF80\n";

entry_ref
ref_of(const std::string& path)
{
	entry_ref ref;
	EXPECT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK) << path;
	return ref;
}

std::string
contents_of(const std::string& path)
{
	std::ifstream file(path, std::ios::binary);
	return std::string(std::istreambuf_iterator<char>(file), {});
}

//! Counts the notices that the preferences window would get.
class Manager : public TCommMan {
public:
	Manager() : TCommMan("drop test", "nobody") { Run(); }

	void MessageReceived(BMessage* message) override
	{
		if (message->what == kBGImageItemChanged)
			fNotices++;
		TCommMan::MessageReceived(message);
	}

	std::atomic<int> fNotices = 0;
};

class DropTest : public DisplayFixture {
protected:
	DropTest()
	{
		fWindow = new TTavoraDWin(BRect(100, 100, 399, 299), fManager);
		fView = static_cast<TTavoraDView*>(fWindow->ChildAt(0));
		fWindow->Appear();
		settle(fWindow);
	}
	~DropTest() override
	{
		Close();
		if (fManager->Lock())
			fManager->Quit();
	}

	void Close()
	{
		if (fWindow != nullptr && fWindow->Lock())
			fWindow->Quit();
		fWindow = nullptr;
	}

	static BMessage FilesMessage(const std::vector<std::string>& paths)
	{
		BMessage files(B_SIMPLE_DATA);
		for (const std::string& path : paths) {
			const entry_ref ref = ref_of(path);
			files.AddRef("refs", &ref);
		}
		return files;
	}
	void Drop(const std::vector<std::string>& paths)
	{
		BMessage files = FilesMessage(paths);
		BMessenger(fView).SendMessage(&files);
		settle(fWindow);
	}

	//! Whether the view takes what is dragged over it.
	bool Takes(const std::vector<std::string>& paths)
	{
		const BMessage files = FilesMessage(paths);
		if (!fWindow->Lock())
			return false;
		const BCursorID& cursor = BPrivate::ViewData::Of(fView).cursor;
		fView->MouseMoved(BPoint(9, 9), B_ENTERED_VIEW, &files);
		const bool isTaken = cursor != B_CURSOR_ID_NOT_ALLOWED;
		fView->MouseMoved(BPoint(8, 8), B_INSIDE_VIEW, &files);
		EXPECT_EQ(cursor != B_CURSOR_ID_NOT_ALLOWED, isTaken);
		fView->MouseMoved(BPoint(-1, -1), B_EXITED_VIEW, &files);
		EXPECT_EQ(cursor, B_CURSOR_ID_SYSTEM_DEFAULT);
		fWindow->Unlock();
		return isTaken;
	}

	void Play(const char* title, int32 positionMs, const std::string& line)
	{
		host().Play(title, positionMs);
		ExpectLine(line);
	}
	void ExpectLine(const std::string& line)
	{
		std::string current;
		EXPECT_TRUE(wait_until([&] {
			if (!fWindow->Lock())
				return false;
			current = fView->CurrentLineText();
			fWindow->Unlock();
			return current == line;
		})) << current
			<< " instead of " << line;
	}

	//! The box that is shown; it may go at any time.
	static BMessenger OpenBox()
	{
		BMessenger found;
		BWindow* window;
		for (int32 i = 0; !found.IsValid() && (window = be_app->WindowAt(i)) != nullptr; i++) {
			if (!window->Lock())
				continue;
			if (dynamic_cast<BAlert*>(window) != nullptr && !window->IsHidden())
				found = BMessenger(window);
			window->Unlock();
		}
		return found;
	}
	static bool IsBoxOpen() { return OpenBox().IsValid(); }
	//! Its text must have that part.
	static void Answer(int32 button, const std::string& part)
	{
		ASSERT_TRUE(wait_until(IsBoxOpen)) << part;
		const BMessenger messenger = OpenBox();
		ASSERT_TRUE(messenger.LockTarget());
		BLooper* looper;
		messenger.Target(&looper);
		BAlert* box = dynamic_cast<BAlert*>(looper);
		EXPECT_NE(std::string(box->TextView()->Text()).find(part), std::string::npos)
			<< box->TextView()->Text();
		box->ButtonAt(button)->Invoke();
		box->Unlock();
		ASSERT_TRUE(wait_until([&] { return !messenger.IsValid(); }));
	}

	Manager* fManager = new Manager;
	TTavoraDWin* fWindow;
	TTavoraDView* fView;
};

} // namespace

TEST_F(DropTest, KnowsFilesByWhatTheyAre)
{
	std::filesystem::create_directories(fFolder / "skin");
	std::filesystem::create_directories(fFolder / "folder.lrc");
	fFolder.Write("skin/pledit.txt", kColors);
	std::filesystem::create_symlink(fFolder / "gone.txt", fFolder / "dangling.txt");
	using enum dropped_file;
	const struct {
		const char* name;
		std::string bytes;
		dropped_file kind;
	} kFiles[] = {
		{"曲 #1 %20.LRC", "", kLyrics},
		{"PK.txt", "PK\3\4", kLyrics},
		{"a.jpeg.exe", "\xff\xd8\xff\xe0", kImage},
		{"b", "\x89PNG\r\n\x1a\n", kImage},
		{"c", kBitmap, kImage},
		{"d", "BM is how this text begins", kOther},
		{"e", "RIFFsizeWAVE", kOther},
		{"f", "RIFFsizeWEBP", kImage},
		{"g.png", "no picture", kOther},
		{"h", "P6\n1 1\n255\n", kImage},
		{"i", "", kOther},
		{"j.wsz", "PK\3\4", kSkin},
		{"lrc", "without a dot", kOther},
		{"k.lrc.bak", "", kOther},
	};
	for (const auto& [name, bytes, kind] : kFiles)
		EXPECT_EQ(classify_dropped_file(ref_of(fFolder.Write(name, bytes))), kind) << name;
	EXPECT_EQ(classify_dropped_file(ref_of(fFolder / "skin")), kSkin);
	EXPECT_EQ(classify_dropped_file(ref_of(fFolder / "folder.lrc")), kOther);
	EXPECT_EQ(classify_dropped_file(ref_of(fFolder / "dangling.txt")), kOther);
}

TEST_F(DropTest, RefusesWhileDragging)
{
	const std::string image = fFolder.Write("a.bmp", kBitmap);
	const std::string lyrics = fFolder.Write("a.lrc", "[00:00]la");
	const std::string other = fFolder.Write("a.ogg", "OggS");
	EXPECT_TRUE(Takes({image}));
	EXPECT_FALSE(Takes({other}));
	EXPECT_FALSE(Takes({image, image})) << "which one?";
	EXPECT_FALSE(Takes({lyrics})) << "no song is there";
	EXPECT_FALSE(Takes({}));
	Drop({other});
	Drop({lyrics});
	Drop({image, image});
	EXPECT_FALSE(IsBoxOpen());
	EXPECT_FALSE(gPref->fUseBGImage);
	host().SetPlaylist({Song("song")});
	Save("song.lrc", "[00:00]one");
	Play("song", 0, "one");
	EXPECT_TRUE(Takes({lyrics}));
}

TEST_F(DropTest, AnImageBecomesTheBackground)
{
	const std::string image = fFolder.Write("曲 #1.bmp", kBitmap);
	const std::string broken = fFolder.Write("broken.bmp", kBitmap.substr(0, 20));
	Drop({image});
	EXPECT_EQ(gPref->fBGImageFile.Get(), image);
	EXPECT_TRUE(gPref->fUseBGImage);
	EXPECT_TRUE(has_pref_file());
	EXPECT_TRUE(wait_until([&] { return fManager->fNotices == 1; }));
	EXPECT_EQ(pixels_of(fWindow).pixelColor(2, 2), QColor(0x80, 0x80, 0x80)) << "it is not shown";

	Drop({broken});
	Answer(0, broken);
	settle(fWindow);
	EXPECT_EQ(gPref->fBGImageFile.Get(), image);
	EXPECT_EQ(fManager->fNotices, 1);
	EXPECT_EQ(pixels_of(fWindow).pixelColor(2, 2), QColor(0x80, 0x80, 0x80)) << "it is lost";
}

TEST_F(DropTest, ASkinGivesItsColours)
{
	std::filesystem::create_directories(fFolder / "skin");
	fFolder.Write("skin/PLEDIT.TXT", kColors);
	Drop({fFolder / "skin"});
	EXPECT_EQ(gPref->fLyricsColor.Get(), (rgb_color{0, 255, 128, 255}));
	EXPECT_TRUE(wait_until([&] { return fManager->fNotices == 1; }));
	Drop({fFolder.Write("empty.zip", "PK\3\4 no archive")});
	Answer(0, "PLEDIT.TXT");
	EXPECT_EQ(gPref->fLyricsColor.Get(), (rgb_color{0, 255, 128, 255}));
	EXPECT_EQ(fManager->fNotices, 1);
}

TEST_F(DropTest, LyricsAreCopiedBesideTheSongAndShownAtOnce)
{
	host().SetPlaylist({Song("song")});
	std::filesystem::create_directories(fFolder / "other");
	const std::string dropped = fFolder.Write("other/some name.LRC", "[00:00]new\n[00:10]ten");
	Play("song", 0, "");
	ASSERT_TRUE(wait_until([&] { return Takes({dropped}); })) << "the song is not known yet";
	Drop({dropped});
	ExpectLine("new");
	EXPECT_FALSE(IsBoxOpen());
	EXPECT_EQ(contents_of(fFolder / "song.lrc"), contents_of(dropped));

	// onto itself, under its own and another name
	std::filesystem::create_symlink(fFolder / "song.lrc", fFolder / "link.lrc");
	Drop({fFolder / "song.lrc"});
	Drop({fFolder / "link.lrc"});
	EXPECT_FALSE(IsBoxOpen());

	// an existing one only when the user says so; meanwhile the lyrics go on
	fFolder.Write("other/some name.LRC", "[00:00]newer\n[00:10]newer ten");
	Drop({dropped});
	ASSERT_TRUE(wait_until(IsBoxOpen));
	Play("song", 10000, "ten");
	Answer(1, fFolder / "song.lrc");
	settle(fWindow);
	EXPECT_EQ(contents_of(fFolder / "song.lrc"), "[00:00]new\n[00:10]ten");
	Drop({dropped});
	Answer(0, fFolder / "song.lrc");
	ExpectLine("newer ten");

	// a text that would not be seen, and one that is there besides
	const std::string text = fFolder.Write("other/text.txt", "plain");
	fFolder.Write("song.txt", "before");
	Drop({text});
	Answer(0, fFolder / "song.lrc");
	Answer(1, fFolder / "song.txt");
	settle(fWindow);
	EXPECT_EQ(contents_of(fFolder / "song.txt"), "before");
	Drop({text});
	Answer(0, fFolder / "song.lrc");
	Answer(0, fFolder / "song.txt");
	EXPECT_TRUE(wait_until([&] { return contents_of(fFolder / "song.txt") == "plain"; }));
	ExpectLine("newer ten");
	for (const auto& entry : std::filesystem::directory_iterator(fFolder.Path()))
		EXPECT_NE(entry.path().filename().string()[0], '.') << "a file was left over";
}

TEST_F(DropTest, ACopyThatFailsIsTold)
{
	host().SetPlaylist({Song("song")});
	std::filesystem::create_directories(fFolder / "other");
	std::filesystem::create_directories(fFolder / "song.lrc");
	const std::string dropped = fFolder.Write("other/a.lrc", "[00:00]new");
	host().Play("song", 0);
	ASSERT_TRUE(wait_until([&] { return Takes({dropped}); }));
	Drop({dropped});
	Answer(0, fFolder / "song.lrc"); // a folder is in the way
	Answer(0, dropped);
	EXPECT_TRUE(std::filesystem::is_directory(fFolder / "song.lrc"));
}

TEST_F(DropTest, AnOpenQuestionEndsWithTheWindow)
{
	host().SetPlaylist({Song("song")});
	Save("song.lrc", "[00:00]one");
	Play("song", 0, "one");
	std::filesystem::create_directories(fFolder / "other");
	Drop({fFolder.Write("other/a.lrc", "two")});
	ASSERT_TRUE(wait_until(IsBoxOpen));
	Close();
	EXPECT_FALSE(IsBoxOpen());
	EXPECT_EQ(contents_of(fFolder / "song.lrc"), "[00:00]one");
}

TEST_F(DropTest, CopyTakesTheCurrentLine)
{
	Save("song.lrc", "[00:00]曲\n[00:10]ten\n[00:20]");
	host().SetPlaylist({Song("song")});
	click(fWindow, BPoint(20, 20)); // the keys are then for it
	const struct {
		int32 positionMs;
		const char* line;
		Qt::KeyboardModifiers modifiers;
		const char* clipboard;
	} kCases[] = {
		{0, "曲", Qt::ControlModifier, "曲"},
		{10000, "ten", Qt::ControlModifier | Qt::ShiftModifier, "ten"},
		{0, "曲", Qt::AltModifier, "曲"},
		{10000, "ten", {}, "曲"},
		{20000, "", Qt::ControlModifier, "曲"},
	};
	for (const auto& [positionMs, line, modifiers, expected] : kCases) {
		Play("song", positionMs, line);
		type_key(fWindow, Qt::Key_C, modifiers);
		settle(fWindow);
		settle(fWindow); // a shortcut is posted once more
		ASSERT_TRUE(be_clipboard->Lock());
		const void* bytes = "";
		ssize_t size = 0;
		be_clipboard->Data()->FindData("text/plain", B_MIME_TYPE, &bytes, &size);
		EXPECT_EQ(std::string(static_cast<const char*>(bytes), size), expected);
		be_clipboard->Unlock();
	}
}
