#include "support/ArchiveManager.h"

using namespace BPrivate;

//! NULL for an archive that is not managed.
static UnarchiveManager*
manager_of(BMessage* archive)
{
	UnarchiveManager* manager = UnarchiveManager::Find(archive);
	if (manager == nullptr && BUnarchiver::IsArchiveManaged(archive))
		manager = UnarchiveManager::Make(archive);
	return manager;
}

BUnarchiver::BUnarchiver(BMessage* archive) : fArchive(archive), fManager(manager_of(archive))
{
	if (fManager != nullptr)
		fManager->Acquire(archive, false);
}

BUnarchiver::~BUnarchiver()
{
	if (!fFinished)
		Finish();
}

BMessage*
BUnarchiver::PrepareArchive(BMessage*& archive)
{
	if (UnarchiveManager* manager = manager_of(archive))
		manager->Acquire(archive, true);
	return archive;
}

bool
BUnarchiver::IsArchiveManaged(const BMessage* archive)
{
	return archive != NULL && archive->GetBool(kManagedField, false);
}

status_t
BUnarchiver::Finish(status_t error)
{
	if (fFinished)
		return error != B_OK ? error : B_BAD_VALUE;
	fFinished = true;
	return fManager != nullptr ? fManager->Release(error) : error;
}

status_t
BUnarchiver::Get(int32 token, BArchivable** object)
{
	return fManager != nullptr && !fFinished ? fManager->ObjectOf(token, object) : B_BAD_VALUE;
}

status_t
BUnarchiver::Find(const char* name, int32 index, BArchivable** object, bool* nested)
{
	if (fArchive == NULL)
		return B_BAD_VALUE;
	int32 token;
	const status_t error = fArchive->FindInt32(name, index, &token);
	if (error != B_BAD_TYPE)
		return error == B_OK ? Get(token, object) : error;
	BMessage archive;
	const status_t nestedError = fArchive->FindMessage(name, index, &archive);
	if (nestedError != B_OK)
		return nestedError;
	*nested = true;
	*object = instantiate_object(&archive);
	return *object != NULL ? B_OK : B_BAD_VALUE;
}

status_t
BUnarchiver::Claim(BArchivable* object)
{
	return fManager->SetOwned(object, true);
}

void
BUnarchiver::AssumeOwnership(BArchivable* archivable)
{
	if (fManager != nullptr && !fFinished)
		fManager->SetOwned(archivable, true);
}

void
BUnarchiver::RelinquishOwnership(BArchivable* archivable)
{
	if (fManager != nullptr && !fFinished)
		fManager->SetOwned(archivable, false);
}
