// Any bytes as an archive that a file is taken out of: the target is there just when all went well, and nothing else is made.

#include <cstdlib>
#include <filesystem>
#include <string>

#include <DataIO.h>
#include <Message.h>
#include <TranslatorRoster.h>

namespace fs = std::filesystem;

namespace {

constexpr uintmax_t kMaxSize = 1024 * 1024;

//!	A folder that goes with the process.
class Folder {
public:
	Folder()
	{
		std::string path = fs::temp_directory_path() / "archive-XXXXXX";
		if (mkdtemp(path.data()) == nullptr)
			abort();
		fPath = path;
	}
	~Folder() { fs::remove_all(fPath); }

	const fs::path& Path() const { return fPath; }

private:
	fs::path fPath;
};

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
	static const Folder sFolder;
	const fs::path target = sFolder.Path() / "target";
	BMemoryIO source(bytes, size);
	BMallocIO unused;
	BMessage request;
	request.AddString("Arc/entry", "PLEDIT.TXT");
	request.AddString("Arc/target", target.c_str());
	const status_t status
		= BTranslatorRoster::Default()->Translate(&source, NULL, &request, &unused, 0);
	if (fs::exists(target) != (status == B_OK) || unused.BufferLength() != 0)
		abort();
	if (status == B_OK && (fs::file_size(target) > kMaxSize || !fs::remove(target)))
		abort();
	if (!fs::is_empty(sFolder.Path()))
		abort();
	return 0;
}
