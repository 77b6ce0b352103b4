#include "interface/FieldLabel.h"

#include "interface/ViewData.h"
#include "server/ServerFieldLabel.h"

#include "interface/WidgetText.h"
#include <algorithm>

namespace BPrivate {

static constexpr float kLabelRoom = 8; // between a label and what it labels

static bool
is_empty(const char* label)
{
	return label == NULL || *label == 0;
}

template<typename Function>
static void
adjust_label(BView& field, Function change)
{
	ViewData::Of(&field).proxy->Adjust<ServerFieldLabel>(change);
}

void
FieldLabel::Init(BView& field, BView* part)
{
	ViewData::Of(&field).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerFieldLabel>([](ServerFieldLabel*, ProxySink*) {}),
		[](BMessage*) {}));
	SetAlignment(field, B_ALIGN_LEFT);
	if (part->Parent() == NULL)
		field.AddChild(part);
	adjust_label(field, [id = ViewData::Of(part).proxy->Id()](ServerFieldLabel& widget) {
		widget.SetPart(Registry::Default().Find(id));
	});
}

float
FieldLabel::UsualDivider(BRect frame, const char* label)
{
	return is_empty(label) ? 0 : floorf(frame.Width() / 2);
}

void
FieldLabel::Place(BView& field, BView& part, float divider)
{
	const BRect bounds = field.Bounds();
	part.MoveTo(divider, 0);
	part.ResizeTo(std::max(bounds.Width() - divider, 0.0f), bounds.Height());
	adjust_label(field, [divider](ServerFieldLabel& widget) { widget.SetDivider(divider); });
}

void
FieldLabel::SetLabel(BView& field, BView& part, const char* label)
{
	adjust_label(field,
		[text = QString::fromUtf8(label)](ServerFieldLabel& widget) { widget.SetLabel(text); });
	const QString spoken = QString::fromUtf8(is_empty(label) ? field.Name() : label);
	ViewData::Of(&part).proxy->Adjust<QWidget>(
		[spoken](QWidget& widget) { widget.setAccessibleName(spoken); });
}

void
FieldLabel::SetAlignment(BView& field, alignment side)
{
	adjust_label(field, [side = to_side(side)](ServerFieldLabel& widget) {
		widget.setAlignment(side | Qt::AlignVCenter);
	});
}

void
FieldLabel::SetEnabled(BView& field, bool enabled)
{
	adjust_label(field, [enabled](ServerFieldLabel& widget) { widget.setEnabled(enabled); });
}

float
FieldLabel::Width(const BView& field, const char* label)
{
	return is_empty(label) ? 0 : ceilf(field.StringWidth(label)) + kLabelRoom;
}

void
FieldLabel::GetPreferredSize(
	BView& field, BView& part, const char* label, float* width, float* height)
{
	float partWidth;
	float partHeight;
	part.GetPreferredSize(&partWidth, &partHeight);
	font_height font;
	field.GetFontHeight(&font);
	if (width != NULL)
		*width = Width(field, label) + partWidth;
	if (height != NULL)
		*height = std::max(partHeight, ceilf(font.ascent + font.descent));
}

} // namespace BPrivate
