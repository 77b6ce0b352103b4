#include "lyrics/TTavoraDView.h"

#include <cstring>

#include <AppDefs.h>
#include <Bitmap.h>
#include <Entry.h>
#include <File.h>
#include <Message.h>
#include <PropertyInfo.h>

#include "lyrics/lyrics_codes.h"
#include "prefs/TPref.h"

namespace {

const property_info kProperties[] = {
	{kCurrentLineProperty, {B_GET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0},
		"The lyrics line that is being sung.", 0, {B_STRING_TYPE}},
	{kLyricsProperty, {B_GET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0},
		"Where the lyrics come from, or why there are none.", 0, {B_MESSAGE_TYPE}},
	{},
};

const char*
encoding_name(int32 encoding)
{
	switch (encoding) {
		case kEncodingUTF8:
			return "UTF-8";
		case kEncodingSJIS:
			return "Shift-JIS";
		case kEncodingJIS:
			return "JIS";
		default:
			return "ISO 8859-1";
	}
}

// Why no lyrics can be read from there.
status_t
fault_of_file(const std::string& path)
{
	const BEntry entry(path.c_str(), true);
	if (!entry.Exists())
		return B_ENTRY_NOT_FOUND;
	if (entry.IsDirectory())
		return B_IS_A_DIRECTORY;
	if (!entry.IsFile())
		return B_NOT_ALLOWED;
	const status_t status = BFile(&entry, B_READ_ONLY).InitCheck();
	return status != B_OK ? status : B_FILE_TOO_LARGE;
}

} // namespace

std::string
TTavoraDView::CurrentLineText() const
{
	if (!fShowsLyrics || fCurrentLine >= CountDispLines())
		return {};
	return std::string(DispLine(fCurrentLine));
}

void
TTavoraDView::CurrentLineChanged()
{
	if (!IsWatched())
		return;
	BMessage notice(kCurrentLineChanged);
	notice.AddString(kCurrentLineProperty, CurrentLineText().c_str());
	notice.AddInt32("Index", fCurrentLine);
	SendNotices(kCurrentLineChanged, &notice);
}

BMessage
TTavoraDView::LyricsSource() const
{
	BMessage source;
	source.AddString("Title", std::string(fFrontEnd.InfoTitle()).c_str());
	if (fSong.filename == nullptr)
		return source;
	const std::string path = LyricsFName();
	source.AddString("Song", fSong.Filename());
	source.AddString("File", path.c_str());
	source.AddInt32("Error", fShowsLyrics ? B_OK : fault_of_file(path));
	if (fShowsLyrics) {
		source.AddString("Encoding", encoding_name(fEncoding));
		source.AddBool("Guessed", fIsEncodingGuessed);
		source.AddInt32("Lines", CountDispLines());
		source.AddInt32("Times", fTimeTable.CountTimes());
	}
	return source;
}

BHandler*
TTavoraDView::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	BPropertyInfo properties(const_cast<property_info*>(kProperties));
	if (properties.FindMatch(message, index, specifier, form, property) >= 0)
		return this;
	return TMERView::ResolveSpecifier(message, index, specifier, form, property);
}

status_t
TTavoraDView::GetSupportedSuites(BMessage* data)
{
	BPropertyInfo properties(const_cast<property_info*>(kProperties));
	data->AddString("suites", "suite/vnd.MERION-TavoraDisplayer");
	data->AddFlat("messages", &properties);
	return TMERView::GetSupportedSuites(data);
}

bool
TTavoraDView::PropertyRequested(BMessage* message)
{
	int32 index;
	BMessage specifier;
	int32 form;
	const char* property;
	BPropertyInfo properties(const_cast<property_info*>(kProperties));
	if (message->GetCurrentSpecifier(&index, &specifier, &form, &property) != B_OK
		|| properties.FindMatch(message, index, &specifier, form, property) < 0)
		return false;

	BMessage reply(B_REPLY);
	if (strcmp(property, kLyricsProperty) == 0) {
		const BMessage source = LyricsSource();
		reply.AddMessage("result", &source);
	} else
		reply.AddString("result", CurrentLineText().c_str());
	reply.AddInt32("error", B_OK);
	message->SendReply(&reply);
	return true;
}
