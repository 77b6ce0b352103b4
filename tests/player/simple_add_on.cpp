/*!	An add-on that notes what is done with it: a line "WHAT THREAD" per call, in the file that $ADD_ON_LOG names.
	SIMPLE_VERSION: what it says its interface's version is. SIMPLE_THROWS: its factory fails. */

#include "host/GeneralPlugin.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace {

void
note(const char* what)
{
	std::ofstream(getenv("ADD_ON_LOG"), std::ios::app)
		<< what << ' ' << std::this_thread::get_id() << '\n';
}

struct Unloading {
	~Unloading() { note("unload"); }
} sUnloading;

class SimplePlugin : public GeneralPlugin {
public:
	SimplePlugin()
	{
		name = strdup("Simple");
		infoLine = strdup("Simple  for tests");
	}
	~SimplePlugin() override
	{
		note("delete");
		free(name);
		free(infoLine);
	}
	int32 Init() override
	{
		note("Init");
		return 1;
	}
	void Cleanup() override { note("Cleanup"); }
	int32 About(bool query) override
	{
		note(query ? "About?" : "About");
		return 1;
	}
	int32 Prefs(bool query) override
	{
		note(query ? "Prefs?" : "Prefs");
		return 0;
	}
	uint32 GetFlags() override { return 0; }
};

} // namespace

GeneralPlugin* gSimplePlugin; // a host that does not know the version leaves it here

extern "C" GeneralPlugin*
NewPlugin(PluginConstructorStruct* construct)
{
	note("NewPlugin");
#ifdef SIMPLE_THROWS
	throw std::runtime_error("no room for it");
#endif
	construct->version = SIMPLE_VERSION;
	gSimplePlugin = new SimplePlugin;
	return gSimplePlugin;
}
