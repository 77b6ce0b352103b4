#include <Resources.h>

#include <cstring>

#include <Entry.h>

#include "storage/ResourceFile.h"

using BPrivate::ResourceContainer;
using BPrivate::ResourceItem;
using BPrivate::ResourcePlace;

namespace {

//!	Writes a result that may not be wanted.
template<typename Value>
void
give(Value* to, Value value)
{
	if (to != NULL)
		*to = value;
}

status_t
read_from(BFile& file, const ResourcePlace& place, ResourceContainer& container)
{
	status_t status = B_OK;
	if (place.appended)
		status = read_resources(file, *place.appended, container);
	// Something else may have been appended to the file.
	if (place.section && (status != B_OK || !place.appended))
		status = read_resources(file, *place.section, container);
	return status;
}

//!	For both when it can be written, as a program that runs cannot.
template<typename Location>
BFile
open_for(Location location)
{
	BFile file(location, B_READ_WRITE);
	if (file.InitCheck() != B_OK)
		file.SetTo(location, B_READ_ONLY);
	return file;
}

} // namespace

BResources::BResources() : fContainer(new ResourceContainer), fCStatus(B_OK), fReadOnly(false) { }

BResources::BResources(const BFile* file, bool clobber) : BResources()
{
	SetTo(file, clobber);
}

BResources::BResources(const char* path, bool clobber) : BResources()
{
	SetTo(path, clobber);
}

BResources::BResources(const entry_ref* ref, bool clobber) : BResources()
{
	SetTo(ref, clobber);
}

BResources::~BResources()
{
	Unset();
	delete fContainer;
}

status_t
BResources::SetTo(const BFile* file, bool clobber)
{
	Unset();
	if (file == NULL || file->InitCheck() != B_OK)
		return fCStatus = B_BAD_VALUE;
	return _SetTo(*file, clobber);
}

status_t
BResources::SetTo(const char* path, bool clobber)
{
	Unset();
	if (path == NULL)
		return fCStatus = B_BAD_VALUE;
	return _SetTo(open_for(path), clobber);
}

status_t
BResources::SetTo(const entry_ref* ref, bool clobber)
{
	Unset();
	if (ref == NULL)
		return fCStatus = B_BAD_VALUE;
	return _SetTo(open_for(ref), clobber);
}

void
BResources::Unset()
{
	if (fContainer->IsModified() && fFile.InitCheck() == B_OK)
		Sync();
	fContainer->MakeEmpty();
	fFile.Unset();
	fReadOnly = false;
	fCStatus = B_OK;
}

status_t
BResources::InitCheck() const
{
	return fCStatus;
}

const BFile&
BResources::File() const
{
	return fFile;
}

const void*
BResources::LoadResource(type_code type, int32 id, size_t* size)
{
	return _Load(fContainer->Find(type, id), size);
}

const void*
BResources::LoadResource(type_code type, const char* name, size_t* size)
{
	return _Load(fContainer->Find(type, name), size);
}

status_t
BResources::PreloadResourceType(type_code type)
{
	status_t failures = 0;
	for (const auto& item : fContainer->All()) {
		if ((type == 0 || item->type == type) && item->Load(fFile) != B_OK)
			failures++;
	}
	return -failures;
}

bool
BResources::HasResource(type_code type, int32 id)
{
	return fContainer->Find(type, id) != NULL;
}

bool
BResources::HasResource(type_code type, const char* name)
{
	return fContainer->Find(type, name) != NULL;
}

bool
BResources::GetResourceInfo(int32 byIndex, type_code* typeFound, int32* idFound,
	const char** nameFound, size_t* lengthFound)
{
	return _GetInfo(fContainer->ItemAt(byIndex), typeFound, idFound, nameFound, lengthFound);
}

bool
BResources::GetResourceInfo(
	type_code byType, int32 andIndex, int32* idFound, const char** nameFound, size_t* lengthFound)
{
	return _GetInfo(fContainer->ItemAt(byType, andIndex), NULL, idFound, nameFound, lengthFound);
}

bool
BResources::GetResourceInfo(
	type_code byType, int32 andID, const char** nameFound, size_t* lengthFound)
{
	return _GetInfo(fContainer->Find(byType, andID), NULL, NULL, nameFound, lengthFound);
}

bool
BResources::GetResourceInfo(
	type_code byType, const char* andName, int32* idFound, size_t* lengthFound)
{
	return _GetInfo(fContainer->Find(byType, andName), NULL, idFound, NULL, lengthFound);
}

