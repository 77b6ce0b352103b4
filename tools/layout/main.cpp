// tavora-layout: makes an archived view of its readable description.

#include <cstdio>
#include <fstream>
#include <string>

#include <Application.h>
#include <Message.h>
#include <View.h>

#include "layout.h"

namespace {

constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

int
fail(const std::string& fault)
{
	fprintf(stderr, "tavora-layout: %s\n", fault.c_str());
	return kExitFailed;
}

int
write_archive(const BView& view, const char* target)
{
	BMessage archive;
	if (view.Archive(&archive, true) != B_OK)
		return fail("the views cannot be archived");
	std::string bytes(archive.FlattenedSize(), '\0');
	if (archive.Flatten(bytes.data(), bytes.size()) != B_OK)
		return fail("the archive cannot be flattened");
	std::ofstream file(target, std::ios::binary | std::ios::trunc);
	file.write(bytes.data(), bytes.size());
	if (!file.flush())
		return fail(std::string(target) + ": it cannot be written");
	return 0;
}

} // namespace

int
main(int argc, char** argv)
{
	if (argc != 3) {
		fprintf(stderr, "usage: tavora-layout LAYOUT TARGET\n");
		return kExitUsage;
	}
	BApplication application("application/x-vnd.MERION-layout");
	std::ifstream text(argv[1]);
	if (!text)
		return fail(std::string(argv[1]) + ": it cannot be read");
	try {
		return write_archive(*read_layout(text), argv[2]);
	} catch (const LayoutError& error) {
		return fail(std::string(argv[1]) + ":" + error.what());
	}
}
