#include "lyrics_view.h"

#include <Application.h>
#include <Message.h>

namespace {

constexpr const char* kViewName = "TavoraDisplayerView";
constexpr bigtime_t kAnswerTime = 1000000; // a window that is busy for longer is asked again

//! The scripting request `request` to the view of that name in one of the windows.
bool
ask_view(BMessage& request, int32 window, BMessage& reply)
{
	request.AddSpecifier("View", kViewName);
	request.AddSpecifier("Window", window);
	return be_app_messenger.SendMessage(&request, &reply, kAnswerTime, kAnswerTime) == B_OK
		&& reply.what == B_REPLY;
}

int32
count_windows()
{
	BMessage request(B_COUNT_PROPERTIES);
	BMessage reply;
	int32 count;
	request.AddSpecifier("Window");
	if (be_app_messenger.SendMessage(&request, &reply, kAnswerTime, kAnswerTime) != B_OK
		|| reply.FindInt32("result", &count) != B_OK)
		return 0;
	return count;
}

} // namespace

bool
find_lyrics_view(BMessenger& view)
{
	int32 count = count_windows();
	for (int32 i = 0; i < count; i++) {
		BMessage request(B_GET_PROPERTY);
		BMessage reply;
		request.AddSpecifier("Messenger");
		if (ask_view(request, i, reply) && reply.FindMessenger("result", &view) == B_OK)
			return true;
	}
	return false;
}

bool
get_property(const BMessenger& view, const char* property, BMessage& reply)
{
	BMessage request(B_GET_PROPERTY);
	request.AddSpecifier(property);
	return view.SendMessage(&request, &reply, kAnswerTime, kAnswerTime) == B_OK
		&& reply.what == B_REPLY;
}
