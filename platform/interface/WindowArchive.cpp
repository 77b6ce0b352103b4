#include "interface/ViewData.h"
#include "support/ArchiveFields.h"

using namespace BPrivate;

BWindow::BWindow(BMessage* data) : BLooper(data), fData(new WindowData(this))
{
	const BMessage& archive = archive_or_empty(data);
	fData->Read(archive);
	fData->MakeRoot();
	fData->Open();
	_SetWindow(this);
	fData->ReadViews(archive);
}

BArchivable*
BWindow::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BWindow") ? new BWindow(data) : NULL;
}

status_t
BWindow::Archive(BMessage* data, bool deep) const
{
	return fData->Write(data, BLooper::Archive(data, deep), deep);
}

namespace BPrivate {

// Without limits, as it is told in archives.
static constexpr float kUnlimited = 32768;

//! The type of a look and a feel, B_UNTYPED_WINDOW when they are none's.
static window_type
type_of(window_look look, window_feel feel)
{
	for (window_type type : {B_TITLED_WINDOW, B_DOCUMENT_WINDOW, B_BORDERED_WINDOW, B_MODAL_WINDOW,
			 B_FLOATING_WINDOW}) {
		if (WindowData::LookOf(type) == look && WindowData::FeelOf(type) == feel)
			return type;
	}
	return B_UNTYPED_WINDOW;
}

static float
told_limit(float limit)
{
	return limit < WindowData::kMost ? limit : kUnlimited;
}

status_t
WindowData::Write(BMessage* into, status_t status, bool deep) const
{
	ArchiveWriter writer(into, status);
	writer.Rect("_frame", frame);
	writer.String("_title", title.c_str());
	writer.Int32("_wlook", look);
	writer.Int32("_wfeel", feel);
	if (flags != 0)
		writer.Int32("_flags", flags);
	writer.Int32("_wspace", workspaces);
	if (type_of(look, feel) == B_UNTYPED_WINDOW)
		writer.Int32("_type", B_UNTYPED_WINDOW);
	if (limits != BRect(0, 0, kMost, kMost)) {
		for (float limit : {limits.left, limits.top, limits.right, limits.bottom})
			writer.Float("_sizel", told_limit(limit));
	}
	for (int32 i = 0; deep && i < root->CountChildren(); i++)
		writer.Object("_views", root->ChildAt(i));
	return writer.Status();
}

void
WindowData::Read(const BMessage& archive)
{
	title = archive.GetString("_title", "");
	flags = archive.GetInt32("_flags", 0);
	workspaces = archive.GetInt32("_wspace", B_CURRENT_WORKSPACE);
	const auto type = window_type(archive.GetInt32("_type", B_TITLED_WINDOW));
	look = LookOf(type);
	feel = FeelOf(type);
	// what is no look or feel leaves the type's
	window->SetLook(window_look(archive.GetInt32("_wlook", look)));
	window->SetFeel(window_feel(archive.GetInt32("_wfeel", feel)));
	const float least[]
		= {archived_float(archive, "_sizel", 0, 0), archived_float(archive, "_sizel", 1, 0)};
	const float most[] = {
		archived_float(archive, "_sizel", 2, kMost), archived_float(archive, "_sizel", 3, kMost)};
	if (least[0] >= 0 && least[0] <= most[0] && least[1] >= 0 && least[1] <= most[1])
		limits = BRect(least[0], least[1], std::min(most[0], kMost), std::min(most[1], kMost));
	frame = Limited(archived_rect(archive, "_frame", BRect()));
	decor = frame;
}

void
WindowData::ReadViews(const BMessage& archive)
{
	type_code type;
	int32 count = 0;
	archive.GetInfo("_views", &type, &count);
	for (int32 i = 0; i < count; i++) {
		if (BView* child = archived_object<BView>(archive, "_views", i))
			window->AddChild(child);
	}
}

} // namespace BPrivate
