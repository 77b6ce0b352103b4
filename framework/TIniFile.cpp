#include "framework/TIniFile.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>

#include "framework/TIniFilePair.h"
#include "framework/TIniFileSection.h"
#include "framework/TLineReader.h"
#include "framework/ini_text.h"

namespace merion {

constexpr char kGlobalSection[] = "_TIniF_GlobalSec";
constexpr size_t kBlockSize = 64 * 1024; // bytes read at once

static std::string_view
name_of(const void* section)
{
	return static_cast<const TIniFileSection*>(section)->Name();
}

//! NULL is empty.
static std::string_view
text_of(const char* text)
{
	return text != nullptr ? text : "";
}

static bool
is_folder(BPositionIO* stream)
{
	const BNode* node = dynamic_cast<const BNode*>(stream);
	return node != nullptr && node->IsDirectory();
}

// Life

TIniFile::TIniFile(int lineLength) : fSectionIndex(fSections, name_of)
{
	Init(lineLength);
}

TIniFile::TIniFile(BPositionIO* io, int lineLength) : fSectionIndex(fSections, name_of)
{
	TIniFile::SetTo(io, lineLength);
}

TIniFile::TIniFile(const BDirectory* dir, const char* path, unsigned long openMode, int lineLength)
	: fSectionIndex(fSections, name_of)
{
	TIniFile::SetTo(dir, path, openMode, lineLength);
}

TIniFile::TIniFile(const char* path, unsigned long openMode, int lineLength)
	: fSectionIndex(fSections, name_of)
{
	TIniFile::SetTo(path, openMode, lineLength);
}

TIniFile::TIniFile(const BEntry* entry, unsigned long openMode, int lineLength)
	: fSectionIndex(fSections, name_of)
{
	TIniFile::SetTo(entry, openMode, lineLength);
}

TIniFile::TIniFile(const entry_ref* ref, unsigned long openMode, int lineLength)
	: fSectionIndex(fSections, name_of)
{
	TIniFile::SetTo(ref, openMode, lineLength);
}

TIniFile::~TIniFile()
{
	TIniFile::Flush(false);
	DestroyVar();
}

status_t
TIniFile::SetTo(const entry_ref* ref, unsigned long openMode, int lineLength)
{
	Unset();
	return FileOpened(fFile.SetTo(ref, openMode), lineLength);
}

status_t
TIniFile::SetTo(const BEntry* entry, unsigned long openMode, int lineLength)
{
	Unset();
	return FileOpened(fFile.SetTo(entry, openMode), lineLength);
}

status_t
TIniFile::SetTo(const char* path, unsigned long openMode, int lineLength)
{
	Unset();
	return FileOpened(fFile.SetTo(path, openMode), lineLength);
}

status_t
TIniFile::SetTo(const BDirectory* dir, const char* path, unsigned long openMode, int lineLength)
{
	Unset();
	return FileOpened(fFile.SetTo(dir, path, openMode), lineLength);
}

status_t
TIniFile::FileOpened(status_t status, int lineLength)
{
	fStream = &fFile;
	Init(lineLength);
	return status;
}

status_t
TIniFile::SetTo(BPositionIO* io, int lineLength)
{
	Unset();
	fStream = io;
	Init(lineLength);
	return B_OK;
}

void
TIniFile::Unset()
{
	Flush(false);
	DestroyVar();
	fFile.Unset();
	fStream = nullptr;
}

void
TIniFile::Init(int lineLength)
{
	fIsDirty = false;
	fLineLength = std::clamp(lineLength, static_cast<int>(strlen(kGlobalSection)), INT_MAX - 1);
	Load();
	fCurrentSection = FindSection(kGlobalSection);
}

void
TIniFile::DestroyVar()
{
	fSectionIndex.Forget();
	for (int32 i = 0; i < fSections.CountItems(); i++)
		delete SectionAt(i);
	fSections.MakeEmpty();
	fCurrentSection = nullptr;
}

// The stream

void
TIniFile::Load()
{
	if (fStream == nullptr || is_folder(fStream))
		return;
	const std::unique_ptr<char[]> line(new char[fLineLength + 1]);
	TIniFileSection* section = CreateSection(kGlobalSection, 0);
	fStream->Seek(0, SEEK_SET);
	TLineReader reader(fStream, kBlockSize);
	while (reader.ReadLine(line.get(), fLineLength + 1) > 0)
		section = TakeLine(line.get(), section);
}

//! Answers the section of the lines that follow.
TIniFileSection*
TIniFile::TakeLine(std::string_view text, TIniFileSection* section)
{
	const ini_line line = parse_ini_line(text);
	switch (line.kind) {
		case ini_line::kEmpty:
			break;
		case ini_line::kComment:
			section->AddComment(line.value);
			break;
		case ini_line::kHeader:
			return CreateSection(std::string(line.name).c_str(), -1);
		case ini_line::kPair:
			section->CreatePair(line.name, line.value);
			break;
	}
	return section;
}

int
TIniFile::ReadLine(char* buffer, int size)
{
	return fStream != nullptr ? TLineReader(fStream, 1).ReadLine(buffer, size) : 0;
}

bool
TIniFile::Flush(bool force)
{
	if (fStream == nullptr || !(fIsDirty || force))
		return false;
	std::string text;
	for (int32 i = 0; i < fSections.CountItems(); i++) {
		TIniFileSection* section = SectionAt(i);
		append_ini_section(&text, section, section->Name() != kGlobalSection, fLineLength);
	}
	fStream->Seek(0, SEEK_SET);
	WriteBytes(text);
	fIsDirty = false;
	return true;
}

void
TIniFile::WriteLine(const char* text)
{
	if (fStream != nullptr)
		WriteBytes(std::string(text_of(text)) + '\n');
}

void
TIniFile::WriteBytes(std::string_view bytes)
{
	while (!bytes.empty()) {
		const ssize_t written = fStream->Write(bytes.data(), bytes.size());
		if (written <= 0)
			return;
		bytes.remove_prefix(std::min<size_t>(written, bytes.size()));
	}
}

// Sections

TIniFileSection*
TIniFile::SectionAt(int32 index) const
{
	return static_cast<TIniFileSection*>(fSections.ItemAt(index));
}

TIniFileSection*
TIniFile::FindSection(const char* name)
{
	return static_cast<TIniFileSection*>(fSectionIndex.Find(text_of(name).substr(0, fLineLength)));
}

bool
TIniFile::SectionExists(const char* name)
{
	return FindSection(name) != nullptr;
}

TIniFileSection*
TIniFile::CreateSection(const char* name, int index)
{
	TIniFileSection* section = new TIniFileSection(text_of(name), fLineLength);
	if (index < 0 || index >= fSections.CountItems())
		fSections.AddItem(section);
	else {
		fSectionIndex.Forget();
		fSections.AddItem(section, index);
	}
	return section;
}

bool
TIniFile::ChangeSection(const char* name)
{
	TIniFileSection* section = FindSection(name);
	fCurrentSection = section != nullptr ? section : CreateSection(name, -1);
	return true;
}

bool
TIniFile::DeleteSection(const char* name)
{
	TIniFileSection* section = FindSection(name);
	if (section == nullptr)
		return false;
	fSectionIndex.FirstWillGo(section);
	fSections.RemoveItem(section);
	if (is_same_name(section->Name(), kGlobalSection))
		CreateSection(kGlobalSection, 0);
	// The current section can be a second one of that name.
	if (fCurrentSection != nullptr
		&& (fCurrentSection == section || fCurrentSection->Name() == text_of(name)))
		fCurrentSection = SectionAt(0);
	delete section;
	fIsDirty = true;
	return true;
}

void
TIniFile::EnumSections(BList* list)
{
	for (int32 i = 0; i < fSections.CountItems(); i++)
		list->AddItem(const_cast<char*>(SectionAt(i)->Name().c_str()));
}

bool
TIniFile::WriteComment(const char* text)
{
	if (fCurrentSection == nullptr)
		return false;
	fCurrentSection->AddComment(text_of(text));
	fIsDirty = true;
	return true;
}

bool
TIniFile::ReadComment(char* buffer)
{
	return fCurrentSection != nullptr && fCurrentSection->ReadComment(buffer);
}

// Keys

bool
TIniFile::DeleteKey(const char* key)
{
	if (key == nullptr || fCurrentSection == nullptr || !fCurrentSection->DeletePair(key))
		return false;
	fIsDirty = true;
	return true;
}

void
TIniFile::EnumKeys(BList* list)
{
	if (fCurrentSection != nullptr)
		fCurrentSection->EnumKeys(list);
}

bool
TIniFile::KeyExists(const char* key)
{
	return Value(key) != nullptr;
}

//! NULL when there is no such key.
const std::string*
TIniFile::Value(const char* key)
{
	if (key == nullptr || fCurrentSection == nullptr)
		return nullptr;
	const TIniFilePair* pair = fCurrentSection->FindPair(key);
	return pair != nullptr ? &pair->Value() : nullptr;
}

bool
TIniFile::ReadValue(const char* key, char* value)
{
	const std::string* text = Value(key);
	if (text != nullptr)
		memcpy(value, text->c_str(), text->size() + 1);
	return text != nullptr;
}

bool
TIniFile::ReadValue(const char* key, bool* value)
{
	const std::string* text = Value(key);
	return text != nullptr && (parse_ini_value(*text, value), true);
}

bool
TIniFile::ReadValue(const char* key, long* value)
{
	const std::string* text = Value(key);
	return text != nullptr && (parse_ini_value(*text, value), true);
}

bool
TIniFile::ReadValue(const char* key, long long* value)
{
	const std::string* text = Value(key);
	return text != nullptr && (parse_ini_value(*text, value), true);
}

bool
TIniFile::ReadValue(const char* key, float* value)
{
	const std::string* text = Value(key);
	return text != nullptr && (parse_ini_value(*text, value), true);
}

bool
TIniFile::ReadValue(const char* key, rgb_color* value)
{
	const std::string* text = Value(key);
	return text != nullptr && (parse_ini_value(*text, value), true);
}

bool
TIniFile::SetValue(const char* key, std::string_view value)
{
	if (key == nullptr || fCurrentSection == nullptr)
		return false;
	TIniFilePair* pair = fCurrentSection->FindPair(key);
	if (pair == nullptr)
		pair = fCurrentSection->CreatePair(key, "");
	pair->SetValue(value);
	fIsDirty = true;
	return true;
}

bool
TIniFile::WriteValue(const char* key, const char* value)
{
	return SetValue(key, text_of(value));
}

bool
TIniFile::WriteValue(const char* key, bool value)
{
	return SetValue(key, value ? "1" : "0");
}

bool
TIniFile::WriteValue(const char* key, long value)
{
	return SetValue(key, std::to_string(value));
}

bool
TIniFile::WriteValue(const char* key, long long value)
{
	return SetValue(key, std::to_string(value));
}

bool
TIniFile::WriteValue(const char* key, float value)
{
	return SetValue(key, ini_text_of(value));
}

bool
TIniFile::WriteValue(const char* key, rgb_color value)
{
	return SetValue(key, ini_text_of(value));
}

} // namespace merion
