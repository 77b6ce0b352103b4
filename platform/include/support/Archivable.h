#pragma once

#include <SupportDefs.h>
#include <image.h>

class BMessage;

namespace BPrivate {
class ArchiveManager;
class UnarchiveManager;
} // namespace BPrivate

/*!	An object that stores itself in a message and is built again from one. A class that wants this
	has a constructor from BMessage* and a static function `Instantiate(BMessage*)`, which is found
	by name when an archive is read. */
class BArchivable {
public:
	BArchivable() = default;
	explicit BArchivable(BMessage* archive);
	virtual ~BArchivable();

	/*!	Adds the fields of the object; each class first calls its base. This one adds the class's
		name ("class"). `deep`: what the object holds (a view's children) as well. B_BAD_VALUE for
		NULL. */
	virtual status_t Archive(BMessage* into, bool deep = true) const;
	//! Always NULL: a BArchivable as such stands for nothing.
	static BArchivable* Instantiate(BMessage* archive);
};

/*!	Archives objects that refer to each other, each once. To be made by Archive(), which refers to the other objects
	by token: they are archived apart and go into the archive of the object that began all ("_managed_archivable" by
	token, its own is 0), which is marked ("_managed_archive").
	Thread: one, on which the whole archiving happens. */
class BArchiver {
public:
	explicit BArchiver(BMessage* archive);
	//! Finish(), unless that was called.
	~BArchiver();
	BArchiver(const BArchiver&) = delete;
	BArchiver& operator=(const BArchiver&) = delete;

	//! Archives the object if that was not done yet and adds its token (int32) to the archive.
	status_t AddArchivable(const char* name, BArchivable* archivable, bool deep = true);
	//! The same without adding it. -1 for NULL.
	status_t GetTokenForArchivable(BArchivable* archivable, int32& token);
	status_t GetTokenForArchivable(BArchivable* archivable, bool deep, int32& token);
	bool IsArchived(BArchivable* archivable);
	/*!	To be called last, with the error of Archive(), if any: it, or an earlier one, is the answer. The first
		archiver of all writes the other objects then. */
	status_t Finish(status_t error = B_OK);
	BMessage* ArchiveMessage() const { return fArchive; }

private:
	BMessage* fArchive;
	BPrivate::ArchiveManager* fManager;
	bool fMadeManager = false;
	bool fFinished = false;
};

/*!	Builds the objects again that a BArchiver has archived; to be made by a constructor from an archive, which gets
	the others by token. Archives in the older form, with nested messages in the place of tokens, can be read too.
	Objects that nobody has taken when the last unarchiver has finished are deleted.
	Damaged archives do no harm: whatever cannot be had is B_BAD_VALUE (a token out of range, a class that is not
	known or refuses, an object that is still being built), and a hundred objects within each other are the limit.
	Thread: one, on which the whole building happens. */
class BUnarchiver {
public:
	enum ownership_policy { B_ASSUME_OWNERSHIP, B_DONT_ASSUME_OWNERSHIP };

	explicit BUnarchiver(BMessage* archive);
	//! Finish(), unless that was called.
	~BUnarchiver();
	BUnarchiver(const BUnarchiver&) = delete;
	BUnarchiver& operator=(const BUnarchiver&) = delete;

	/*!	NULL for -1. B_BAD_TYPE when it is no T; B_BAD_VALUE also when it is to be owned and has an owner already.
		Whatever fails makes `object` NULL. */
	template<class T> status_t GetObject(int32 token, T*& object)
	{
		return GetObject(token, B_ASSUME_OWNERSHIP, object);
	}
	template<class T> status_t GetObject(int32 token, ownership_policy owning, T*& object)
	{
		BArchivable* found = NULL;
		const status_t error = Get(token, &found);
		return error == B_OK ? Give(found, owning, object) : Refuse(error, object);
	}
	//! By the field, a token or a nested message; what was in the latter is the caller's in any case.
	template<class T> status_t FindObject(const char* name, T*& object)
	{
		return FindObject(name, 0, B_ASSUME_OWNERSHIP, object);
	}
	template<class T> status_t FindObject(const char* name, int32 index, T*& object)
	{
		return FindObject(name, index, B_ASSUME_OWNERSHIP, object);
	}
	template<class T>
	status_t FindObject(const char* name, int32 index, ownership_policy owning, T*& object)
	{
		BArchivable* found = NULL;
		bool nested = false;
		status_t error = Find(name, index, &found, &nested);
		if (error == B_OK)
			error = Give(found, nested ? B_DONT_ASSUME_OWNERSHIP : owning, object);
		if (error != B_OK && nested)
			delete found;
		return error == B_OK ? B_OK : Refuse(error, object);
	}

	//! The object has an owner from now on, or none any more.
	void AssumeOwnership(BArchivable* archivable);
	void RelinquishOwnership(BArchivable* archivable);
	/*!	To be called last, with the constructor's error, if any: then, or after an earlier one, the whole archive
		counts as damaged, and instantiate_object() answers NULL. */
	status_t Finish(status_t error = B_OK);
	const BMessage* ArchiveMessage() const { return fArchive; }

	static bool IsArchiveManaged(const BMessage* archive);
	/*!	Keeps the objects together until the BUnarchiver that the same constructor makes of this archive: for what a
		class gives its base class's constructor when it gets objects itself. */
	static BMessage* PrepareArchive(BMessage*& archive);

private:
	status_t Get(int32 token, BArchivable** object);
	status_t Find(const char* name, int32 index, BArchivable** object, bool* nested);
	status_t Claim(BArchivable* object);
	template<class T> static status_t Refuse(status_t error, T*& object)
	{
		object = NULL;
		return error;
	}
	template<class T> status_t Give(BArchivable* found, ownership_policy owning, T*& object)
	{
		object = dynamic_cast<T*>(found);
		if (found == NULL)
			return B_OK;
		if (object == NULL)
			return B_BAD_TYPE;
		const status_t error = owning == B_ASSUME_OWNERSHIP ? Claim(found) : B_OK;
		return error == B_OK ? B_OK : Refuse(error, object);
	}

	BMessage* fArchive;
	BPrivate::UnarchiveManager* fManager;
	bool fFinished = false;
};

typedef BArchivable* (*instantiation_func)(BMessage*);

/*!	Builds the object that `archive` describes: the caller's, or NULL when no loaded image knows the
	class, the class refuses, or an archive in the managed form is damaged anywhere. `id`: the image where the class was found, else B_BAD_IMAGE_ID. Only
	images that are loaded are asked: an archive is data and must not make the program load code, so
	its field "add_on" has no effect. */
BArchivable* instantiate_object(BMessage* archive, image_id* id = nullptr);
/*!	Is `archive` one of an object of this class or of a class derived from it? Of a class in BPrivate whose name begins
	with an underline also when the archive names it without that namespace, as older systems did. */
bool validate_instantiation(BMessage* archive, const char* className);
//! The class's Instantiate() in any loaded image, or NULL. Names with "::" are taken apart;
//! templates are not known.
instantiation_func find_instantiation_func(const char* className);
