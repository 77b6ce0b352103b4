// Any bytes as a file with resources: it is read, all is loaded, and what was read is written and read again.

#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include <Resources.h>

namespace {

//!	A file in memory, empty at first.
class MemoryFile {
public:
	MemoryFile() : fFd(memfd_create("resources", MFD_CLOEXEC))
	{
		if (fFd < 0)
			abort();
	}
	~MemoryFile() { close(fFd); }

	std::string Path() const { return "/proc/self/fd/" + std::to_string(fFd); }

private:
	int fFd;
};

int32
count(BResources& resources)
{
	int32 index = 0;
	type_code type;
	int32 id;
	size_t size;
	const char* name;
	while (resources.GetResourceInfo(index, &type, &id, &name, &size)) {
		resources.LoadResource(type, id, &size);
		resources.HasResource(type, name);
		index++;
	}
	return index;
}

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
	MemoryFile input, output;
	BFile file(input.Path().c_str(), B_READ_WRITE);
	if (size > 0 && file.WriteAt(0, bytes, size) != static_cast<ssize_t>(size))
		abort();

	BResources resources(&file);
	if (resources.InitCheck() != B_OK)
		return 0;
	int32 items = count(resources);
	BFile copy(output.Path().c_str(), B_READ_WRITE);
	if (resources.WriteTo(&copy) == B_OK) {
		BResources again(&copy);
		if (again.InitCheck() != B_OK || count(again) != items)
			abort();
	}
	return 0;
}
