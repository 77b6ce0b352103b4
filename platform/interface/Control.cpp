#include "interface/ViewData.h"

#include <Control.h>
#include <Message.h>
#include <Window.h>
#include <stdlib.h>
#include <string.h>

using namespace BPrivate;

BControl::BControl(BRect frame, const char* name, const char* label, BMessage* message,
	uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  BInvoker(message, BMessenger()),
	  fLabel(label != NULL ? strdup(label) : NULL),
	  fValue(B_CONTROL_OFF),
	  fEnabled(true)
{ }

BControl::~BControl()
{
	free(fLabel);
}

//! Without a target of its own, a control's messages go to its window.
void
BControl::AttachedToWindow()
{
	if (!Messenger().IsValid())
		SetTarget(Window());
}

void
BControl::MakeFocus(bool focus)
{
	BView::MakeFocus(focus);
}

status_t
BControl::Invoke(BMessage* message)
{
	if (message == NULL)
		message = Message();
	if (message == NULL)
		return B_BAD_VALUE;
	BMessage copy(*message);
	copy.AddInt32("be:value", fValue);
	return BInvoker::Invoke(&copy);
}

void
BControl::SetLabel(const char* label)
{
	char* copy = label != NULL ? strdup(label) : NULL;
	free(fLabel);
	fLabel = copy;
}

void
BControl::SetValue(int32 value)
{
	fValue = value;
}

void
BControl::SetValueNoUpdate(int32 value)
{
	fValue = value;
}

void
BControl::SetEnabled(bool enabled)
{
	fEnabled = enabled;
	if (WidgetProxy* proxy = ViewData::Of(this).proxy.get())
		proxy->Adjust<QWidget>([enabled](QWidget& widget) { widget.setEnabled(enabled); });
}

const char*
BControl::Label() const
{
	return fLabel;
}

int32
BControl::Value() const
{
	return fValue;
}

bool
BControl::IsEnabled() const
{
	return fEnabled;
}
