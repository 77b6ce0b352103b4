#pragma once

#include <SupportDefs.h>

//! The messages that the framework's classes know. Owner of their meaning: the maker's applications, all alike.
namespace merion {

// code                                   from -> to                                        fields
constexpr uint32 kLanguageChanged = '_lgc'; // application -> windows: gLLT holds another one   none

// A preference of all the maker's applications has changed: "IAP:SrcIAPItem" (string: the item's name).
constexpr uint32 kIAPChanged = '_ipc';

// A dialog's buttons -> its view.                                                          none
constexpr uint32 kDialogOK = '_ok';
constexpr uint32 kDialogCancel = '_cnc';
constexpr uint32 kDialogDefault = '_dfl';
constexpr uint32 kDialogHelp = '_hlp';

// TMERView to itself: "Press" (int32: the number of the press it is about).
constexpr uint32 kLongPress = '_lpr';

} // namespace merion
