#pragma once

#include <string>

#include "framework/TLLT.h"

constexpr const char* kLanguages[]
	= {"English", "Japanese", "German", "French", "Spanish", "SimplifiedChinese"};

//! Loads one of the shipped languages into gLLT.
[[nodiscard]] inline bool
load_shipped_language(const std::string& name)
{
	if (gLLT == nullptr)
		gLLT = new merion::TLLT;
	const std::string path = std::string(TEST_DATA "/../../Language/") + name + ".llt";
	return gLLT->Load(path.c_str()) == B_OK;
}
