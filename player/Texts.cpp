#include "Texts.h"

#include "framework/TIniFile.h"
#include "framework/TLLT.h"
#include "framework/language_files.h"

#include <DataIO.h>
#include <Path.h>
#include <image.h>

#include <optional>

namespace {

// made of Language/English.llt by CMake
constexpr char kEnglish[] =
#include "EnglishTexts.inc"
	;

// in the order of TextKey
constexpr const char* kKeys[] = {
	"Menu_File",
	"MItem_Open",
	"MItem_Quit",
	"Menu_Playback",
	"MItem_Play",
	"MItem_Previous",
	"MItem_Next",
	"MItem_Back",
	"MItem_Forward",
	"MItem_To_Start",
	"MItem_Softer",
	"MItem_Louder",
	"Menu_Timing",
	"MItem_Lyrics_Earlier",
	"MItem_Lyrics_Later",
	"MItem_Usual_Timing",
	"Menu_Follow",
	"MItem_Follow_None",
	"MItem_Follow_Any",
	"Menu_Add_Ons",
	"MItem_No_Add_Ons",
	"MItem_Show",
	"MItem_Preferences",
	"MItem_About",
	"Button_Play",
	"Button_Pause",
	"Button_Previous",
	"Button_Next",
	"Text_Volume",
	"Text_Timing",
	"Text_Timing_Not_Kept",
	"Text_Drop_Here",
	"Text_No_Sound",
	"Text_Cannot_Play",
	"Text_No_Player",
	"Text_Add_On_Failed",
	"Text_Following",
	"Text_No_Bus",
	"Text_None_Running",
	"Text_Not_Running",
	"Text_No_Answer",
	"Text_Plays_Nothing",
	"Text_Plays_Unnamed",
	"Text_No_Position",
	"Text_No_File",
	"Reason_Not_There",
	"Reason_List",
	"Reason_No_Start",
	"Reason_Not_Loaded",
	"Reason_Other_Version",
	"Reason_No_Factory",
	"Reason_No_Plug_In",
	"Text_Title",
	"Text_Entry",
	"Text_Lyrics_File",
	"Text_Encoding_Guessed",
	"Text_Encoding_Chosen",
	"Text_Lines",
	"Text_No_Times",
	"Text_Misspelt",
	"Text_No_Lyrics",
	"Reason_No_Song",
	"Reason_No_Entry",
	"Reason_Neither",
	"Reason_Unreadable",
	"Reason_Folder",
	"Reason_Not_Allowed",
	"Reason_Error",
	"Reason_No_View",
};
static_assert(sizeof(kKeys) / sizeof(*kKeys) == kTextCount);

//! Where the language files are put beside the program's folder; empty when that is not known.
std::string
installed_folder()
{
	int32 cookie = 0;
	image_info image;
	BPath folder;
	if (get_next_image_info(B_CURRENT_TEAM, &cookie, &image) != B_OK
		|| BPath(image.name).GetParent(&folder) != B_OK || folder.GetParent(&folder) != B_OK)
		return {};
	return std::string(folder.Path()) + "/share/qubo/Language";
}

const merion::TLLT*
load_texts()
{
	auto table = new merion::TLLT; // never deleted: the texts are good for ever
	merion::load_language_text(kEnglish, table);
	const std::string folder = installed_folder();
	const std::string name = merion::desktop_language(merion::list_languages(folder));
	if (const auto bytes = merion::read_language_file(folder, name))
		merion::load_language_text(*bytes, table);
	return table;
}

} // namespace

const char*
text(TextKey key)
{
	static const merion::TLLT* const sTexts = load_texts();
	return sTexts->Text(kKeys[key]);
}

std::string
text(TextKey key, const std::string& first, const std::string& second)
{
	// in one go: what is put in may look like this itself
	std::string result;
	for (const char* at = text(key); *at != '\0'; at++) {
		if (at[0] != '%' || (at[1] != '1' && at[1] != '2'))
			result += *at;
		else
			result += *++at == '1' ? first : second;
	}
	return result;
}
