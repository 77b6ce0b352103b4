#include "interface/ViewData.h"

#include "support/ArchiveFields.h"

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

BControl::BControl(BMessage* data)
	: BView(data),
	  BInvoker(archived_message(archive_or_empty(data), "_msg"), BMessenger()),
	  fLabel(NULL)
{
	const BMessage& archive = archive_or_empty(data);
	BControl::SetLabel(archive.GetString("_label"));
	fValue = archive.GetInt32("_val", B_CONTROL_OFF);
	fEnabled = !archive.GetBool("_disable", false);
}

BArchivable*
BControl::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BControl") ? new BControl(data) : NULL;
}

status_t
BControl::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BView::Archive(data, deep));
	writer.Message("_msg", Message());
	writer.String("_label", fLabel);
	if (fValue != B_CONTROL_OFF)
		writer.Int32("_val", fValue);
	writer.True("_disable", !fEnabled);
	return writer.Status();
}

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
