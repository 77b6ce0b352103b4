#pragma once

#include <String.h>

#include <StorageDefs.h>

class BDirectory;
class BEntry;
struct entry_ref;

/*!	An absolute path. A path that is relative, or holds ".", "..", a doubled or a last slash, is
	normalized: made absolute, with symbolic links before the last component followed; that needs
	its folder to exist (B_ENTRY_NOT_FOUND). Other paths are taken as they are unless asked for. */
class BPath {
public:
	BPath();
	explicit BPath(const char* dir, const char* leaf = NULL, bool normalize = false);
	explicit BPath(const BDirectory* dir, const char* leaf = NULL, bool normalize = false);
	explicit BPath(const BEntry* entry);
	explicit BPath(const entry_ref* ref);

	status_t InitCheck() const; // B_NO_INIT until set

	// A leaf must be relative: B_BAD_VALUE, as for NULL. On failure the path is unset.
	status_t SetTo(const char* dir, const char* leaf = NULL, bool normalize = false);
	status_t SetTo(const BDirectory* dir, const char* leaf = NULL, bool normalize = false);
	status_t SetTo(const BEntry* entry);
	status_t SetTo(const entry_ref* ref);
	void Unset();

	status_t Append(const char* path, bool normalize = false); // B_BAD_VALUE when not set

	const char* Path() const; // NULL when not set; good until the path changes
	const char* Leaf() const; // the last component, "" for the root folder; NULL when not set
	status_t GetParent(BPath* path) const; // B_ENTRY_NOT_FOUND for the root folder
	bool IsAbsolute() const;

	bool operator==(const BPath& path) const; // the same text, or both not set
	bool operator==(const char* path) const;
	bool operator!=(const BPath& path) const;
	bool operator!=(const char* path) const;

private:
	status_t _Fail(status_t status);

	BString fPath;
	status_t fCStatus;
};
