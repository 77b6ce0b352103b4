#pragma once

//! What the add-on says of itself.
extern const char* const gAppName;      // shown to the user
extern const char* const gAppSignature; // names the add-on towards the maker's other applications
extern const char* const gAppVer;       // version text, from the build
extern const char* const
	gAuthorWebURL; // the maker's web page, from the build; empty: there is none
