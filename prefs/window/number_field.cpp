#include "prefs/window/number_field.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

#include <TextControl.h>

namespace {

constexpr size_t kNumberRoom = 64; // more than any float's digits

// One that is too small rather than too large has a negative exponent.
float
out_of_range(std::string_view number, float)
{
	if (number.find("e-") != std::string_view::npos || number.find("E-") != std::string_view::npos)
		return 0;
	const float largest = std::numeric_limits<float>::max();
	return number.starts_with('-') ? -largest : largest;
}

int32
out_of_range(std::string_view number, int32)
{
	using Limits = std::numeric_limits<int32>;
	return number.starts_with('-') ? Limits::min() : Limits::max();
}

template<typename Number>
Number
parse_number(std::string_view text)
{
	text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
	if (text.starts_with('+') && !text.starts_with("+-"))
		text.remove_prefix(1);
	Number number = 0;
	const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
	if (error == std::errc::result_out_of_range)
		return out_of_range(text.substr(0, stop - text.data()), Number());
	// the words for what is no number can be read, too
	return error == std::errc() && std::isfinite(float(number)) ? number : 0;
}

template<typename Number>
std::string
text_of(Number number)
{
	char text[kNumberRoom];
	return std::string(text, std::to_chars(text, text + sizeof(text), number).ptr);
}

} // namespace

float
txt_ctrl_float(const BTextControl* control)
{
	return parse_number<float>(control->Text());
}

int32
txt_ctrl_int32(const BTextControl* control)
{
	return parse_number<int32>(control->Text());
}

std::string
number_text(float number)
{
	return text_of(number);
}

std::string
number_text(int32 number)
{
	return text_of(number);
}

void
SetTxtCtrlNum(BTextControl* control, float number)
{
	control->SetText(number_text(number).c_str());
}

void
SetTxtCtrlNum(BTextControl* control, int32 number)
{
	control->SetText(number_text(number).c_str());
}
