#include "AddOnHost.h"

#include "Texts.h"
#include "media_files.h"

#include "host/GeneralPlugin.h"

#include <algorithm>
#include <exception>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr int32 kInterfaceVersion = 1;
constexpr const char* kDefaultFolders[] = {"../lib/qubo/add-ons", "../add-ons"};

using Factory = decltype(&NewPlugin);

bool
is_add_on(const fs::path& path)
{
	return path.filename().string().starts_with("gen_") && path.extension() == ".so";
}

std::vector<std::string>
find_add_ons(const fs::path& folder)
{
	std::vector<std::string> paths;
	std::error_code error;
	for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
		if (is_add_on(it->path()))
			paths.push_back(fs::absolute(it->path()).lexically_normal());
	}
	std::sort(paths.begin(), paths.end(), natural_less);
	return paths;
}

} // namespace

AddOnHost::AddOnHost(const std::string& folder, Listener& listener)
	: fFolder(folder),
	  fListener(listener)
{
	fThread = spawn_thread(ThreadEntry, "Qubo add-ons", B_NORMAL_PRIORITY, this);
	resume_thread(fThread);
}

AddOnHost::~AddOnHost()
{
	Quit();
	status_t result;
	wait_for_thread(fThread, &result);
}

void
AddOnHost::Show(size_t index)
{
	Post({kShow, index});
}

void
AddOnHost::ShowAbout(size_t index)
{
	Post({kAbout, index});
}

void
AddOnHost::ShowPreferences(size_t index)
{
	Post({kPreferences, index});
}

void
AddOnHost::Quit()
{
	Post({kQuit});
}

std::string
AddOnHost::DefaultFolder()
{
	std::error_code error;
	fs::path program = fs::read_symlink("/proc/self/exe", error);
	fs::path found;
	for (const char* folder : kDefaultFolders) {
		found = (program.parent_path() / folder).lexically_normal();
		if (fs::is_directory(found, error))
			break;
	}
	return found;
}

// #pragma mark - the add-ons' thread

void
AddOnHost::Post(const Request& request)
{
	std::lock_guard lock(fLock);
	fRequests.push_back(request);
	fPosted.notify_one();
}

status_t
AddOnHost::ThreadEntry(void* self)
{
	static_cast<AddOnHost*>(self)->Run();
	return B_OK;
}

void
AddOnHost::Run()
{
	LoadAll();
	fListener.AddOnsLoaded(Describe());
	for (Request request = NextRequest(); request.action != kQuit; request = NextRequest())
		Execute(request);
	PutAway();
	fListener.AddOnsGone();
}

void
AddOnHost::LoadAll()
{
	for (const std::string& path : find_add_ons(fFolder))
		Load(path);
}

void
AddOnHost::Load(const std::string& path)
{
	image_id image = load_add_on(path.c_str());
	if (image < 0) {
		fListener.AddOnFailed(path, text(kTextReasonNotLoaded));
		return;
	}
	PluginConstructorStruct construct = {};
	GeneralPlugin* plugin = Make(image, path, construct);
	if (plugin == nullptr) {
		unload_add_on(image);
	} else if (construct.version != kInterfaceVersion) {
		// not even its destructor can be trusted, so object and code stay
		fListener.AddOnFailed(path, text(kTextReasonOtherVersion));
	} else {
		fAddOns.push_back({image, plugin});
		plugin->Init();
	}
}

GeneralPlugin*
AddOnHost::Make(image_id image, const std::string& path, PluginConstructorStruct& construct)
{
	void* symbol;
	if (get_image_symbol(image, "NewPlugin", B_SYMBOL_TYPE_TEXT, &symbol) != B_OK) {
		fListener.AddOnFailed(path, text(kTextReasonNoFactory));
		return nullptr;
	}
	try {
		GeneralPlugin* plugin = reinterpret_cast<Factory>(symbol)(&construct);
		if (plugin == nullptr)
			fListener.AddOnFailed(path, text(kTextReasonNoPlugIn));
		return plugin;
	} catch (const std::exception& exception) {
		fListener.AddOnFailed(path, exception.what());
	}
	return nullptr;
}

std::vector<AddOnHost::Info>
AddOnHost::Describe() const
{
	std::vector<Info> infos;
	for (const AddOn& addOn : fAddOns) {
		GeneralPlugin& plugin = *addOn.plugin;
		infos.push_back({plugin.name != nullptr ? plugin.name : "",
			plugin.infoLine != nullptr ? plugin.infoLine : "", plugin.About(true) == 1,
			plugin.Prefs(true) == 1});
	}
	return infos;
}

AddOnHost::Request
AddOnHost::NextRequest()
{
	std::unique_lock lock(fLock);
	fPosted.wait(lock, [this] { return !fRequests.empty(); });
	Request request = fRequests.front();
	fRequests.pop_front();
	return request;
}

void
AddOnHost::Execute(const Request& request)
{
	if (request.index >= fAddOns.size())
		return;
	GeneralPlugin* plugin = fAddOns[request.index].plugin;
	switch (request.action) {
		case kShow:
			plugin->Init();
			break;
		case kAbout:
			plugin->About(false);
			break;
		case kPreferences:
			plugin->Prefs(false);
			break;
		case kQuit:
			break;
	}
}

void
AddOnHost::PutAway()
{
	for (const AddOn& addOn : fAddOns) {
		addOn.plugin->Cleanup();
		delete addOn.plugin;
		unload_add_on(addOn.image);
	}
	fAddOns.clear();
}