bool
BResources::GetResourceInfo(const void* byPointer, type_code* typeFound, int32* idFound,
	size_t* lengthFound, const char** nameFound)
{
	return _GetInfo(fContainer->Find(byPointer), typeFound, idFound, nameFound, lengthFound);
}

status_t
BResources::AddResource(type_code type, int32 id, const void* data, size_t length, const char* name)
{
	if ((data == NULL && length > 0) || length > UINT32_MAX)
		return B_BAD_VALUE;
	if (name != NULL && strlen(name) >= UINT16_MAX)
		return B_NAME_TOO_LONG;
	if (fReadOnly)
		return B_NOT_ALLOWED;

	auto item = std::make_unique<ResourceItem>();
	item->type = type;
	item->id = id;
	item->name = name != NULL ? name : "";
	status_t status = item->SetTo(data, length);
	if (status == B_OK)
		fContainer->Replace(std::move(item));
	return status;
}

status_t
BResources::RemoveResource(const void* resource)
{
	return _Remove(fContainer->Find(resource));
}

status_t
BResources::RemoveResource(type_code type, int32 id)
{
	return _Remove(fContainer->Find(type, id));
}

status_t
BResources::Sync()
{
	if (fFile.InitCheck() != B_OK)
		return B_NO_INIT;
	if (fReadOnly)
		return B_NOT_ALLOWED;
	if (!fContainer->IsModified())
		return B_OK;

	// All is loaded before anything is overwritten.
	ResourcePlace place;
	status_t status = fContainer->LoadAll(fFile);
	if (status == B_OK)
		status = find_resources(fFile, true, place);
	if (status == B_OK)
		status = write_resources(fFile, place, *fContainer);
	if (status == B_OK)
		fContainer->SetModified(false);
	return status;
}

status_t
BResources::MergeFrom(BFile* fromFile)
{
	if (fromFile == NULL)
		return B_BAD_VALUE;
	if (fReadOnly)
		return B_NOT_ALLOWED;
	BResources from(fromFile);
	status_t status = from.InitCheck();
	if (status == B_OK)
		status = from.fContainer->LoadAll(from.fFile);
	if (status != B_OK)
		return status;
	for (const auto& item : from.fContainer->All())
		fContainer->Replace(std::make_unique<ResourceItem>(std::move(*item)));
	return B_OK;
}

status_t
BResources::WriteTo(BFile* file)
{
	if (file == NULL || file->InitCheck() != B_OK)
		return B_BAD_VALUE;
	if (!file->IsWritable())
		return B_NOT_ALLOWED;
	ResourcePlace place;
	status_t status = fContainer->LoadAll(fFile);
	if (status == B_OK)
		status = find_resources(*file, true, place);
	if (status != B_OK)
		return status;

	fFile = *file;
	fReadOnly = false;
	fCStatus = B_OK;
	fContainer->SetModified(true);
	return Sync();
}

status_t
BResources::_SetTo(const BFile& file, bool clobber)
{
	if (file.InitCheck() != B_OK)
		return fCStatus = file.InitCheck();
	if (clobber && !file.IsWritable())
		return fCStatus = B_NOT_ALLOWED;

	fFile = file;
	fReadOnly = !file.IsWritable();
	ResourcePlace place;
	status_t status = find_resources(fFile, clobber, place);
	if (status == B_OK && !clobber)
		status = read_from(fFile, place, *fContainer);
	if (status != B_OK) {
		fContainer->MakeEmpty();
		Unset();
		return fCStatus = status;
	}
	fContainer->SetModified(clobber);
	return B_OK;
}

const void*
BResources::_Load(BPrivate::ResourceItem* item, size_t* size)
{
	if (item == NULL || item->Load(fFile) != B_OK)
		return NULL;
	give<size_t>(size, item->size);
	return item->data.get();
}

bool
BResources::_GetInfo(const BPrivate::ResourceItem* item, type_code* type, int32* id,
	const char** name, size_t* length) const
{
	if (item == NULL)
		return false;
	give(type, item->type);
	give(id, item->id);
	give(name, item->name.c_str());
	give<size_t>(length, item->size);
	return true;
}

status_t
BResources::_Remove(const BPrivate::ResourceItem* item)
{
	if (fReadOnly)
		return B_NOT_ALLOWED;
	if (!fContainer->Remove(item))
		return B_BAD_VALUE;
	return B_OK;
}
