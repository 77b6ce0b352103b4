#include "interface/ViewData.h"
#include "support/ArchiveFields.h"

#include <algorithm>

using namespace BPrivate;

static constexpr const char* kChildren = "_views"; // int32 tokens, formerly messages

BView::BView(BMessage* data) : BHandler(BUnarchiver::PrepareArchive(data)), fData(new ViewData)
{
	BUnarchiver unarchiver(data);
	fData->view = this;
	fData->Read(archive_or_empty(data));
	unarchiver.Finish(fData->ReadChildren(unarchiver));
}

BArchivable*
BView::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BView") ? new BView(data) : NULL;
}

status_t
BView::Archive(BMessage* data, bool deep) const
{
	BArchiver archiver(data);
	status_t status = BHandler::Archive(data, deep);
	fData->Write(data, &status);
	if (status == B_OK && deep)
		status = fData->WriteChildren(archiver);
	return archiver.Finish(status);
}

namespace BPrivate {

//! As a number, red in the highest byte.
static int32
packed(rgb_color color)
{
	return int32(uint32(color.red) << 24 | color.green << 16 | color.blue << 8 | color.alpha);
}

static rgb_color
unpacked(uint32 number)
{
	return make_color(number >> 24, number >> 16 & 0xff, number >> 8 & 0xff, number & 0xff);
}

//! To white at a tint of 0, to black at 2.
static uint8
tinted(uint8 component, float tint)
{
	return tint < 1 ? 255 - (255 - component) * tint : component * (2 - tint);
}

rgb_color
UIColor::Color() const
{
	const rgb_color color = ui_color(color_which(which));
	return make_color(
		tinted(color.red, tint), tinted(color.green, tint), tinted(color.blue, tint), color.alpha);
}

void
ViewData::Write(BMessage* into, status_t* status) const
{
	ArchiveWriter writer(into, *status);
	writer.Rect("_frame", frame);
	writer.Int32("_resize_mode", resizing);
	writer.Int32("_flags", flags);
	if (eventMask != 0) {
		writer.Int32("_evmask", eventMask);
		writer.Int32("_evmask", eventOptions);
	}
	if (state.fontSet) {
		font_family family;
		font_style style;
		state.font.GetFamilyAndStyle(&family, &style);
		writer.String("_fname", family);
		writer.String("_fname", style);
		writer.Float("_fflt", state.font.Size());
		writer.Float("_fflt", 90); // upright
		writer.Float("_fflt", 0);  // not turned
	}
	for (rgb_color color : {state.high, state.low, viewColor})
		writer.Int32("_color", packed(color));
	for (const UIColor& color : uiColors)
		writer.Int32("_uicolor", color.which);
	for (const UIColor& color : uiColors)
		writer.Float("_uitint", color.tint);
	if (state.penSize != 1)
		writer.Float("_psize", state.penSize);
	if (state.pen != B_ORIGIN)
		writer.Point("_ploc", state.pen);
	if (state.mode != B_OP_COPY)
		writer.Int32("_dmod", state.mode);
	for (int i = 0; i < 3; i++) // least, most and preferred size: none of its own
		writer.Size("BView:sizes", BSize());
	writer.Alignment("BView:alignment", BAlignment());
	writer.Int16("_show", hideLevel);
	*status = writer.Status();
}

status_t
ViewData::WriteChildren(BArchiver& archiver) const
{
	status_t status = B_OK;
	for (size_t i = 0; status == B_OK && i < children.size(); i++)
		status = archiver.AddArchivable(kChildren, children[i]);
	return status == B_OK ? archiver.AddArchivable("BView:layout", NULL) : status;
}

void
ViewData::Read(const BMessage& archive)
{
	frame = archived_rect(archive, "_frame", BRect());
	resizing = archive.GetInt32("_resize_mode", 0);
	flags = archive.GetInt32("_flags", 0);
	eventMask = archive.GetInt32("_evmask", 0, 0);
	eventOptions = archive.GetInt32("_evmask", 1, 0);
	hideLevel = std::max<int16>(archive.GetInt16("_show", 0), 0);
	ReadFont(archive);
	ReadColors(archive);
	state.penSize = std::max(archived_float(archive, "_psize", 0, 1), 0.0f);
	state.pen = archived_point(archive, "_ploc", B_ORIGIN);
	state.mode = drawing_mode(archived_choice(archive, "_dmod", B_OP_ALPHA, B_OP_COPY));
}

void
ViewData::ReadFont(const BMessage& archive)
{
	const char* family = archive.GetString("_fname", 0, NULL);
	const char* style = archive.GetString("_fname", 1, NULL);
	if (family != NULL)
		state.fontSet = state.font.SetFamilyAndStyle(family, style) == B_OK;
	const float size = archived_float(archive, "_fflt", 0, 0);
	if (size <= 0)
		return;
	state.font.SetSize(size);
	state.fontSet = true;
}

void
ViewData::ReadColors(const BMessage& archive)
{
	rgb_color* const colors[kColorCount] = {&state.high, &state.low, &viewColor};
	for (int i = 0; i < kColorCount; i++) {
		int32 number;
		if (archive.FindInt32("_color", i, &number) == B_OK)
			*colors[i] = unpacked(number);
		UIColor& color = uiColors[i];
		color.which = archive.GetInt32("_uicolor", i, -1);
		color.tint = std::clamp(archived_float(archive, "_uitint", i, 1), 0.0f, 2.0f);
		if (color.which > 0)
			*colors[i] = color.Color();
		else
			color = UIColor();
	}
}

status_t
ViewData::ReadChildren(BUnarchiver& unarchiver)
{
	const BMessage& archive = archive_or_empty(unarchiver.ArchiveMessage());
	type_code type;
	int32 count = 0;
	archive.GetInfo(kChildren, &type, &count);
	status_t result = B_OK;
	for (int32 i = 0; i < count; i++) {
		BView* child;
		status_t status = unarchiver.FindObject(kChildren, i, child);
		if (status == B_OK && (child == NULL || Of(child).parent != NULL))
			status = B_BAD_VALUE;
		if (status == B_OK) {
			children.push_back(child);
			Of(child).parent = view;
		} else if (result == B_OK)
			result = status;
	}
	return result;
}

} // namespace BPrivate
