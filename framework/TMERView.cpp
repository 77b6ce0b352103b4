#include "framework/TMERView.h"

#include <cmath>

#include <AppDefs.h>
#include <Looper.h>
#include <Message.h>
#include <MessageRunner.h>
#include <Messenger.h>

#include "framework/framework_codes.h"

namespace merion {

namespace {

constexpr float kDragDistance = 4; // pixels that a hand may tremble
constexpr bigtime_t kDefaultClickSpeed = 500000;
constexpr int32 kLongPressClicks = 2; // a long press, in times of a double click

bigtime_t
click_speed()
{
	bigtime_t speed;
	return get_click_speed(&speed) == B_OK && speed > 0 ? speed : kDefaultClickSpeed;
}

bool
is_near(BPoint a, BPoint b)
{
	return std::fabs(a.x - b.x) <= kDragDistance && std::fabs(a.y - b.y) <= kDragDistance;
}

uint32
int32_of(const BMessage* message, const char* name)
{
	int32 value;
	return message != nullptr && message->FindInt32(name, &value) == B_OK ? value : 0;
}

// When the user did it, not when we come to look at it.
bigtime_t
time_of(const BMessage* message)
{
	int64 when;
	return message != nullptr && message->FindInt64("when", &when) == B_OK ? when : system_time();
}

bool
is_one_button(uint32 buttons)
{
	return buttons != 0 && (buttons & (buttons - 1)) == 0;
}

} // namespace

bool
TMERView::Press::IsRepeatOf(const Press& earlier, bigtime_t clickSpeed) const
{
	return buttons == earlier.buttons && when - earlier.when <= clickSpeed
		&& is_near(where, earlier.where);
}

TMERView::TMERView(BRect frame, const char* name, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags)
{ }

TMERView::TMERView(BMessage* archive) : BView(archive) { }

TMERView::~TMERView() = default;

void
TMERView::DetachedFromWindow()
{
	fLongPress.reset();
	fState = State::kIdle;
	fHasClicked = false;
	BView::DetachedFromWindow();
}

void
TMERView::MouseDown(BPoint where)
{
	const BMessage* message = Looper()->CurrentMessage();
	const Press press{
		where, int32_of(message, "buttons"), int32_of(message, "modifiers"), time_of(message)};
	const bool isDouble = fHasClicked && press.IsRepeatOf(fPress, click_speed());
	fLongPress.reset();
	fHasClicked = false;
	if (fState == State::kDragging)
		DragEnded(where);
	if (!is_one_button(press.buttons)) {
		fState = State::kIgnored;
		return;
	}
	fPress = press;
	SetMouseEventMask(B_POINTER_EVENTS, B_LOCK_WINDOW_FOCUS);
	if (isDouble) {
		fState = State::kIgnored;
		DoubleClicked(where, press.buttons, press.modifiers);
		return;
	}
	fState = State::kPressed;
	StartLongPress();
}

void
TMERView::MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage)
{
	BView::MouseMoved(where, transit, dragMessage);
	if (fState == State::kDragging)
		Dragged(where);
	else if ((fState == State::kPressed || fState == State::kHeld) && !is_near(where, fPress.where))
		StartDrag();
}

void
TMERView::MouseUp(BPoint where)
{
	fLongPress.reset();
	const bool isReleased = int32_of(Looper()->CurrentMessage(), "buttons") == 0;
	// A quick hand may have been released before a movement was told.
	if ((fState == State::kPressed || fState == State::kHeld) && !is_near(where, fPress.where))
		StartDrag();
	const State state = fState;
	fState = isReleased ? State::kIdle : State::kIgnored;
	fHasClicked = state == State::kPressed;
	if (state == State::kDragging)
		DragEnded(where);
	else if (state == State::kPressed)
		Clicked(where, fPress.buttons, fPress.modifiers);
}

void
TMERView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kLongPress:
			LongPressDue(message);
			break;
		default:
			BView::MessageReceived(message);
	}
}

void
TMERView::StartLongPress()
{
	BMessage message(kLongPress);
	message.AddInt32("Press", ++fPressNumber);
	fLongPress = std::make_unique<BMessageRunner>(
		BMessenger(this), &message, kLongPressClicks * click_speed(), 1);
}

void
TMERView::LongPressDue(BMessage* message)
{
	if (fState != State::kPressed || int32(int32_of(message, "Press")) != fPressNumber)
		return;
	// On a busy looper the release may still be waiting behind this message.
	BPoint where;
	uint32 buttons;
	GetMouse(&where, &buttons, false);
	if (buttons != fPress.buttons)
		return;
	fState = State::kHeld;
	LongPressed(fPress.where, fPress.buttons, fPress.modifiers);
}

void
TMERView::StartDrag()
{
	fLongPress.reset();
	fState = State::kDragging;
	DragStarted(fPress.where, fPress.buttons, fPress.modifiers);
}

void
TMERView::Clicked(BPoint, uint32, uint32)
{ }

void
TMERView::DoubleClicked(BPoint, uint32, uint32)
{ }

void
TMERView::LongPressed(BPoint, uint32, uint32)
{ }

void
TMERView::DragStarted(BPoint, uint32, uint32)
{ }

void
TMERView::Dragged(BPoint)
{ }

void
TMERView::DragEnded(BPoint)
{ }

} // namespace merion
