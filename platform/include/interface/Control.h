#pragma once

#include <Invoker.h>
#include <View.h>

namespace BPrivate {
class WidgetProxy;
}

enum { B_CONTROL_OFF = 0, B_CONTROL_ON = 1, B_CONTROL_PARTIALLY_ON = 2 };

/*!	The base of the standard controls: a label, a value, enabled or not, and a message that Invoke()
	sends.
	The controls are the desktop's own, so they draw themselves and take the mouse and the keys
	themselves; Draw(), MouseDown() and KeyDown() of one that is such a control are not called.
	Value(), Label() and IsEnabled() never wait. */
class BControl : public BView, public BInvoker {
public:
	//! Owns `message`, which may be NULL.
	BControl(BRect frame, const char* name, const char* label, BMessage* message,
		uint32 resizingMode, uint32 flags);
	explicit BControl(BMessage* data);
	~BControl() override;

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	void AttachedToWindow() override;
	void MakeFocus(bool focus = true) override;
	/*!	Sends a copy of `message`, or of the control's own for NULL, with "when" (int64), "source"
		(pointer) and "be:value" (int32). B_BAD_VALUE when there is neither. */
	status_t Invoke(BMessage* message = NULL) override;
	virtual void SetLabel(const char* label);
	virtual void SetValue(int32 value);
	virtual void SetEnabled(bool enabled);

	//! NULL if it has none.
	const char* Label() const;
	int32 Value() const;
	bool IsEnabled() const;

protected:
	/*!	Changes the value without telling the control on the screen, because that is where it came
		from. */
	void SetValueNoUpdate(int32 value);

private:
	char* fLabel;
	int32 fValue;
	bool fEnabled;
};
