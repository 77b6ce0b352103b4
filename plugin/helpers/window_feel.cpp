#include "plugin/helpers/window_feel.h"

#include <Window.h>

#include "prefs/TPref.h"

void
set_proper_feel(BWindow* window)
{
	window->SetFeel(gPref->fStayOnTop ? B_FLOATING_ALL_WINDOW_FEEL : B_NORMAL_WINDOW_FEEL);
}
