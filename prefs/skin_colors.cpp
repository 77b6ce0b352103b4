#include "prefs/skin_colors.h"

#include <cstring>
#include <istream>
#include <sstream>

#include <DataIO.h>
#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <FindDirectory.h>
#include <Message.h>
#include <OS.h>
#include <Path.h>
#include <TranslatorRoster.h>

#include "framework/TNameIndex.h"
#include "framework/file_utils.h"
#include "prefs/TPref.h"

namespace {

constexpr const char* kColorFile = "PLEDIT.TXT";
constexpr const char* kTemporaryFile = "TavoraD_Tmp_PLEdit.txt";
constexpr size_t kMaxColorFileSize = 1024 * 1024; // bytes
constexpr const char* kSection = "[Text]";
constexpr int32 kMaxWords = 10;

constexpr struct {
	const char* key;
	color_index index;
} kSkinColors[] = {
	{"Normal=#", kColorLyrics},
	{"NormalBG=#", kColorBG},
	{"Current=#", kColorActiveLyrics},
	{"SelectedBG=#", kColorActiveBG},
};

// How the first file of a ZIP archive begins.
constexpr char kArchiveSignature[] = {'P', 'K', 3, 4};

/*!	A folder of our own among the temporary files, so that nobody else's file can stand where the translator writes. It
	goes with what is in it. */
class ExtractionFolder {
public:
	ExtractionFolder() : fStatus(Make()) { }
	ExtractionFolder(const ExtractionFolder&) = delete;
	ExtractionFolder& operator=(const ExtractionFolder&) = delete;
	~ExtractionFolder()
	{
		BEntry folder;
		if (fFolder.GetEntry(&folder) != B_OK)
			return;
		BEntry(&fFolder, kTemporaryFile).Remove();
		folder.Remove();
	}

	status_t InitCheck() const { return fStatus; }
	status_t GetFile(BEntry* file) const { return file->SetTo(&fFolder, kTemporaryFile); }

private:
	status_t Make()
	{
		BPath path;
		BDirectory parent;
		status_t status = find_directory(B_SYSTEM_TEMP_DIRECTORY, &path, true);
		if (status == B_OK)
			status = parent.SetTo(path.Path());
		if (status == B_OK)
			status = parent.CreateDirectory(UniqueName().c_str(), &fFolder);
		return status == B_OK ? fFolder.SetPermissions(0700) : status;
	}

	static std::string UniqueName()
	{
		thread_info self = {};
		get_thread_info(find_thread(NULL), &self);
		return "TavoraD-" + std::to_string(self.team) + "-" + std::to_string(self.thread) + "-"
			+ std::to_string(system_time());
	}

	BDirectory fFolder;
	status_t fStatus;
};

//! The colour file of a folder: as it is usually written, else in any case, of several the first by name.
status_t
find_color_file(const BEntry& skin, BEntry* file)
{
	BDirectory folder(&skin);
	if (file->SetTo(&folder, kColorFile, true) == B_OK && file->IsFile())
		return B_OK;
	std::string found;
	entry_ref ref;
	while (folder.GetNextRef(&ref) == B_OK) {
		if (merion::is_same_name(ref.name, kColorFile) && BEntry(&ref, true).IsFile()
			&& (found.empty() || ref.name < found))
			found = ref.name;
	}
	return found.empty() ? B_ENTRY_NOT_FOUND : file->SetTo(&folder, found.c_str(), true);
}

//! Has an archive translator write the archive's colour file.
status_t
extract_color_file(const BEntry& archive, const BEntry& target)
{
	BPath path;
	status_t status = target.GetPath(&path);
	BFile source(&archive, B_READ_ONLY);
	if (status == B_OK)
		status = source.InitCheck();
	if (status != B_OK)
		return status;
	BMessage request;
	request.AddString("Arc/entry", kColorFile);
	request.AddString("Arc/target", path.Path());
	BMallocIO unused; // the file goes to the target
	return BTranslatorRoster::Default()->Translate(&source, NULL, &request, &unused, 0);
}

status_t
read_archived_colors(const BEntry& archive, std::string* bytes)
{
	ExtractionFolder folder;
	BEntry file;
	status_t status = folder.InitCheck();
	if (status == B_OK)
		status = folder.GetFile(&file);
	if (status == B_OK)
		status = extract_color_file(archive, file);
	return status == B_OK ? merion::read_file(file, kMaxColorFileSize, bytes) : status;
}

status_t
read_color_file(const entry_ref& skin, std::string* bytes)
{
	BEntry entry(&skin, true);
	if (!entry.IsDirectory())
		return read_archived_colors(entry, bytes);
	BEntry file;
	const status_t status = find_color_file(entry, &file);
	return status == B_OK ? merion::read_file(file, kMaxColorFileSize, bytes) : status;
}

uint8
component(const char* digits)
{
	return static_cast<uint8>(hex_to_int(digits[0]) * 16 + hex_to_int(digits[1]));
}

} // namespace

bool
is_skin(const entry_ref& ref)
{
	BEntry entry(&ref, true);
	BEntry colorFile;
	if (entry.IsDirectory())
		return find_color_file(entry, &colorFile) == B_OK;
	BFile file(&entry, B_READ_ONLY);
	char begin[sizeof(kArchiveSignature)];
	return file.InitCheck() == B_OK
		&& file.Read(begin, sizeof(begin)) == static_cast<ssize_t>(sizeof(begin))
		&& memcmp(begin, kArchiveSignature, sizeof(begin)) == 0;
}

status_t
import_skin_colors(const entry_ref& skin, TPref* pref)
{
	std::string bytes;
	const status_t status = read_color_file(skin, &bytes);
	if (status != B_OK)
		return status;
	std::istringstream text(bytes);
	read_skin_colors(text, pref);
	return B_OK;
}

void
read_skin_colors(std::istream& text, TPref* pref)
{
	std::string word;
	while (text >> word && word != kSection) { }
	std::string words[kMaxWords];
	int32 count = 0;
	while (count < kMaxWords && text >> words[count])
		count++;
	for (const auto& [key, index] : kSkinColors) {
		rgb_color color = pref->Color(index);
		get_skin_color(words, count, key, &color);
		pref->Color(index) = color;
	}
}

void
get_skin_color(const std::string* words, int32 count, const char* key, rgb_color* color)
{
	for (int32 i = 0; i < count; i++) {
		const size_t found = words[i].find(key);
		if (found == std::string::npos)
			continue;
		const size_t digits = found + strlen(key);
		if (words[i].size() - digits < 6)
			return;
		const char* text = words[i].c_str() + digits;
		color->red = component(text);
		color->green = component(text + 2);
		color->blue = component(text + 4);
		return;
	}
}

int
hex_to_int(char digit)
{
	// as an unsigned number, so that it is the same on every processor
	const unsigned char c = static_cast<unsigned char>(digit);
	if (c < ':')
		return c - '0';
	return (c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c) - 55;
}
