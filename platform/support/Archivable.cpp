#include <Archivable.h>

#include "support/ArchiveManager.h"

#include <Message.h>
#include <cxxabi.h>
#include <dlfcn.h>
#include <memory>
#include <stdlib.h>
#include <string>
#include <string_view>
#include <typeinfo>

using namespace BPrivate;

static constexpr const char* kClassField = "class";

// Objects within objects; each takes some stack. Deeper ones are no one's honest archive.
static constexpr int32 kDeepest = 100;
static thread_local int32 tDepth = 0;

BArchivable::BArchivable(BMessage*) { }

BArchivable::~BArchivable()
{
	ArchiveManager::ObjectGone(this);
	UnarchiveManager::ObjectGone(this);
}

static std::string
class_name(const std::type_info& type)
{
	int status = 0;
	const std::unique_ptr<char, void (*)(void*)> name(
		abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), free);
	return name != nullptr ? name.get() : type.name();
}

status_t
BArchivable::Archive(BMessage* into, bool) const
{
	if (into == nullptr)
		return B_BAD_VALUE;
	ArchiveManager::ObjectArchived(this, into);
	return into->AddString(kClassField, class_name(typeid(*this)).c_str());
}

BArchivable*
BArchivable::Instantiate(BMessage*)
{
	return nullptr;
}

/*!	Parts of the platform's own classes, which begin with an underline, were in no namespace on older
	systems. Empty for other names. */
static std::string
newer_name(std::string_view className)
{
	return className.starts_with('_') ? "BPrivate::" + std::string(className) : "";
}

bool
validate_instantiation(BMessage* archive, const char* className)
{
	if (archive == nullptr || className == nullptr)
		return false;
	const char* name;
	for (int32 i = 0; archive->FindString(kClassField, i, &name) == B_OK; i++) {
		if (std::string_view(name) == className || newer_name(name) == className)
			return true;
	}
	return false;
}

/*!	The linker's name of `className::Instantiate(BMessage*)`, as the C++ ABI of this system
	(Itanium) spells it: the length before each name, the names between N and E. Empty for what is
	no class's name. */
static std::string
instantiate_symbol(std::string_view className)
{
	constexpr std::string_view kSeparator = "::";
	std::string symbol = "_ZN";
	for (;;) {
		const size_t end = className.find(kSeparator);
		const std::string_view part = className.substr(0, end);
		if (part.empty() || part.find_first_of("<>(), :") != std::string_view::npos)
			return "";
		symbol += std::to_string(part.size());
		symbol += part;
		if (end == std::string_view::npos)
			break;
		className.remove_prefix(end + kSeparator.size());
	}
	return symbol + "11InstantiateEP8BMessage";
}

static instantiation_func
find_in_images(const char* symbol, image_id* id)
{
	int32 cookie = 0;
	image_info info;
	while (get_next_image_info(B_CURRENT_TEAM, &cookie, &info) == B_OK) {
		void* location;
		if (get_image_symbol(info.id, symbol, B_SYMBOL_TYPE_TEXT, &location) == B_OK) {
			*id = info.id;
			return reinterpret_cast<instantiation_func>(location);
		}
	}
	return nullptr;
}

/*!	`id` NULL: nobody asks for it, and the linker's own search, which knows the program and what it needs, is
	some hundred times as fast as looking at one image after the other. */
static instantiation_func
find_func(std::string_view className, image_id* id)
{
	const std::string symbol = instantiate_symbol(className);
	if (symbol.empty())
		return nullptr;
	if (id != nullptr)
		return find_in_images(symbol.c_str(), id);
	if (void* location = dlsym(RTLD_DEFAULT, symbol.c_str()))
		return reinterpret_cast<instantiation_func>(location);
	image_id unused;
	return find_in_images(symbol.c_str(), &unused);
}

instantiation_func
find_instantiation_func(const char* className)
{
	return className != nullptr ? find_func(className, nullptr) : nullptr;
}

//! With a manager for what belongs together, unless there is one.
static BArchivable*
call_managed(instantiation_func func, BMessage* archive)
{
	if (!BUnarchiver::IsArchiveManaged(archive) || UnarchiveManager::Find(archive) != nullptr)
		return func(archive);
	BUnarchiver unarchiver(archive);
	BArchivable* object = func(archive);
	if (unarchiver.Finish() == B_OK)
		return object;
	delete object;
	return nullptr;
}

BArchivable*
instantiate_object(BMessage* archive, image_id* id)
{
	if (id != nullptr)
		*id = B_BAD_IMAGE_ID;
	const char* name;
	if (archive == nullptr || archive->FindString(kClassField, &name) != B_OK || tDepth >= kDeepest)
		return nullptr;
	instantiation_func func = find_func(name, id);
	if (func == nullptr)
		func = find_func(newer_name(name), id);
	if (func == nullptr)
		return nullptr;
	tDepth++;
	BArchivable* object = call_managed(func, archive);
	tDepth--;
	return object;
}
