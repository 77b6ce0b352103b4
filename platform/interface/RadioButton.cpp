#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerRadio.h"

#include <RadioButton.h>
#include <Window.h>

using namespace BPrivate;

BRadioButton::BRadioButton(BRect frame, const char* name, const char* label, BMessage* message,
	uint32 resizingMode, uint32 flags)
	: BControl(frame, name, label, message, resizingMode, flags)
{
	Init();
}

BRadioButton::BRadioButton(BMessage* data) : BControl(data)
{
	Init();
	SetValue(Value());
	SetEnabled(IsEnabled());
}

BArchivable*
BRadioButton::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BRadioButton") ? new BRadioButton(data) : NULL;
}

status_t
BRadioButton::Archive(BMessage* data, bool deep) const
{
	return BControl::Archive(data, deep);
}

void
BRadioButton::Init()
{
	auto connect = [](ServerRadio* radio, ProxySink* sink) {
		QObject::connect(radio, &QRadioButton::clicked, sink, [sink] { sink->Send(BMessage()); });
	};
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerRadio>(connect), [this](BMessage*) { Chosen(); }));
	SetLabel(Label());
}

//! The widgets of all windows' parents are one another's siblings: the parent's address tells them apart.
void
BRadioButton::AttachedToWindow()
{
	BControl::AttachedToWindow();
	ViewData::Of(this).proxy->Adjust<ServerRadio>(
		[group = reinterpret_cast<uintptr_t>(ViewData::Of(this).parent)](
			ServerRadio& radio) { radio.SetGroup(group); });
}

void
BRadioButton::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

void
BRadioButton::SetLabel(const char* label)
{
	BControl::SetLabel(label);
	ViewData::Of(this).proxy->Adjust<ServerRadio>(
		[text = widget_text(Label())](ServerRadio& radio) { radio.setText(text); });
}

template<typename Function>
void
BRadioButton::WithSiblings(Function function)
{
	const BView* parent = ViewData::Of(this).parent;
	for (int32 i = 0; parent != NULL && i < parent->CountChildren(); i++) {
		auto* sibling = dynamic_cast<BRadioButton*>(parent->ChildAt(i));
		if (sibling != NULL && sibling != this)
			function(*sibling);
	}
}

void
BRadioButton::SetValue(int32 value)
{
	value = value != 0 ? B_CONTROL_ON : B_CONTROL_OFF;
	BControl::SetValue(value);
	ViewData::Of(this).proxy->Set<ServerRadio>(
		[value](ServerRadio& radio) { radio.SetOn(value == B_CONTROL_ON); });
	if (value == B_CONTROL_ON)
		WithSiblings([](BRadioButton& sibling) { sibling.SetValue(B_CONTROL_OFF); });
}

//! By the user: the widgets know it already.
void
BRadioButton::Chosen()
{
	SetValueNoUpdate(B_CONTROL_ON);
	WithSiblings([](BRadioButton& sibling) { sibling.SetValueNoUpdate(B_CONTROL_OFF); });
	Invoke();
}
