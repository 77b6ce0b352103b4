#include "support/ArchiveManager.h"

namespace BPrivate {

static thread_local ArchiveManager* tInnermost = nullptr;

ArchiveManager::ArchiveManager(BMessage* top) : fTop(top), fOuter(tInnermost)
{
	tInnermost = this;
}

ArchiveManager::~ArchiveManager()
{
	tInnermost = fOuter;
}

ArchiveManager*
ArchiveManager::Find(const BMessage* archive)
{
	for (ArchiveManager* manager = tInnermost; manager != nullptr; manager = manager->fOuter) {
		// only the last of the others is being written
		if (manager->fTop == archive)
			return manager;
		for (auto i = manager->fArchives.rbegin(); i != manager->fArchives.rend(); ++i) {
			if (i->get() == archive)
				return manager;
		}
	}
	return nullptr;
}

//! Only the beginner must be made known; the others got their tokens before they were asked.
void
ArchiveManager::ObjectArchived(const BArchivable* object, const BMessage* archive)
{
	for (ArchiveManager* manager = tInnermost; manager != nullptr; manager = manager->fOuter) {
		if (manager->fTop == archive)
			manager->fTokens.emplace(object, 0);
	}
}

void
ArchiveManager::ObjectGone(const BArchivable* object)
{
	for (ArchiveManager* manager = tInnermost; manager != nullptr; manager = manager->fOuter)
		manager->fTokens.erase(object);
}

status_t
ArchiveManager::TokenOf(const BArchivable* object, bool deep, int32* token)
{
	*token = -1;
	if (object == nullptr)
		return B_OK;
	const auto [entry, added] = fTokens.emplace(object, int32(fArchives.size()) + 1);
	*token = entry->second;
	if (!added)
		return B_OK;
	fArchives.push_back(std::make_unique<BMessage>());
	const status_t error = object->Archive(fArchives.back().get(), deep);
	Fail(error);
	return error;
}

void
ArchiveManager::Fail(status_t error)
{
	if (fError == B_OK)
		fError = error;
}

status_t
ArchiveManager::Finish()
{
	for (const auto& archive : fArchives) {
		if (fError == B_OK)
			fError = fTop->AddMessage(kArchivableField, archive.get());
	}
	if (fError == B_OK)
		fError = fTop->AddBool(kManagedField, true);
	return fError;
}

} // namespace BPrivate
