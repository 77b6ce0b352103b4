#pragma once

#include <string>

/*!	Opens the add-on's help in the browser: the page NAME.html of the folder "Help" beside the add-on where the chosen
	language's file is NAME.llt, else the English one. A box says so when it cannot. Thread: as merion::show_alert(). */
void show_help();

//! The page's path: the language's if it is there, else the English one's, there or not. `languageFile` is a bare name.
std::string help_page(const std::string& addOnPath, const std::string& languageFile);
