#include <Path.h>

#include <climits>
#include <cstring>
#include <string>

#include <Directory.h>
#include <Entry.h>

static bool
must_normalize(const std::string& path)
{
	if (path.empty() || path[0] != '/')
		return true;
	for (size_t start = 1; start <= path.size() && path.size() > 1;) {
		size_t end = std::min(path.find('/', start), path.size());
		std::string component = path.substr(start, end - start);
		if (component.empty() || component == "." || component == "..")
			return true;
		start = end + 1;
	}
	return false;
}

BPath::BPath() : fCStatus(B_NO_INIT) { }

BPath::BPath(const char* dir, const char* leaf, bool normalize) : BPath()
{
	SetTo(dir, leaf, normalize);
}

BPath::BPath(const BDirectory* dir, const char* leaf, bool normalize) : BPath()
{
	SetTo(dir, leaf, normalize);
}

BPath::BPath(const BEntry* entry) : BPath()
{
	SetTo(entry);
}

BPath::BPath(const entry_ref* ref) : BPath()
{
	SetTo(ref);
}

status_t
BPath::InitCheck() const
{
	return fCStatus;
}

status_t
BPath::SetTo(const char* dir, const char* leaf, bool normalize)
{
	if (dir == NULL || (leaf != NULL && leaf[0] == '/'))
		return _Fail(B_BAD_VALUE);

	std::string path = dir; // dir may be this path's own text
	if (leaf != NULL && leaf[0] != '\0') {
		if (!path.empty() && path.back() != '/')
			path += '/';
		path += leaf;
	}
	if (path.size() >= PATH_MAX)
		return _Fail(B_NAME_TOO_LONG);
	if (normalize || must_normalize(path)) {
		BEntry entry(path.c_str());
		if (entry.InitCheck() != B_OK)
			return _Fail(entry.InitCheck());
		return SetTo(&entry);
	}
	fPath = path.c_str();
	return fCStatus = B_OK;
}

status_t
BPath::SetTo(const BDirectory* dir, const char* leaf, bool normalize)
{
	BEntry entry;
	BPath folder;
	if (dir == NULL || dir->GetEntry(&entry) != B_OK || entry.GetPath(&folder) != B_OK)
		return _Fail(B_BAD_VALUE);
	return SetTo(folder.Path(), leaf, normalize);
}

status_t
BPath::SetTo(const BEntry* entry)
{
	if (entry == NULL || entry->InitCheck() != B_OK)
		return _Fail(B_BAD_VALUE);
	status_t status = entry->GetPath(this);
	return status == B_OK ? B_OK : _Fail(status);
}

status_t
BPath::SetTo(const entry_ref* ref)
{
	BEntry entry(ref);
	if (entry.InitCheck() != B_OK)
		return _Fail(entry.InitCheck());
	return SetTo(&entry);
}

void
BPath::Unset()
{
	fPath = "";
	fCStatus = B_NO_INIT;
}

status_t
BPath::Append(const char* path, bool normalize)
{
	if (fCStatus != B_OK)
		return _Fail(B_BAD_VALUE);
	return SetTo(Path(), path, normalize);
}

const char*
BPath::Path() const
{
	return fCStatus == B_OK ? fPath.String() : NULL;
}

const char*
BPath::Leaf() const
{
	return fCStatus == B_OK ? strrchr(fPath.String(), '/') + 1 : NULL;
}

status_t
BPath::GetParent(BPath* path) const
{
	if (path == NULL)
		return B_BAD_VALUE;
	status_t status = fCStatus;
	if (status == B_OK && fPath.Length() == 1)
		status = B_ENTRY_NOT_FOUND;
	if (status != B_OK) {
		path->Unset();
		return status;
	}
	std::string parent(fPath.String(), std::max(fPath.FindLast('/'), 1));
	return path->SetTo(parent.c_str());
}

bool
BPath::IsAbsolute() const
{
	return fCStatus == B_OK;
}

bool
BPath::operator==(const BPath& path) const
{
	return *this == path.Path();
}

bool
BPath::operator==(const char* path) const
{
	if (fCStatus != B_OK || path == NULL)
		return fCStatus != B_OK && path == NULL;
	return fPath == path;
}

bool
BPath::operator!=(const BPath& path) const
{
	return !(*this == path);
}

bool
BPath::operator!=(const char* path) const
{
	return !(*this == path);
}

status_t
BPath::_Fail(status_t status)
{
	Unset();
	return fCStatus = status;
}
