#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerBox.h"
#include "support/ArchiveFields.h"

#include <Box.h>
#include <Debug.h>
#include <Window.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>

using namespace BPrivate;

static constexpr float kLabelViewLeft = 10;

BBox::BBox(BRect frame, const char* name, uint32 resizingMode, uint32 flags, border_style border)
	: BView(frame, name, resizingMode, flags),
	  fLabel(NULL),
	  fLabelView(NULL),
	  fStyle(border)
{
	Init();
}

//! Once it was told whether the border is the fancy one.
static border_style
archived_style(const BMessage& archive)
{
	bool fancy;
	if (archive.FindBool("_style", &fancy) == B_OK)
		return fancy ? B_FANCY_BORDER : B_PLAIN_BORDER;
	return border_style(archived_choice(archive, "_style", B_NO_BORDER, B_FANCY_BORDER));
}

BBox::BBox(BMessage* data)
	: BView(data),
	  fLabel(NULL),
	  fLabelView(NULL),
	  fStyle(archived_style(archive_or_empty(data)))
{
	const BMessage& archive = archive_or_empty(data);
	Init();
	if (archive.HasString("_label"))
		SetLabel(archive.GetString("_label"));
	else if (archive.GetBool("_lblview", false))
		fLabelView = ChildAt(0);
	ShowLabel();
}

BArchivable*
BBox::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BBox") ? new BBox(data) : NULL;
}

status_t
BBox::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BView::Archive(data, deep));
	writer.String("_label", fLabel);
	writer.True("_lblview", fLabelView != NULL);
	if (fStyle != B_FANCY_BORDER)
		writer.Int32("_style", fStyle);
	return writer.Status();
}

BBox::~BBox()
{
	free(fLabel);
}

void
BBox::Init()
{
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerBox>([](ServerBox*, ProxySink*) {}), [](BMessage*) {}));
	SetBorder(fStyle);
}

void
BBox::GetPreferredSize(float* width, float* height)
{
	float needed[2] = {0, 0};
	preferred_size(*this, &needed[0], &needed[1]);
	const BRect inner = InnerFrame();
	for (int32 i = 0; BView* child = ChildAt(i); i++) {
		const float room = child == fLabelView ? kLabelViewLeft : Bounds().right - inner.right;
		needed[0] = std::max(needed[0], child->Frame().right + room);
		needed[1] = std::max(needed[1], child->Frame().bottom + Bounds().bottom - inner.bottom);
	}
	if (width != NULL)
		*width = needed[0];
	if (height != NULL)
		*height = needed[1];
}

void
BBox::SetBorder(border_style border)
{
	fStyle = border;
	ViewData::Of(this).proxy->Adjust<ServerBox>(
		[border](ServerBox& box) { box.SetBorder(border); });
}

border_style
BBox::Border() const
{
	return fStyle;
}

void
BBox::SetLabel(const char* label)
{
	char* copy = label != NULL ? strdup(label) : NULL;
	ClearLabel();
	fLabel = copy;
	ShowLabel();
}

status_t
BBox::SetLabel(BView* viewLabel)
{
	if (viewLabel != NULL && viewLabel == fLabelView)
		return B_OK;
	ClearLabel();
	if (viewLabel != NULL) {
		fLabelView = viewLabel;
		fLabelView->MoveTo(kLabelViewLeft, 0);
		AddChild(fLabelView, ChildAt(0));
	}
	ShowLabel();
	return B_OK;
}

void
BBox::ClearLabel()
{
	free(fLabel);
	fLabel = NULL;
	if (BView* old = std::exchange(fLabelView, nullptr)) {
		// somebody may have taken it out
		if (ViewData::Of(old).parent == this)
			RemoveChild(old);
		delete old;
	}
}

void
BBox::ShowLabel()
{
	const QRect place = fLabelView != NULL ? to_qrect(fLabelView->Frame()) : QRect();
	ViewData::Of(this).proxy->Adjust<ServerBox>(
		[text = widget_text(fLabel), place](ServerBox& box) {
			box.setTitle(text);
			box.SetLabelPlace(place);
		});
}

const char*
BBox::Label() const
{
	return fLabel;
}

BView*
BBox::LabelView() const
{
	return fLabelView;
}

float
BBox::TopBorderOffset()
{
	return InnerFrame().top - 1;
}

BRect
BBox::InnerFrame()
{
	const QSize size = to_qrect(Bounds()).size();
	const std::optional<QRect> inner = ViewData::Of(this).proxy->Ask<ServerBox>(
		[size](ServerBox& box) { return box.InnerRect(size); });
	return inner ? to_brect(*inner) : Bounds();
}
