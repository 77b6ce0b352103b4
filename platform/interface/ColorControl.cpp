#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerColorControl.h"
#include "support/ArchiveFields.h"

#include <ColorControl.h>
#include <Message.h>
#include <TextControl.h>
#include <algorithm>
#include <string>

using namespace BPrivate;

static constexpr int32 kCells = 256;
static constexpr uint32 kColorMask = 0xffffff00;

// Of the platform's own control, which has its numbers in text controls.
static constexpr uint32 kNumberEntered = 'ccol';
static constexpr struct {
	const char* name;
	const char* label;
	int shift;
} kNumbers[] = {{"_red", "Red:", 24}, {"_green", "Green:", 16}, {"_blue", "Blue:", 8}};
static constexpr float kNumberWidth = 80;
static constexpr float kNumberHeight = 20;

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
	Init();
}

static bool
is_number(const BView* child)
{
	const std::string name = child->Name() != NULL ? child->Name() : "";
	return std::any_of(std::begin(kNumbers), std::end(kNumbers),
		[&](const auto& number) { return name == number.name; });
}

static color_control_layout
archived_layout(const BMessage& archive)
{
	const int32 columns = archive.GetInt32("_layout", B_CELLS_32x8);
	return is_layout(columns) ? color_control_layout(columns) : B_CELLS_32x8;
}

BColorControl::BColorControl(BMessage* data)
	: BControl(data),
	  fLayout(archived_layout(archive_or_empty(data))),
	  fCellSize(archived_float(archive_or_empty(data), "_csize", 0, 1))
{
	if (fCellSize <= 0)
		fCellSize = 1;
	for (int32 i = CountChildren() - 1; i >= 0; i--) {
		BView* child = ChildAt(i);
		if (is_number(child) && RemoveChild(child))
			delete child;
	}
	Init();
	SetValue(Value());
	SetEnabled(IsEnabled());
}

BArchivable*
BColorControl::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BColorControl") ? new BColorControl(data) : NULL;
}

status_t
BColorControl::Archive(BMessage* data, bool deep) const
{
	// the numbers are children for that long
	std::vector<BView*>& children = ViewData::Of(this).children;
	const std::vector<BView*> own = children;
	const auto numbers = deep ? NumberFields() : std::vector<std::unique_ptr<BView>>();
	for (size_t i = 0; i < numbers.size(); i++)
		children.insert(children.begin() + i, numbers[i].get());
	ArchiveWriter writer(data, BControl::Archive(data, deep));
	children = own;
	writer.Int32("_layout", fLayout);
	writer.Float("_csize", fCellSize);
	writer.Bool("_use_off", false);
	return writer.Status();
}

//! In a column, until the platform's control puts them where it wants them.
std::vector<std::unique_ptr<BView>>
BColorControl::NumberFields() const
{
	std::vector<std::unique_ptr<BView>> fields;
	BRect frame(0, 0, kNumberWidth - 1, kNumberHeight - 1);
	for (const auto& number : kNumbers) {
		const std::string text = std::to_string(uint32(Value()) >> number.shift & 0xff);
		fields.push_back(std::make_unique<BTextControl>(
			frame, number.name, number.label, text.c_str(), new BMessage(kNumberEntered)));
		frame.OffsetBy(0, kNumberHeight);
	}
	return fields;
}

void
BColorControl::Init()
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
