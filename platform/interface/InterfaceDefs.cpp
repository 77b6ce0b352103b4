#include "server/Desktop.h"
#include "server/ServerLink.h"

#include <InterfaceDefs.h>
#include <atomic>

using namespace BPrivate;

static std::atomic<uint32> sLastModifiers = 0;

uint32
modifiers()
{
	if (auto current = ServerLink::Default().Call([] { return Desktop::Modifiers(); }))
		sLastModifiers = *current;
	return sLastModifiers;
}

rgb_color
ui_color(color_which which)
{
	const DesktopInfo desktop = desktop_info();
	for (const auto& [color, value] : desktop.colors) {
		if (color == which)
			return value;
	}
	return make_color(0, 0, 0);
}

status_t
get_mouse(BPoint* screenWhere, uint32* buttons)
{
	const auto answer = ServerLink::Default().Call([] { return Desktop::Pointer(); });
	// a BView has no way to tell that there is no server any more: nothing is held down then
	const PointerState pointer = answer.value_or(PointerState());
	if (screenWhere != NULL)
		*screenWhere = BPoint(pointer.where.x(), pointer.where.y());
	if (buttons != NULL)
		*buttons = pointer.buttons;
	return answer ? B_OK : B_ERROR;
}

status_t
get_click_speed(bigtime_t* speed)
{
	if (speed == NULL)
		return B_BAD_VALUE;
	*speed = desktop_info().clickSpeed;
	return B_OK;
}
