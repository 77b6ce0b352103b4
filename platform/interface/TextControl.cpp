#include "interface/FieldLabel.h"
#include "interface/TextInput.h"
#include "interface/ViewData.h"
#include "support/ArchiveFields.h"

#include <Message.h>
#include <TextControl.h>
#include <algorithm>
#include <math.h>

using namespace BPrivate;

_BTextInput_::_BTextInput_(BRect frame)
	: BTextView(frame, "_input_", B_FOLLOW_ALL, B_WILL_DRAW | B_NAVIGABLE)
{ }

_BTextInput_::_BTextInput_(BMessage* data) : BTextView(data, true) { }

BArchivable*
_BTextInput_::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BPrivate::_BTextInput_") ? new _BTextInput_(data) : NULL;
}

void
_BTextInput_::SetEnabled(bool enabled)
{
	ViewData::Of(this).proxy->Adjust<QWidget>(
		[enabled](QWidget& widget) { widget.setEnabled(enabled); });
}

BTextControl*
_BTextInput_::Control() const
{
	return dynamic_cast<BTextControl*>(Parent());
}

void
_BTextInput_::UserEdited()
{
	if (BTextControl* control = Control())
		control->Modified();
}

void
_BTextInput_::UserEntered()
{
	SelectAll();
	if (BTextControl* control = Control())
		control->Commit();
}

void
_BTextInput_::UserLeft()
{
	if (BTextControl* control = Control())
		control->Commit();
}

BTextControl::BTextControl(BRect frame, const char* name, const char* label,
	const char* initialText, BMessage* message, uint32 resizingMode, uint32 flags)
	: BControl(frame, name, label, message, resizingMode, flags),
	  fText(new _BTextInput_(Bounds())),
	  fModification(NULL),
	  fLabelAlignment(B_ALIGN_LEFT),
	  fDivider(FieldLabel::UsualDivider(frame, label))
{
	Init();
	SetText(initialText);
}

BTextControl::BTextControl(BMessage* data)
	: BControl(data),
	  fText(FieldLabel::ArchivedPart<_BTextInput_>(*this)),
	  fModification(archived_message(archive_or_empty(data), "_mod_msg")),
	  fDivider(archived_float(
		  archive_or_empty(data), "_divide", 0, FieldLabel::UsualDivider(Frame(), Label())))
{
	const BMessage& archive = archive_or_empty(data);
	if (fText == NULL)
		fText = new _BTextInput_(Bounds());
	fCommitted = fText->Text();
	Init();
	SetAlignment(alignment(archived_choice(archive, "_a_label", B_ALIGN_CENTER, B_ALIGN_LEFT)),
		alignment(archived_choice(archive, "_a_text", B_ALIGN_CENTER, fText->Alignment())));
	SetEnabled(IsEnabled());
}

BArchivable*
BTextControl::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BTextControl") ? new BTextControl(data) : NULL;
}

status_t
BTextControl::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BControl::Archive(data, deep));
	writer.Int32("_a_label", fLabelAlignment);
	writer.Int32("_a_text", fText->Alignment());
	writer.Float("_divide", fDivider);
	writer.Message("_mod_msg", fModification);
	return writer.Status();
}

BTextControl::~BTextControl()
{
	delete fModification;
}

void
BTextControl::Init()
{
	FieldLabel::Init(*this, fText);
	SetDivider(fDivider);
	SetLabel(Label());
}

//! Whoever is told may well be there still.
void
BTextControl::DetachedFromWindow()
{
	Commit();
	BControl::DetachedFromWindow();
}

void
BTextControl::MakeFocus(bool focus)
{
	fText->MakeFocus(focus);
}

void
BTextControl::GetPreferredSize(float* width, float* height)
{
	FieldLabel::GetPreferredSize(*this, *fText, Label(), width, height);
	if (width != NULL && FieldLabel::Width(*this, Label()) == 0)
		*width = std::max(*width, Bounds().Width());
}

void
BTextControl::ResizeToPreferred()
{
	BControl::ResizeToPreferred();
	SetDivider(FieldLabel::Width(*this, Label()));
}

void
BTextControl::SetLabel(const char* label)
{
	BControl::SetLabel(label);
	FieldLabel::SetLabel(*this, *fText, Label());
}

void
BTextControl::SetEnabled(bool enabled)
{
	BControl::SetEnabled(enabled);
	fText->SetEnabled(enabled);
}

void
BTextControl::SetText(const char* text)
{
	fText->SetText(text);
	fCommitted = fText->Text();
}

const char*
BTextControl::Text() const
{
	return fText->Text();
}

int32
BTextControl::TextLength() const
{
	return fText->TextLength();
}

void
BTextControl::SetModificationMessage(BMessage* message)
{
	if (message != fModification)
		delete fModification;
	fModification = message;
}

BMessage*
BTextControl::ModificationMessage() const
{
	return fModification;
}

void
BTextControl::SetAlignment(alignment forLabel, alignment forText)
{
	fLabelAlignment = forLabel;
	FieldLabel::SetAlignment(*this, forLabel);
	fText->SetAlignment(forText);
}

void
BTextControl::GetAlignment(alignment* forLabel, alignment* forText) const
{
	if (forLabel != NULL)
		*forLabel = fLabelAlignment;
	if (forText != NULL)
		*forText = fText->Alignment();
}

void
BTextControl::SetDivider(float divider)
{
	fDivider = roundf(divider);
	FieldLabel::Place(*this, *fText, fDivider);
}

float
BTextControl::Divider() const
{
	return fDivider;
}

BTextView*
BTextControl::TextView() const
{
	return fText;
}

void
BTextControl::Modified()
{
	if (fModification != NULL)
		InvokeNotify(fModification, B_CONTROL_MODIFIED);
}

//! Once for each text.
void
BTextControl::Commit()
{
	if (fCommitted == fText->Text())
		return;
	fCommitted = fText->Text();
	Invoke();
}
