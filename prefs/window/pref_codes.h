#pragma once

#include <AppDefs.h>

#include "plugin/helpers/commman_codes.h"

/*!	The messages of the preferences window beside its notices, which are in commman_codes.h. No code has a reply. The codes
	of single controls stand in resources/PrefView.layout too. */

// Controls -> view: the user has changed it. Fields as the kits add them.
constexpr uint32 kCBoxStayOnTop = 'cstc';
constexpr uint32 kMFieldLanguage = 'mlgc'; // "FileName" (string: the language's file, bare)
constexpr uint32 kMFieldReadEncoding = 'mrec';
constexpr uint32 kMFieldFontFamily = 'mffc'; // kFontFamily
constexpr uint32 kTxtCtrlFontSize = 'tfsc';
constexpr uint32 kCBoxAntiAliasing = 'caac';
constexpr uint32 kMFieldColor = 'mclc'; // "Color" (raw: the rgb_color that the item stands for)
constexpr uint32 kColCtrlAppearance = 'capc';
constexpr uint32 kCBoxUseActiveFrame = 'cufc';
constexpr uint32 kCBoxUseBGImage = 'cubc';
constexpr uint32 kTxtCtrlBGImageFName = 'tbic';
constexpr uint32 kRButtonBGImageAlign = 'rbia';
constexpr uint32 kCBoxDoubleBuffering = 'cdbc';
constexpr uint32 kMFieldWriteCRType = 'mwcc';
constexpr uint32 kMFieldWriteEncoding = 'mwec';
constexpr uint32 kTxtCtrlTimeDifference = 'ttdc';
constexpr uint32 kCBoxShowToolBar = 'cstb';

// Files for the background image -> view: what was dropped, and what the panel has to open.
constexpr uint32 kFileDropped = B_SIMPLE_DATA; // "refs" (refs)
using ::kOpenRefs;                             // "refs" (refs)

// The option menu -> view. Those that ask come back from the question with "which" (int32: the button's index).
constexpr uint32 kLoadPreset = 'plps';       // kPresetName
constexpr uint32 kSavePreset = 'psps';       // kPresetName
constexpr uint32 kSaveNewPreset = 'snpr';    // the save panel's: "directory" (ref), "name" (string)
constexpr uint32 kDeletePreset = 'pdpr';     // kPresetName
constexpr uint32 kDeleteAllPresets = 'pdap'; // none
constexpr uint32 kGetSkinColor = 'gscr'; // the skin panel's: "refs" (refs: a folder or an archive)

// Button and option menu -> window: show a panel.
constexpr uint32 kBrowseBGImage = 'bbgi'; // none
constexpr uint32 kBrowseSkin = 'pgsc';    // none
constexpr uint32 kShowSavePanel = 'sspr'; // none

// Fields.
constexpr const char* kFontFamily = "Family";     // string
constexpr const char* kPresetName = "PresetName"; // string
