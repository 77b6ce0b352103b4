#pragma once

#include <Archivable.h>
#include <Message.h>
#include <memory>
#include <unordered_map>
#include <vector>

namespace BPrivate {

// The fields of the managed form, in the archive of the object that began.
inline constexpr const char* kManagedField = "_managed_archive"; // bool, true
inline constexpr const char* kArchivableField
	= "_managed_archivable"; // message n is of token n + 1

/*!	What the BArchivers of one archive share: which objects are in it already.
	Thread: one. Those at work on a thread form a stack, since an archive may hold whole archives. Owner: the
	archiver that made it. */
class ArchiveManager {
public:
	explicit ArchiveManager(BMessage* top);
	~ArchiveManager();

	//! The one at work on this thread that `archive` is a message of; NULL if there is none.
	static ArchiveManager* Find(const BMessage* archive);
	static void ObjectArchived(const BArchivable* object, const BMessage* archive);
	//! Its archive stays; what comes to lie in its place is another object.
	static void ObjectGone(const BArchivable* object);

	status_t TokenOf(const BArchivable* object, bool deep, int32* token);
	bool Knows(const BArchivable* object) const { return fTokens.contains(object); }
	//! The first error of all counts.
	void Fail(status_t error);
	status_t Error() const { return fError; }
	//! Writes the objects into the archive that it began with.
	status_t Finish();

private:
	BMessage* fTop;
	std::vector<std::unique_ptr<BMessage>> fArchives; // from token 1 on
	std::unordered_map<const BArchivable*, int32> fTokens;
	status_t fError = B_OK;
	ArchiveManager* fOuter;
};

/*!	What the BUnarchivers of one archive share: the objects that were built, and who has them.
	Thread: one, as above. Owner: itself; the last one who uses it deletes it. */
class UnarchiveManager {
public:
	//! The one at work on this thread that `archive` is a message of; NULL if there is none.
	static UnarchiveManager* Find(const BMessage* archive);
	//! A new one for a managed archive.
	static UnarchiveManager* Make(BMessage* top);
	//! Objects may go while others are still being built.
	static void ObjectGone(BArchivable* object);

	//! `ahead`: for the next one who uses it for this archive, to whom that then belongs.
	void Acquire(const BMessage* archive, bool ahead);
	//! The first error of all; afterwards it may be gone, and with it what nobody owns.
	status_t Release(status_t error);
	status_t ObjectOf(int32 token, BArchivable** object);
	//! B_BAD_VALUE when it is owned to be owned again.
	status_t SetOwned(const BArchivable* object, bool owned);

private:
	struct Entry {
		std::unique_ptr<BMessage> archive;
		BArchivable* object = nullptr;
		bool begun = false;
		bool owned = false;
	};

	explicit UnarchiveManager(BMessage* top);
	~UnarchiveManager();

	BMessage* fTop;
	std::vector<Entry> fEntries;                          // by token
	std::unordered_map<const BMessage*, int32> fPrepared; // messages, and how often ahead
	std::unordered_map<const BArchivable*, int32> fTokens;
	int32 fUsers = 0;
	status_t fError = B_OK;
	UnarchiveManager* fOuter;
};

} // namespace BPrivate
