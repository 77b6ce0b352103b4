#include <Entry.h>

#include <cstdlib>
#include <cstring>
#include <tuple>

static bool
equal_names(const char* a, const char* b)
{
	return a == b || (a != NULL && b != NULL && strcmp(a, b) == 0);
}

entry_ref::entry_ref()
	: device(static_cast<dev_t>(-1)),
	  directory(static_cast<ino_t>(-1)),
	  name(NULL)
{ }

entry_ref::entry_ref(dev_t device, ino_t directory, const char* name)
	: device(device),
	  directory(directory),
	  name(NULL)
{
	set_name(name);
}

entry_ref::entry_ref(const entry_ref& ref)
	: device(ref.device),
	  directory(ref.directory),
	  name(NULL)
{
	set_name(ref.name);
}

entry_ref::~entry_ref()
{
	free(name);
}

status_t
entry_ref::set_name(const char* newName)
{
	char* copy = NULL;
	if (newName != NULL) {
		copy = strdup(newName);
		if (copy == NULL)
			return B_NO_MEMORY;
	}
	free(name);
	name = copy;
	return B_OK;
}

entry_ref&
entry_ref::operator=(const entry_ref& ref)
{
	if (this == &ref)
		return *this;
	device = ref.device;
	directory = ref.directory;
	set_name(ref.name);
	return *this;
}

bool
entry_ref::operator==(const entry_ref& ref) const
{
	return device == ref.device && directory == ref.directory && equal_names(name, ref.name);
}

bool
entry_ref::operator!=(const entry_ref& ref) const
{
	return !(*this == ref);
}

bool
operator<(const entry_ref& a, const entry_ref& b)
{
	if (a.device != b.device || a.directory != b.directory)
		return std::tie(a.device, a.directory) < std::tie(b.device, b.directory);
	if (a.name == NULL || b.name == NULL)
		return a.name == NULL && b.name != NULL;
	return strcmp(a.name, b.name) < 0;
}

status_t
get_ref_for_path(const char* path, entry_ref* ref)
{
	if (path == NULL || ref == NULL)
		return B_BAD_VALUE;
	BEntry entry(path);
	if (entry.InitCheck() != B_OK)
		return entry.InitCheck();
	return entry.GetRef(ref);
}
