#pragma once

#include <string>

//! The full path of the add-on's own file: the first loaded image whose path contains "gen_TavoraD", empty without one.
std::string tavora_displayer_fname();
