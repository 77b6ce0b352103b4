#pragma once

class BWindow;

//! Lets the window float above all others when the preferences say so. Thread: with the window locked.
void set_proper_feel(BWindow* window);
