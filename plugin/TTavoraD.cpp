#include "plugin/TTavoraD.h"

#include <cstring>
#include <string>

#include "framework/TAppPrivacy.h"
#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TInterAppPrefs.h"
#include "framework/TLLT.h"
#include "framework/dialogs.h"
#include "plugin/TTavoraDCommMan.h"
#include "plugin/helpers/commman_codes.h"
#include "plugin/helpers/load_language.h"
#include "plugin/helpers/own_file.h"
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

//! They outlive the plug-in object.
merion::TInterAppPrefs*
make_common_prefs()
{
	auto* prefs = new merion::TInterAppPrefs;
	prefs->SetAppSignatureRef(gAppSignature);
	prefs->AddItem(new merion::TIAPItemAccKeyFormat);
	prefs->SetFailureReport([] {
		merion::show_alert(gLLT->Text("Alert_Caption"), gLLT->Text("Err_Cannot_Save_Common_Pref"),
			gLLT->Text("Button_OK"));
	});
	return prefs;
}

std::string
chosen_language_file()
{
	return gPref->fLanguageFile.Get();
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
	merion::allow_alerts();
	gAppPrivacy = new merion::TAppPrivacy(chosen_language_file);
	gExitState = new TExitState;
	gIAP = make_common_prefs();
	gPref = new TPref;
	load_global(kShortName, kExitStateName);
	gLLT = new merion::TLLT;
	load_language(tavora_displayer_fname().c_str());
	fCommMan = new TTavoraDCommMan;
	fCommMan->Run();
}

TTavoraD::~TTavoraD()
{
	save_exit_state(kShortName, kExitStateName);
	// The manager may be waiting for the user in one.
	merion::dismiss_alerts();
	if (fCommMan->Lock())
		fCommMan->Quit();
	delete_singleton(gExitState);
	delete_singleton(gLLT);
	delete_singleton(gPref);
	delete_singleton(gAppPrivacy);
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
