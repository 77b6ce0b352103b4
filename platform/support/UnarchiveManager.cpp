#include "support/ArchiveManager.h"

namespace BPrivate {

static thread_local UnarchiveManager* tInnermost = nullptr;

UnarchiveManager::UnarchiveManager(BMessage* top) : fTop(top), fOuter(tInnermost)
{
	type_code type;
	int32 count = 0;
	if (top->GetInfo(kArchivableField, &type, &count) != B_OK || type != B_MESSAGE_TYPE)
		count = 0;
	fEntries.resize(size_t(count) + 1);
	// whoever began is being built as long as there is a manager
	fEntries[0].begun = true;
	fPrepared[top] = 0;
	tInnermost = this;
}

/*!	It may not be the innermost any more: a constructor that asked for it ahead may not have used it. */
UnarchiveManager::~UnarchiveManager()
{
	UnarchiveManager** place = &tInnermost;
	while (*place != this)
		place = &(*place)->fOuter;
	*place = fOuter;
}

UnarchiveManager*
UnarchiveManager::Make(BMessage* top)
{
	return new UnarchiveManager(top);
}

UnarchiveManager*
UnarchiveManager::Find(const BMessage* archive)
{
	UnarchiveManager* manager = tInnermost;
	while (manager != nullptr && !manager->fPrepared.contains(archive))
		manager = manager->fOuter;
	return manager;
}

void
UnarchiveManager::ObjectGone(BArchivable* object)
{
	for (UnarchiveManager* manager = tInnermost; manager != nullptr; manager = manager->fOuter) {
		const auto found = manager->fTokens.find(object);
		if (found == manager->fTokens.end())
			continue;
		manager->fEntries[found->second].object = nullptr;
		manager->fTokens.erase(found);
	}
}

void
UnarchiveManager::Acquire(const BMessage* archive, bool ahead)
{
	int32& prepared = fPrepared[archive];
	if (!ahead && prepared > 0) {
		prepared--;
		return;
	}
	fUsers++;
	if (ahead)
		prepared++;
}

status_t
UnarchiveManager::Release(status_t error)
{
	if (fError == B_OK)
		fError = error;
	const status_t result = fError;
	if (--fUsers > 0)
		return result;
	for (Entry& entry : fEntries) {
		if (!entry.owned)
			delete entry.object; // ObjectGone() takes it off, and those that it deletes itself
	}
	delete this;
	return result;
}

status_t
UnarchiveManager::ObjectOf(int32 token, BArchivable** object)
{
	*object = nullptr;
	if (token == -1)
		return B_OK;
	if (token < 0 || size_t(token) >= fEntries.size())
		return B_BAD_VALUE;
	Entry& entry = fEntries[token]; // their number is fixed
	if (!entry.begun) {
		entry.begun = true;
		entry.archive = std::make_unique<BMessage>();
		fPrepared[entry.archive.get()] = 0;
		if (fTop->FindMessage(kArchivableField, token - 1, entry.archive.get()) == B_OK)
			entry.object = instantiate_object(entry.archive.get());
		if (entry.object != nullptr)
			fTokens[entry.object] = token;
	}
	*object = entry.object;
	return entry.object != nullptr ? B_OK : B_BAD_VALUE;
}

status_t
UnarchiveManager::SetOwned(const BArchivable* object, bool owned)
{
	const auto found = fTokens.find(object);
	if (found == fTokens.end())
		return B_BAD_VALUE;
	Entry& entry = fEntries[found->second];
	if (owned && entry.owned)
		return B_BAD_VALUE;
	entry.owned = owned;
	return B_OK;
}

} // namespace BPrivate
