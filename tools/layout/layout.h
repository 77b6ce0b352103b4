#pragma once

#include <istream>
#include <memory>
#include <stdexcept>
#include <string>

class BView;

//! Why a layout cannot be read: "LINE: what is wrong", the line counted from 1.
class LayoutError : public std::runtime_error {
public:
	LayoutError(int line, const std::string& fault)
		: std::runtime_error(std::to_string(line) + ": " + fault)
	{ }
};

/*!	Builds the view that the text describes, with all that is in it; resources/PrefView.layout tells the format. Throws
	LayoutError. The kits' application must exist. */
std::unique_ptr<BView> read_layout(std::istream& text);
