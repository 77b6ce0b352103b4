// tavora-rsrc: adds resources to an ELF file or a resource file, or lists them.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <File.h>
#include <Resources.h>

namespace {

const int kExitFailed = 1;
const int kExitUsage = 2;
const int kArgumentsEach = 4; // TYPE ID NAME FILE

const char* kUsage
	= "usage: tavora-rsrc TARGET TYPE ID NAME FILE [TYPE ID NAME FILE ...]\n"
	  "       tavora-rsrc --list FILE\n"
	  "\n"
	  "Adds the content of each FILE as a resource to TARGET: an ELF file, a resource file, or a\n"
	  "new one. TYPE is four characters, ID a number; one of that type and id is replaced.\n";

struct Addition {
	type_code type;
	int32 id;
	const char* name;
	std::string data;
};

const char*
text_of(status_t status)
{
	switch (status) {
		case B_IO_ERROR:
		case B_ERROR:
			return "it is neither a sound ELF file nor a resource file";
		case B_UNSUPPORTED:
			return "ELF files of this kind are not known";
		case B_ENTRY_NOT_FOUND:
			return "there is no such file";
		case B_IS_A_DIRECTORY:
			return "it is a folder";
		case B_PERMISSION_DENIED:
		case B_NOT_ALLOWED:
			return "it cannot be opened for this";
		case B_DEVICE_FULL:
			return "the disk is full";
		case B_NAME_TOO_LONG:
			return "the name is too long";
		case B_NO_MEMORY:
			return "there is not enough memory";
		default:
			return "the file system refuses it";
	}
}

int
fail(const char* file, status_t status)
{
	fprintf(stderr, "tavora-rsrc: %s: %s\n", file, text_of(status));
	return kExitFailed;
}

bool
parse_type(const char* text, type_code& type)
{
	if (strlen(text) != sizeof(type))
		return false;
	type = 0;
	for (const char* c = text; *c != '\0'; c++)
		type = type << 8 | static_cast<uint8>(*c);
	return true;
}

bool
parse_id(const char* text, int32& id)
{
	char* end;
	errno = 0;
	long value = strtol(text, &end, 0);
	if (end == text || *end != '\0' || errno != 0 || value < INT32_MIN || value > INT32_MAX)
		return false;
	id = static_cast<int32>(value);
	return true;
}

status_t
read_file(const char* path, std::string& data)
{
	BFile file(path, B_READ_ONLY);
	off_t size = 0;
	status_t status = file.InitCheck();
	if (status == B_OK)
		status = file.GetSize(&size);
	if (status != B_OK)
		return status;
	data.resize(size);
	ssize_t bytes = file.Read(data.data(), data.size());
	return bytes >= 0 ? B_OK : static_cast<status_t>(bytes);
}

//!	All is read before the target is touched. An exit code.
int
parse(char** arguments, int count, std::vector<Addition>& additions)
{
	for (int i = 0; i < count; i += kArgumentsEach) {
		Addition addition;
		if (!parse_type(arguments[i], addition.type)) {
			fprintf(stderr, "tavora-rsrc: \"%s\" is no type of four characters\n", arguments[i]);
			return kExitUsage;
		}
		if (!parse_id(arguments[i + 1], addition.id)) {
			fprintf(stderr, "tavora-rsrc: \"%s\" is no id of 32 bits\n", arguments[i + 1]);
			return kExitUsage;
		}
		addition.name = arguments[i + 2];
		status_t status = read_file(arguments[i + 3], addition.data);
		if (status != B_OK)
			return fail(arguments[i + 3], status);
		additions.push_back(std::move(addition));
	}
	return 0;
}

int
add(const char* target, const std::vector<Addition>& additions)
{
	BFile file(target, B_READ_WRITE | B_CREATE_FILE);
	if (file.InitCheck() != B_OK)
		return fail(target, file.InitCheck());
	BResources resources(&file);
	status_t status = resources.InitCheck();
	for (size_t i = 0; status == B_OK && i < additions.size(); i++) {
		const Addition& each = additions[i];
		status = resources.AddResource(
			each.type, each.id, each.data.data(), each.data.size(), each.name);
	}
	if (status == B_OK)
		status = resources.Sync();
	return status == B_OK ? 0 : fail(target, status);
}

int
list(const char* path)
{
	BFile file(path, B_READ_ONLY);
	BResources resources;
	status_t status = file.InitCheck();
	if (status == B_OK)
		status = resources.SetTo(&file);
	if (status != B_OK)
		return fail(path, status);

	type_code type;
	int32 id;
	const char* name;
	size_t size;
	for (int32 i = 0; resources.GetResourceInfo(i, &type, &id, &name, &size); i++) {
		char text[] = {char(type >> 24), char(type >> 16), char(type >> 8), char(type), '\0'};
		printf("'%s'\t%" B_PRId32 "\t%zu bytes\t\"%s\"\n", text, id, size, name);
	}
	return 0;
}

} // namespace

int
main(int argc, char** argv)
{
	if (argc == 2 && strcmp(argv[1], "--help") == 0) {
		fputs(kUsage, stdout);
		return 0;
	}
	if (argc == 3 && strcmp(argv[1], "--list") == 0)
		return list(argv[2]);
	if (argc < 2 + kArgumentsEach || (argc - 2) % kArgumentsEach != 0) {
		fputs(kUsage, stderr);
		return kExitUsage;
	}
	std::vector<Addition> additions;
	int exitCode = parse(argv + 2, argc - 2, additions);
	return exitCode == 0 ? add(argv[1], additions) : exitCode;
}
