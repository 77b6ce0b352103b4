#include "plugin/open_lyrics.h"

#include <string>

#include <Entry.h>
#include <File.h>
#include <Roster.h>

#include "framework/TLLT.h"
#include "framework/accelerator.h"
#include "framework/dialogs.h"
#include "framework/file_utils.h"

namespace {

bool
does_user_want_new(const std::string& path, int32 acceleratorFormat)
{
	const std::string question
		= std::string(gLLT->Text("Ask_Create_New_1")) + path + gLLT->Text("Ask_Create_New_2");
	const std::string yes
		= merion::merge_accelerator_key(gLLT->Text("Button_Yes"), "Y", acceleratorFormat);
	const std::string no
		= merion::merge_accelerator_key(gLLT->Text("Button_No"), "N", acceleratorFormat);
	constexpr int32 kYes = 0;
	return merion::show_alert(gLLT->Text("Alert_Caption"), question.c_str(), yes.c_str(),
			   no.c_str(), nullptr, "YN")
		== kYes;
}

} // namespace

void
open_lyrics_file(const entry_ref& ref, int32 acceleratorFormat)
{
	const std::string path = merion::path_of(ref);
	if (!BEntry(&ref).Exists()) {
		if (!does_user_want_new(path, acceleratorFormat))
			return;
		// Where this fails, so does the launch, and that is told.
		BFile(&ref, B_CREATE_FILE | B_WRITE_ONLY).Unset();
	}
	const status_t status = be_roster->Launch(&ref);
	if (status == B_OK || status == B_ALREADY_RUNNING)
		return;
	const std::string text = gLLT->Text("Err_Cannot_Open_Lyrics_File") + path;
	merion::show_alert(gLLT->Text("Alert_Caption"), text.c_str(), gLLT->Text("Button_OK"));
}
