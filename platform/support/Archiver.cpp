#include "support/ArchiveManager.h"

using namespace BPrivate;

BArchiver::BArchiver(BMessage* archive) : fArchive(archive), fManager(ArchiveManager::Find(archive))
{
	if (archive == NULL || fManager != nullptr)
		return;
	fManager = new ArchiveManager(archive);
	fMadeManager = true;
}

BArchiver::~BArchiver()
{
	if (!fFinished)
		Finish();
}

status_t
BArchiver::AddArchivable(const char* name, BArchivable* archivable, bool deep)
{
	int32 token;
	const status_t error = GetTokenForArchivable(archivable, deep, token);
	return error == B_OK ? fArchive->AddInt32(name, token) : error;
}

status_t
BArchiver::GetTokenForArchivable(BArchivable* archivable, int32& token)
{
	return GetTokenForArchivable(archivable, true, token);
}

status_t
BArchiver::GetTokenForArchivable(BArchivable* archivable, bool deep, int32& token)
{
	if (fArchive == NULL || fFinished)
		return B_BAD_VALUE;
	return fManager->TokenOf(archivable, deep, &token);
}

bool
BArchiver::IsArchived(BArchivable* archivable)
{
	return archivable == NULL || (fArchive != NULL && !fFinished && fManager->Knows(archivable));
}

status_t
BArchiver::Finish(status_t error)
{
	if (fArchive == NULL || fFinished)
		return error != B_OK ? error : B_BAD_VALUE;
	fFinished = true;
	fManager->Fail(error);
	if (!fMadeManager)
		return fManager->Error();
	const status_t result = fManager->Finish();
	delete fManager;
	return result;
}
