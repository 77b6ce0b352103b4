#include "framework/TLLT.h"

#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include <Application.h>
#include <DataIO.h>
#include <Resources.h>
#include <TypeConstants.h>

#include "framework/TIniFile.h"
#include "framework/dialogs.h"

merion::TLLT* gLLT = nullptr;

namespace merion {

constexpr int kLineLength = 2048; // bytes
constexpr char kHeader[] = "LLT File Format 100";

namespace {

/*!	The values of a file's current section. */
class Values {
public:
	explicit Values(TIniFile* ini) : fIni(ini), fBuffer(new char[ini->LineLength() + 1]) { }

	std::optional<std::string> Read(const char* key)
	{
		if (!fIni->ReadValue(key, fBuffer.get()))
			return {};
		return std::string(fBuffer.get(), strnlen(fBuffer.get(), kLineLength));
	}

private:
	TIniFile* fIni;
	std::unique_ptr<char[]> fBuffer;
};

std::string
decode(std::string text)
{
	TLLT::Decode(&text, "#n", "\n");
	TLLT::Decode(&text, "#t", "\t");
	TLLT::Decode(&text, "#s", " ");
	TLLT::Decode(&text, "##", "#");
	return text;
}

//! The length of the run that ends there.
size_t
hashes_up_to(const std::string& text, size_t at)
{
	size_t start = at;
	while (start > 0 && text[start - 1] == '#')
		start--;
	return at - start + 1;
}

std::vector<std::pair<std::string, std::string>>
read_texts(TIniFile* ini, Values* values)
{
	BList keys;
	ini->EnumKeys(&keys);
	std::vector<std::pair<std::string, std::string>> texts;
	texts.reserve(keys.CountItems());
	for (int32 i = 0; i < keys.CountItems(); i++) {
		const char* key = static_cast<const char*>(keys.ItemAtFast(i));
		texts.emplace_back(key, decode(values->Read(key).value()));
	}
	return texts;
}

} // namespace

TLLT::TLLT(const TLLT& other)
{
	*this = other;
}

TLLT::~TLLT() = default;

TLLT&
TLLT::operator=(const TLLT& other)
{
	if (this == &other)
		return *this;
	// Copied under one lock, then taken under the other, so that two tables can be assigned to each other.
	std::shared_lock otherLock(other.fLock);
	const bool showDBInfo = other.fShowDBInfo;
	std::map<std::string, std::string> texts = other.fTexts;
	std::string names[] = {other.fLanguageName, other.fSpecialThanks, other.fWriter};
	otherLock.unlock();

	const std::unique_lock lock(fLock);
	fShowDBInfo = showDBInfo;
	fTexts.swap(texts);
	fLanguageName.swap(names[0]);
	fSpecialThanks.swap(names[1]);
	fWriter.swap(names[2]);
	Publish();
	return *this;
}

// Loading

status_t
TLLT::Load(const char* path)
{
	TIniFile ini(path, B_READ_ONLY, kLineLength);
	return Load(&ini);
}

status_t
TLLT::Load(BResources* resources, long id)
{
	if (resources == nullptr)
		resources = BApplication::AppResources();
	size_t size = 0;
	const void* bytes = resources != nullptr
		? resources->LoadResource(B_STRING_TYPE, static_cast<int32>(id), &size)
		: nullptr;
	if (bytes == nullptr)
		return B_ERROR;
	BMemoryIO stream(bytes, size);
	TIniFile ini(&stream, kLineLength);
	return Load(&ini);
}

status_t
TLLT::Load(TIniFile* ini)
{
	Values values(ini);
	ini->ChangeSection("Informations");
	if (values.Read("Header") != kHeader)
		return B_ERROR;
	const auto languageName = values.Read("Language");
	const auto writer = values.Read("Writer");
	const auto specialThanks = values.Read("SpecialThanks");
	ini->ChangeSection("Data");
	auto texts = read_texts(ini, &values);

	const std::unique_lock lock(fLock);
	fLanguageName = languageName.value_or(fLanguageName);
	fWriter = writer.value_or(fWriter);
	fSpecialThanks = specialThanks.value_or(fSpecialThanks);
	for (auto& [key, text] : texts)
		fTexts.insert_or_assign(std::move(key), std::move(text));
	ResolveReferences();
	Publish();
	return B_OK;
}

void
TLLT::Decode(std::string* text, const char* from, const char* to)
{
	const size_t length = strlen(from);
	const bool anyRun = strcmp(from, "##") == 0;
	std::string result;
	size_t done = 0;
	for (size_t at = text->find(from); at != std::string::npos; at = text->find(from, at)) {
		if (!anyRun && hashes_up_to(*text, at) % 2 == 0) {
			at++;
			continue;
		}
		result.append(*text, done, at - done).append(to);
		at += length;
		done = at;
	}
	*text = result.append(*text, done);
}

void
TLLT::ResolveReferences()
{
	for (auto& [key, text] : fTexts) {
		const size_t from = text.find('@');
		const size_t to = from != std::string::npos ? text.find('@', from + 1) : from;
		if (to == std::string::npos)
			continue;
		const auto found = fTexts.find(text.substr(from + 1, to - from - 1));
		if (found != fTexts.end())
			text.replace(
				from, to - from + 1, std::string(found->second)); // it may be the text itself
	}
}

//! Makes the texts what Text() gives. With the lock held.
void
TLLT::Publish()
{
	fPublished.clear();
	for (const auto& [key, text] : fTexts)
		fPublished.emplace(key, fKeptTexts.insert(text).first->c_str());
}

// Asking

const char*
TLLT::Text(const char* key) const
{
	std::shared_lock lock(fLock);
	if (key == nullptr)
		key = "";
	const auto found = fPublished.find(key);
	if (found != fPublished.end())
		return found->second;
	const bool showDBInfo = fShowDBInfo;
	lock.unlock();
	if (showDBInfo)
		show_alert("TLLT::Text", key, "OK");
	return "! ERROR !";
}

std::string
TLLT::LanguageName() const
{
	const std::shared_lock lock(fLock);
	return fLanguageName;
}

std::string
TLLT::Writer() const
{
	const std::shared_lock lock(fLock);
	return fWriter;
}

std::string
TLLT::SpecialThanks() const
{
	const std::shared_lock lock(fLock);
	return fSpecialThanks;
}

void
TLLT::SET_SHOW_DB_INFO(bool show)
{
	const std::unique_lock lock(fLock);
	fShowDBInfo = show;
}

} // namespace merion
