#include "prefs/app_info.h"

const char* const gAppName = "Tavora Displayer";
const char* const gAppSignature = "application/x-vnd.MERION-TavoraDisplayer";
const char* const gAppVer = TAVORA_VERSION;
const char* const gAuthorWebURL = TAVORA_WEB_PAGE;
