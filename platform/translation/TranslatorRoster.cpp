#include <TranslatorRoster.h>

#include <string>

#include <Entry.h>
#include <File.h>
#include <Message.h>

#include "translation/ArchiveReader.h"

using BPrivate::ArchiveReader;

// Fields of the extension that ask for a file of an archive.
static constexpr const char* kEntryField = "Arc/entry";
static constexpr const char* kTargetField = "Arc/target";

static status_t
write_new_file(const char* path, const std::string& bytes)
{
	BFile file(path, B_WRITE_ONLY | B_CREATE_FILE | B_FAIL_IF_EXISTS);
	status_t status = file.InitCheck();
	if (status != B_OK)
		return status;
	status = file.SetPermissions(0600);
	if (status == B_OK && !bytes.empty()) {
		const ssize_t written = file.Write(bytes.data(), bytes.size());
		if (written != static_cast<ssize_t>(bytes.size()))
			status = written < 0 ? static_cast<status_t>(written) : B_DEVICE_FULL;
	}
	if (status != B_OK)
		BEntry(path).Remove();
	return status;
}

static status_t
extract(BPositionIO* source, const char* entry, const char* target)
{
	if (entry[0] == '\0' || target[0] != '/')
		return B_BAD_VALUE;
	ArchiveReader archive(source);
	std::string bytes;
	const status_t status = archive.Read(entry, &bytes);
	return status == B_OK ? write_new_file(target, bytes) : status;
}

BTranslatorRoster::~BTranslatorRoster() = default;

BTranslatorRoster*
BTranslatorRoster::Default()
{
	static BTranslatorRoster* sDefault = new BTranslatorRoster;
	return sDefault;
}

status_t
BTranslatorRoster::Translate(BPositionIO* source, const translator_info* info,
	BMessage* ioExtension, BPositionIO* destination, uint32, uint32, const char*)
{
	if (source == NULL || destination == NULL)
		return B_BAD_VALUE;
	const char* entry;
	const char* target;
	if (info != NULL || ioExtension == NULL || ioExtension->FindString(kEntryField, &entry) != B_OK
		|| ioExtension->FindString(kTargetField, &target) != B_OK)
		return B_NO_TRANSLATOR;
	return extract(source, entry, target);
}
