#include "plugin/helpers/show_help.h"

#include <Entry.h>
#include <Roster.h>

#include "framework/TLLT.h"
#include "framework/dialogs.h"
#include "framework/file_utils.h"
#include "plugin/helpers/own_file.h"
#include "prefs/TPref.h"

namespace {

constexpr const char* kEnglishPage = "English.html";

status_t
open_page(const std::string& path)
{
	entry_ref ref;
	const status_t status = get_ref_for_path(path.c_str(), &ref);
	return status == B_OK ? be_roster->Launch(&ref) : status;
}

} // namespace

std::string
help_page(const std::string& addOnPath, const std::string& languageFile)
{
	const std::string folder = addOnPath.substr(0, addOnPath.rfind('/') + 1) + "Help/";
	// A settings file may hold any name; only a bare one is a page of ours.
	if (!languageFile.empty() && languageFile.find('/') == std::string::npos) {
		const std::string page = folder + merion::reext(languageFile, "html");
		if (BEntry(page.c_str(), true).IsFile())
			return page;
	}
	return folder + kEnglishPage;
}

void
show_help()
{
	const std::string page = help_page(tavora_displayer_fname(), gPref->fLanguageFile.Get());
	const status_t status = open_page(page);
	if (status == B_OK || status == B_ALREADY_RUNNING)
		return;
	const std::string text = gLLT->Text("Err_Cannot_Open_Help") + page;
	merion::show_alert(gLLT->Text("Alert_Caption"), text.c_str(), gLLT->Text("Button_OK"));
}
