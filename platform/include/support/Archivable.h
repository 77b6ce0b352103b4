#pragma once

#include <SupportDefs.h>
#include <image.h>

class BMessage;

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

typedef BArchivable* (*instantiation_func)(BMessage*);

/*!	Builds the object that `archive` describes: the caller's, or NULL when no loaded image knows the
	class or the class refuses. `id`: the image where the class was found, else B_BAD_IMAGE_ID. Only
	images that are loaded are asked: an archive is data and must not make the program load code, so
	its field "add_on" has no effect. */
BArchivable* instantiate_object(BMessage* archive, image_id* id = nullptr);
//! Is `archive` one of an object of this class or of a class derived from it?
bool validate_instantiation(BMessage* archive, const char* className);
//! The class's Instantiate() in any loaded image, or NULL. Names with "::" are taken apart;
//! templates are not known.
instantiation_func find_instantiation_func(const char* className);
