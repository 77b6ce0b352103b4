#pragma once

#include <SupportDefs.h>

#include "framework/framework_codes.h"

/*!	The messages of the communication manager. No code has a reply. "Preferences" means all fields of TPref::Archive(),
	which the manager adds before it forwards a notice to the editor's manager. */

// code                                    from -> to                                  fields
constexpr uint32 kOpenMainWindow = 'Somr';        // plug-in object -> manager           none
constexpr uint32 kCloseMainWindow = 'Scmr';       // plug-in object -> manager           none
constexpr uint32 kPreparePrefWindow = 'Sppr';     // plug-in object -> manager           none
constexpr uint32 kClosePrefWindow = 'Scpr';       // plug-in object -> manager           none
constexpr uint32 kPrepareAboutWindow = 'Spar';    // plug-in object -> manager           none
constexpr uint32 kCloseAboutWindow = 'Scar';      // plug-in object -> manager           none
constexpr uint32 kCloseCommonPrefWindow = 'Scsr'; // plug-in object -> manager         none

// The manager to itself: "BesideDlg" (bool: the main window exists), and if so "WinFrame" (rect: its frame).
constexpr uint32 kOpenPrefWindow = 'Sopr';
constexpr uint32 kOpenAboutWindow = 'Soar';

// The display's popup menu -> manager.
constexpr uint32 kPrefItemChosen = 'pprf';       // none
constexpr uint32 kAboutItemChosen = '_ABR';      // none
constexpr uint32 kCommonPrefItemChosen = 'pscc'; // none
constexpr uint32 kHelpItemChosen = 'phlp';       // none
constexpr uint32 kAuthorWebItemChosen = 'pawb';  // none
constexpr uint32 kOpenLyrics = 'ocer'; // "LyricsERef" (ref: the lyrics file, there or not)

// Manager -> editor's manager: open these.
constexpr uint32 kOpenRefs = '_RRC'; // "refs" (ref)

// Languages.
constexpr uint32 kPrefLanguageChanged
	= 'plgc'; // preferences view, manager -> manager: another one was chosen   none
using merion::kLanguageChanged; // manager -> itself, windows, editor's manager
constexpr uint32 kLanguageFileChanged
	= '_nlc'; // TNodeMonitorHandler -> manager -> preferences window           none

// A preference of all the maker's applications has changed: application -> TIAPFilter -> manager -> windows.
using merion::kIAPChanged;

// A manager greets the other when it finds it.
constexpr uint32 kCommManConnected
	= 'Scmc'; // manager -> editor's manager, and back  "CSCommMan" (pointer to the sender)

// A preference has changed: preferences window -> manager -> display window and, with the preferences, editor's manager.
constexpr uint32 kPrefStayOnTopChanged = 'Spsc';       // none
constexpr uint32 kPrefAppearanceChanged = 'Spac';      // none
constexpr uint32 kPrefDoubleBufferingChanged = 'pdbc'; // none

// Changed outside of the preferences window: display window -> manager -> preferences window and editor's manager.
constexpr uint32 kStayOnTopItemChanged = 'Ssic'; // none
constexpr uint32 kBGImageItemChanged = 'piic';   // none

// Of interest to the editor only: preferences window -> manager -> editor's manager.
constexpr uint32 kPrefEditCancelled = 'Sedr';         // none
constexpr uint32 kPrefWriteEncodingChanged = 'Spec';  // none
constexpr uint32 kPrefReadEncodingChanged = 'Sprc';   // none
constexpr uint32 kPrefWriteCRTypeChanged = 'Spcc';    // none
constexpr uint32 kPrefTimeDifferenceChanged = 'Sptc'; // none
constexpr uint32 kPrefShowToolBarChanged = 'Splc';    // none
constexpr uint32 kSetStatusBarText = 'Sssr';          // "StatBarStr" (string)

// The host's window has moved.
constexpr uint32 kHostWindowMoved = 'Scwm'; // TWMFilter -> display window             none
