#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "support/ArchiveFields.h"

#include <Button.h>
#include <QPushButton>

using namespace BPrivate;

BButton::BButton(BRect frame, const char* name, const char* label, BMessage* message,
	uint32 resizingMode, uint32 flags)
	: BControl(frame, name, label, message, resizingMode, flags),
	  fDefault(false)
{
	Init();
}

BButton::BButton(BMessage* data)
	: BControl(data),
	  fDefault(archive_or_empty(data).GetBool("_default", false))
{
	Init();
	SetEnabled(IsEnabled());
}

BArchivable*
BButton::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BButton") ? new BButton(data) : NULL;
}

status_t
BButton::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BControl::Archive(data, deep));
	writer.True("_default", fDefault);
	return writer.Status();
}

void
BButton::Init()
{
	auto connect = [](QPushButton* button, ProxySink* sink) {
		QObject::connect(button, &QPushButton::clicked, sink, [sink] { sink->Send(BMessage()); });
	};
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<QPushButton>(connect), [this](BMessage*) { Clicked(); }));
	SetLabel(Label());
}

void
BButton::AttachedToWindow()
{
	BControl::AttachedToWindow();
	MakeDefault(fDefault);
}

void
BButton::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

void
BButton::SetLabel(const char* label)
{
	BControl::SetLabel(label);
	ViewData::Of(this).proxy->Adjust<QPushButton>(
		[text = widget_text(Label())](QPushButton& button) { button.setText(text); });
}

//! A window has one default button.
static void
end_other_defaults(BView* tree, const BButton* but)
{
	auto* button = dynamic_cast<BButton*>(tree);
	if (button != NULL && button != but && button->IsDefault())
		button->MakeDefault(false);
	for (int32 i = 0; BView* child = tree->ChildAt(i); i++)
		end_other_defaults(child, but);
}

void
BButton::MakeDefault(bool makeDefault)
{
	fDefault = makeDefault;
	if (makeDefault && Window() != NULL)
		end_other_defaults(WindowData::Of(Window()).root, this);
	ViewData::Of(this).proxy->Adjust<QPushButton>(
		[makeDefault](QPushButton& button) { button.setDefault(makeDefault); });
}

//! Its value is on only for those who hear of it.
void
BButton::Clicked()
{
	SetValueNoUpdate(B_CONTROL_ON);
	Invoke();
	SetValueNoUpdate(B_CONTROL_OFF);
}
