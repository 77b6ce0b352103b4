#include "lyrics/TTavoraDView.h"

#include <Clipboard.h>
#include <Cursor.h>
#include <Message.h>
#include <Messenger.h>

#include "framework/TLLT.h"
#include "framework/file_utils.h"
#include "lyrics/TTavoraDWin.h"
#include "lyrics/lyrics_codes.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/commman_codes.h"
#include "plugin/helpers/settings_files.h"
#include "prefs/TPref.h"
#include "prefs/skin_colors.h"

// What is dropped on the display view: a background image, a skin, lyrics. And what is copied out of it.

namespace {

constexpr const char* kTargetPath = "Target"; // string
constexpr const char* kAsked = "Asked";       // int32: questions that were answered by going on
constexpr int32 kAskedHidden = 1;
constexpr int32 kAskedReplace = 2;

bool
exists(const std::string& path)
{
	return BEntry(path.c_str()).Exists();
}

//! Of a drop; false when it is not one file.
bool
get_only_ref(const BMessage* files, entry_ref* ref)
{
	return files->FindRef("refs", ref) == B_OK && !files->HasRef("refs", 1);
}

} // namespace

void
TTavoraDView::MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage)
{
	TMERView::MouseMoved(where, transit, dragMessage);
	const bool isOver = transit == B_ENTERED_VIEW || transit == B_INSIDE_VIEW;
	if (dragMessage != nullptr && isOver)
		ShowRefusal(KindOf(dragMessage) == dropped_file::kOther);
	else
		EndDrag();
}

//! The system shows it where the pointer is; a drag from another program is refused by it.
void
TTavoraDView::ShowRefusal(bool refuses)
{
	if (refuses == fShowsRefusal)
		return;
	fShowsRefusal = refuses;
	const BCursor cursor(refuses ? B_CURSOR_ID_NOT_ALLOWED : B_CURSOR_ID_SYSTEM_DEFAULT);
	SetViewCursor(&cursor, false);
}

void
TTavoraDView::EndDrag()
{
	fHasDragged = false;
	ShowRefusal(false);
}

//! Looks at a file once, not at each move of it. Without a song there is nothing for lyrics to belong to.
dropped_file
TTavoraDView::KindOf(const BMessage* files)
{
	entry_ref ref;
	if (!get_only_ref(files, &ref))
		return dropped_file::kOther;
	if (!fHasDragged || ref != fDragged) {
		fDraggedKind = classify_dropped_file(ref);
		fDragged = ref;
		fHasDragged = true;
	}
	if (fDraggedKind == dropped_file::kLyrics && fSong.filename == nullptr)
		return dropped_file::kOther;
	return fDraggedKind;
}

void
TTavoraDView::FileDropped(const BMessage* message)
{
	fHasDragged = false;
	const dropped_file kind = KindOf(message);
	EndDrag();
	entry_ref ref;
	if (!get_only_ref(message, &ref))
		return;
	switch (kind) {
		case dropped_file::kImage:
			ImageDropped(ref);
			break;
		case dropped_file::kSkin:
			SkinDropped(ref);
			break;
		case dropped_file::kLyrics:
			LyricsDropped(ref);
			break;
		case dropped_file::kOther:
			break;
	}
}

void
TTavoraDView::ImageDropped(const entry_ref& ref)
{
	const std::string path = merion::path_of(ref);
	if (!ReadBGImage(path)) {
		LoadBGImage(); // the old one again
		fQuestion.Tell((gLLT->Text("Err_Cannot_Read_Image") + path).c_str());
		return;
	}
	gPref->fBGImageFile = path;
	gPref->fUseBGImage = true;
	AppearanceDropped();
}

void
TTavoraDView::SkinDropped(const entry_ref& ref)
{
	if (import_skin_colors(ref, gPref) == B_OK) {
		AppearanceDropped();
		return;
	}
	const std::string text
		= std::string(gLLT->Text("Err_Cannot_Find_PLEdit")) + gLLT->Text("Hint_Check_ZIP_AT");
	fQuestion.Tell(text.c_str(), {"Button_Understand", 'U'});
}

void
TTavoraDView::AppearanceDropped()
{
	PrefAppearanceChanged();
	save_pref(false);
	const TTavoraDWin* window = dynamic_cast<TTavoraDWin*>(Window());
	if (window != nullptr && window->Manager() != nullptr)
		window->Manager()->PostMessage(kBGImageItemChanged);
}

void
TTavoraDView::LyricsDropped(const entry_ref& ref)
{
	BMessage copy(kCopyLyrics);
	copy.AddRef("refs", &ref);
	copy.AddString(
		kTargetPath, merion::reext(fSong.Filename(), lyrics_extension(ref.name)).c_str());
	CopyLyricsRqtd(&copy);
}

/*!	Goes on from question to question until it is copied; each answer brings the request back. The song may be another by
	then: the lyrics belong to the one that they were dropped on. */
void
TTavoraDView::CopyLyricsRqtd(const BMessage* message)
{
	constexpr int32 kGoOn = 0; // the button
	entry_ref ref;
	const std::string target = message->GetString(kTargetPath, "");
	const int32 asked = message->GetInt32(kAsked, 0);
	if (message->GetInt32("which", kGoOn) != kGoOn || message->FindRef("refs", &ref) != B_OK
		|| is_same_file(ref, target))
		return;

	const std::string shown = merion::reext(target, "lrc");
	if (shown != target && exists(shown) && !(asked & kAskedHidden))
		AskToCopy(*message, kAskedHidden, "Ask_Hidden_By_LRC_", shown, {"Button_Copy", 'C'});
	else if (exists(target) && !(asked & kAskedReplace))
		AskToCopy(*message, kAskedReplace, "Ask_Replace_Lyrics_", target, {"Button_Replace", 'R'});
	else if (copy_lyrics(ref, target, asked & kAskedReplace) != B_OK)
		fQuestion.Tell((gLLT->Text("Err_Cannot_Copy_File") + merion::path_of(ref)).c_str());
	else if (fSong.filename != nullptr && LyricsFName() == target)
		SongChanged(); // at once, and even if the file's time is what it was
}

//! `key`: of the question's text, without the 1 and the 2, between which the path stands.
void
TTavoraDView::AskToCopy(const BMessage& request, int32 question, const std::string& key,
	const std::string& path, merion::TQuestion::Button goOn)
{
	BMessage answer(request);
	const int32 asked = request.GetInt32(kAsked, 0) | question;
	for (const char* field : {"which", kAsked, "when", "source"})
		answer.RemoveName(field);
	answer.AddInt32(kAsked, asked);
	const std::string text
		= gLLT->Text((key + "1").c_str()) + path + gLLT->Text((key + "2").c_str());
	fQuestion.Ask(text.c_str(), {goOn, {"Button_Cancel", 'N'}}, answer, BMessenger(this));
}

void
TTavoraDView::CopyCurrentLine() const
{
	const std::string line = CurrentLineText();
	if (line.empty() || !be_clipboard->Lock())
		return;
	be_clipboard->Clear();
	be_clipboard->Data()->AddData("text/plain", B_MIME_TYPE, line.data(), line.size());
	be_clipboard->Commit();
	be_clipboard->Unlock();
}
