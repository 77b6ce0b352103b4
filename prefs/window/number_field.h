#pragma once

#include <string>

#include <SupportDefs.h>

class BTextControl;

//! The numbers of text controls, always written as in C, whatever the user's locale. Thread: the window's.

//! The value raised to `min`, then lowered to `max`.
template<typename Number>
Number
AdjustValue(Number value, Number min, Number max)
{
	if (value < min)
		value = min;
	if (value > max)
		value = max;
	return value;
}

/*!	The number that the control's text begins with, after blanks and a sign; 0 when it begins with none. One that is too
	large for its type is the largest of that type. */
float txt_ctrl_float(const BTextControl* control);
int32 txt_ctrl_int32(const BTextControl* control);

//! As short as it can be read back.
std::string number_text(float number);
std::string number_text(int32 number);

void SetTxtCtrlNum(BTextControl* control, float number);
void SetTxtCtrlNum(BTextControl* control, int32 number);
