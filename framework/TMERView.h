#pragma once

#include <memory>

#include <View.h>

class BMessageRunner;

namespace merion {

/*!	Base of the maker's views. It tells what the user does with the mouse apart and calls a hook for it, at the system's
	own speed of clicks (get_click_speed()):
	- Clicked(): pressed and released at one place. A hand that trembles still clicks.
	- DoubleClicked(): pressed again soon after a click; instead of a second Clicked().
	- LongPressed(): held at one place for twice the time of a double click; no Clicked() follows.
	- DragStarted(), Dragged()..., DragEnded(): moved while pressed.
	`where` is in the view's coordinates, `buttons` the button that was pressed, `modifiers` those held at the press. While a
	second button is down nothing is told. The hooks do nothing here; they may close the window.
	Thread and owner: as every view. A derived class that takes the mouse's own hooks calls the base's. */
class TMERView : public BView {
public:
	TMERView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);
	//! From an archive, with the views in it.
	explicit TMERView(BMessage* archive);
	~TMERView() override;

	void DetachedFromWindow() override;
	void MouseDown(BPoint where) override;
	void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) override;
	void MouseUp(BPoint where) override;
	void MessageReceived(BMessage* message) override;

	virtual void Clicked(BPoint where, uint32 buttons, uint32 modifiers);
	virtual void DoubleClicked(BPoint where, uint32 buttons, uint32 modifiers);
	virtual void LongPressed(BPoint where, uint32 buttons, uint32 modifiers);
	//! `where` the button was pressed.
	virtual void DragStarted(BPoint where, uint32 buttons, uint32 modifiers);
	virtual void Dragged(BPoint where);
	virtual void DragEnded(BPoint where);

private:
	enum class State { kIdle, kPressed, kHeld, kDragging, kIgnored };

	struct Press {
		BPoint where;
		uint32 buttons = 0;
		uint32 modifiers = 0;
		bigtime_t when = 0;

		bool IsRepeatOf(const Press& earlier, bigtime_t clickSpeed) const;
	};

	void StartLongPress();
	void LongPressDue(BMessage* message);
	void StartDrag();

	State fState = State::kIdle;
	Press fPress;
	bool fHasClicked = false; // the press before was a click, which another one may double
	int32 fPressNumber = 0;
	std::unique_ptr<BMessageRunner> fLongPress;
};

} // namespace merion
