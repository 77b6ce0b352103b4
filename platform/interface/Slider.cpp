#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerSlider.h"

#include <Message.h>
#include <Slider.h>
#include <algorithm>

using namespace BPrivate;

BSlider::BSlider(BRect frame, const char* name, const char* label, BMessage* message,
	int32 minValue, int32 maxValue, thumb_style, uint32 resizingMode, uint32 flags)
	: BControl(frame, name, label, message, resizingMode, flags),
	  fMin(minValue),
	  fMax(maxValue),
	  fKeyIncrement(1),
	  fModification(NULL)
{
	auto connect = [](ServerSlider* slider, ProxySink* sink) { slider->SetSink(sink); };
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerSlider>(connect), [this](BMessage* event) { Moved(event); }));
	SetLabel(label);
	SetLimits(minValue, maxValue);
}

BSlider::~BSlider()
{
	delete fModification;
}

void
BSlider::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

void
BSlider::SetLabel(const char* label)
{
	BControl::SetLabel(label);
	// one without a label is at least told apart by its name
	const QString spoken = QString::fromUtf8(label != NULL && *label != 0 ? label : Name());
	ViewData::Of(this).proxy->Adjust<ServerSlider>(
		[text = QString::fromUtf8(label), spoken](ServerSlider& slider) {
			slider.SetLabel(text);
			slider.setAccessibleName(spoken);
		});
}

void
BSlider::SetValue(int32 value)
{
	value = std::max(fMin, std::min(value, fMax));
	BControl::SetValue(value);
	ViewData::Of(this).proxy->Set<ServerSlider>(
		[value](ServerSlider& slider) { slider.SetProgramValue(value); });
}

void
BSlider::SetLimits(int32 minValue, int32 maxValue)
{
	if (minValue > maxValue)
		return;
	fMin = minValue;
	fMax = maxValue;
	ViewData::Of(this).proxy->Adjust<ServerSlider>(
		[=](ServerSlider& slider) { slider.setRange(minValue, maxValue); });
	SetKeyIncrementValue(fKeyIncrement);
	SetValue(Value());
}

void
BSlider::GetLimits(int32* minValue, int32* maxValue) const
{
	if (minValue != NULL)
		*minValue = fMin;
	if (maxValue != NULL)
		*maxValue = fMax;
}

void
BSlider::SetModificationMessage(BMessage* message)
{
	if (message != fModification)
		delete fModification;
	fModification = message;
}

BMessage*
BSlider::ModificationMessage() const
{
	return fModification;
}

//! Page Up and Page Down go a tenth of the way.
void
BSlider::SetKeyIncrementValue(int32 value)
{
	fKeyIncrement = value;
	int64 page = std::max<int64>(value, (int64(fMax) - fMin) / 10);
	ViewData::Of(this).proxy->Adjust<ServerSlider>([=](ServerSlider& slider) {
		slider.setSingleStep(value);
		slider.setPageStep(page);
	});
}

int32
BSlider::KeyIncrementValue() const
{
	return fKeyIncrement;
}

void
BSlider::Moved(BMessage* event)
{
	SetValueNoUpdate(event->GetInt32("value", Value()));
	if (event->GetBool("moved", false) && fModification != NULL)
		InvokeNotify(fModification, B_CONTROL_MODIFIED);
	if (event->GetBool("done", false))
		Invoke();
}
