#include "interface/ViewData.h"
#include "interface/WidgetText.h"

#include <CheckBox.h>
#include <QCheckBox>

using namespace BPrivate;

BCheckBox::BCheckBox(BRect frame, const char* name, const char* label, BMessage* message,
	uint32 resizingMode, uint32 flags)
	: BControl(frame, name, label, message, resizingMode, flags)
{
	Init();
}

BCheckBox::BCheckBox(BMessage* data) : BControl(data)
{
	Init();
	SetValue(Value());
	SetEnabled(IsEnabled());
}

BArchivable*
BCheckBox::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BCheckBox") ? new BCheckBox(data) : NULL;
}

status_t
BCheckBox::Archive(BMessage* data, bool deep) const
{
	return BControl::Archive(data, deep);
}

void
BCheckBox::Init()
{
	auto connect = [](QCheckBox* box, ProxySink* sink) {
		QObject::connect(box, &QCheckBox::toggled, sink, [sink](bool checked) {
			BMessage event;
			event.AddInt32("value", checked ? B_CONTROL_ON : B_CONTROL_OFF);
			sink->Send(std::move(event));
		});
	};
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<QCheckBox>(connect), [this](BMessage* event) {
			SetValueNoUpdate(event->GetInt32("value", B_CONTROL_OFF));
			Invoke();
		}));
	SetLabel(Label());
}

void
BCheckBox::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

void
BCheckBox::SetLabel(const char* label)
{
	BControl::SetLabel(label);
	ViewData::Of(this).proxy->Adjust<QCheckBox>(
		[text = widget_text(Label())](QCheckBox& box) { box.setText(text); });
}

void
BCheckBox::SetValue(int32 value)
{
	value = value != 0 ? B_CONTROL_ON : B_CONTROL_OFF;
	BControl::SetValue(value);
	ViewData::Of(this).proxy->Set<QCheckBox>([value](QCheckBox& box) { box.setChecked(value); });
}
