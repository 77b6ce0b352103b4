#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerColorControl.h"

#include <ColorControl.h>
#include <Message.h>

using namespace BPrivate;

static constexpr int32 kCells = 256;
static constexpr uint32 kColorMask = 0xffffff00;

static bool
is_layout(int32 columns)
{
	return columns == B_CELLS_4x64 || columns == B_CELLS_8x32 || columns == B_CELLS_16x16
		|| columns == B_CELLS_32x8 || columns == B_CELLS_64x4;
}

BColorControl::BColorControl(BPoint leftTop, color_control_layout layout, float cellSize,
	const char* name, BMessage* message, bool)
	: BControl(
		BRect(leftTop, leftTop), name, NULL, message, B_FOLLOW_LEFT_TOP, B_NAVIGABLE | B_WILL_DRAW),
	  fLayout(is_layout(layout) ? layout : B_CELLS_32x8),
	  fCellSize(cellSize > 0 ? cellSize : 1)
{
	auto connect = [](ServerColorControl* control, ProxySink* sink) { control->SetSink(sink); };
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerColorControl>(connect), [this](BMessage* event) {
			SetValueNoUpdate(event->GetInt32("value", Value()));
			Invoke();
		}));
	TellCells();
}

BColorControl::~BColorControl() = default;

void
BColorControl::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

void
BColorControl::SetValue(int32 color)
{
	color = int32(uint32(color) & kColorMask);
	BControl::SetValue(color);
	ViewData::Of(this).proxy->Set<ServerColorControl>(
		[color](ServerColorControl& control) { control.SetColor(uint32(color)); });
}

rgb_color
BColorControl::ValueAsColor()
{
	const uint32 value = uint32(Value());
	return make_color(value >> 24, value >> 16 & 0xff, value >> 8 & 0xff);
}

void
BColorControl::SetLayout(color_control_layout layout)
{
	if (!is_layout(layout))
		return;
	fLayout = layout;
	TellCells();
}

color_control_layout
BColorControl::Layout() const
{
	return fLayout;
}

void
BColorControl::SetCellSize(float size)
{
	if (!(size > 0))
		return;
	fCellSize = size;
	TellCells();
}

float
BColorControl::CellSize() const
{
	return fCellSize;
}

void
BColorControl::TellCells()
{
	const int32 columns = fLayout;
	const QSizeF cells(columns * fCellSize, kCells / columns * fCellSize);
	const QSize ramps = cells.boundedTo(QSizeF(WindowData::kMost, WindowData::kMost)).toSize();
	ViewData::Of(this).proxy->Adjust<ServerColorControl>(
		[ramps](ServerColorControl& control) { control.SetRampSize(ramps); });
	ResizeToPreferred();
}
