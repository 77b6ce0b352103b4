#pragma once

#include <File.h>

namespace BPrivate {
class ResourceContainer;
struct ResourceItem;
} // namespace BPrivate

/*!	The resources of a file: pieces of data, each with a type, an id (unique in its type) and a name.
	The file is a resource file (an empty one becomes it) or an ELF file. In that they follow its
	end, or stand in a section ".beresources", which survives strip; what follows the end is
	preferred, and it is where changes go. Data are read when they are asked for.
	Not thread-safe: one thread at a time uses an object. */
class BResources {
public:
	BResources();
	explicit BResources(const BFile* file, bool clobber = false);
	explicit BResources(const char* path, bool clobber = false);
	explicit BResources(const entry_ref* ref, bool clobber = false);
	BResources(const BResources&) = delete;
	BResources& operator=(const BResources&) = delete;
	virtual ~BResources(); // like Unset()

	/*!	With clobber, the resources that are there are thrown away. The file is copied; opened by
		path or ref it is read only unless it can be written.
		B_BAD_VALUE: NULL or a file that is not open; B_IO_ERROR, B_ERROR: no resources can be
		read from it; B_UNSUPPORTED: another kind of ELF file; B_NOT_ALLOWED: clobber in vain. */
	status_t SetTo(const BFile* file, bool clobber = false);
	status_t SetTo(const char* path, bool clobber = false);
	status_t SetTo(const entry_ref* ref, bool clobber = false);
	void Unset();               // writes what has changed
	status_t InitCheck() const; // B_OK for an object without a file too
	const BFile& File() const;

	/*!	The data, NULL when there are none or they cannot be read. size may be NULL. They belong to
		the object and stay until the resource is removed or replaced. A resource without a name
		has the name "". */
	const void* LoadResource(type_code type, int32 id, size_t* size);
	const void* LoadResource(type_code type, const char* name, size_t* size);
	status_t PreloadResourceType(type_code type = 0); // 0: all; the number of failures negated

	bool HasResource(type_code type, int32 id);
	bool HasResource(type_code type, const char* name);

	// False: there is none, and nothing is written. Any of the results may be NULL.
	bool GetResourceInfo(int32 byIndex, type_code* typeFound, int32* idFound,
		const char** nameFound, size_t* lengthFound);
	bool GetResourceInfo(type_code byType, int32 andIndex, int32* idFound, const char** nameFound,
		size_t* lengthFound);
	bool GetResourceInfo(
		type_code byType, int32 andID, const char** nameFound, size_t* lengthFound);
	bool GetResourceInfo(
		type_code byType, const char* andName, int32* idFound, size_t* lengthFound);
	bool GetResourceInfo(const void* byPointer, type_code* typeFound, int32* idFound,
		size_t* lengthFound, const char** nameFound);

	/*!	Copies the data. One of the same type and id is replaced, and moves to the end.
		B_BAD_VALUE: NULL with a length; B_NOT_ALLOWED: the file can only be read. */
	status_t AddResource(
		type_code type, int32 id, const void* data, size_t length, const char* name = NULL);
	status_t RemoveResource(const void* resource);     // by the pointer of LoadResource()
	status_t RemoveResource(type_code type, int32 id); // B_BAD_VALUE: there is none

	status_t Sync();                     // writes the file; B_NO_INIT without one
	status_t MergeFrom(BFile* fromFile); // adds all of the file's
	status_t WriteTo(BFile* file);       // writes all to another file, which then is the object's

private:
	status_t _SetTo(const BFile& file, bool clobber);
	const void* _Load(BPrivate::ResourceItem* item, size_t* size);
	bool _GetInfo(const BPrivate::ResourceItem* item, type_code* type, int32* id, const char** name,
		size_t* length) const;
	status_t _Remove(const BPrivate::ResourceItem* item);

	BFile fFile;
	BPrivate::ResourceContainer* fContainer;
	status_t fCStatus;
	bool fReadOnly;
};
