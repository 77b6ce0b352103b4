#include "plugin/TTavoraD.h"

#include <cstring>
#include <string>

#include "plugin/TTavoraDCommMan.h"
#include "plugin/helpers/commman_codes.h"
#include "plugin/helpers/load_language.h"
#include "plugin/helpers/settings_files.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"
#include "prefs/app_info.h"

namespace {

constexpr const char* kShortName = "TavoraD";
constexpr const char* kExitStateName = "TavoraD_ExitStates.arc";

char*
heap_copy(const std::string& text)
{
	char* copy = new char[text.size() + 1];
	memcpy(copy, text.c_str(), text.size() + 1);
	return copy;
}

template<typename T>
void
delete_singleton(T*& singleton)
{
	delete singleton;
	singleton = nullptr;
}

} // namespace

TTavoraD::TTavoraD(PluginConstructorStruct*)
{
	name = heap_copy(gAppName);
	infoLine = heap_copy(std::string(gAppName) + "  by MERION");
	reserved = 0;
	reservedFlag = false;
	gExitState = new TExitState;
	gPref = new TPref;
	load_global(kShortName, kExitStateName);
	fCommMan = new TTavoraDCommMan;
	fCommMan->Run();
}

TTavoraD::~TTavoraD()
{
	save_exit_state(kShortName, kExitStateName);
	if (fCommMan->Lock())
		fCommMan->Quit();
	delete_singleton(gExitState);
	delete_singleton(gPref);
}

int32
TTavoraD::Init()
{
	fCommMan->PostMessage(kOpenMainWindow);
	return 1;
}

void
TTavoraD::Cleanup()
{
	fCommMan->PostMessage(kCloseAboutWindow);
	fCommMan->PostMessage(kClosePrefWindow);
	fCommMan->PostMessage(kCloseCommonPrefWindow);
	fCommMan->PostMessage(kCloseMainWindow);
}

int32
TTavoraD::About(bool query)
{
	if (!query)
		fCommMan->PostMessage(kPrepareAboutWindow);
	return 1;
}

int32
TTavoraD::Prefs(bool query)
{
	if (!query)
		fCommMan->PostMessage(kPreparePrefWindow);
	return 1;
}

uint32
TTavoraD::GetFlags()
{
	return 0;
}

extern "C" GeneralPlugin*
NewPlugin(PluginConstructorStruct* construct)
{
	GeneralPlugin* plugin = new TTavoraD(construct);
	construct->version = 1;
	return plugin;
}
