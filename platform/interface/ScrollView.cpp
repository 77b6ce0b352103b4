#include "interface/ViewData.h"

#include <Debug.h>
#include <QAbstractScrollArea>
#include <ScrollView.h>

using namespace BPrivate;

static constexpr float kScrollBarSize = 14; // what a program may count on
static constexpr float kFancyBorderSize = 2;
static constexpr float kPlainBorderSize = 1;

static float
border_size(border_style border)
{
	if (border == B_NO_BORDER)
		return 0;
	return border == B_FANCY_BORDER ? kFancyBorderSize : kPlainBorderSize;
}

static BRect
frame_around(const BView* target, bool horizontal, bool vertical, border_style border)
{
	BRect frame = target != NULL ? target->Frame() : BRect(0, 0, 80, 80);
	if (horizontal)
		frame.bottom += kScrollBarSize;
	if (vertical)
		frame.right += kScrollBarSize;
	return frame.InsetBySelf(-border_size(border), -border_size(border));
}

static QFrame::Shape
shape_of(border_style border)
{
	if (border == B_NO_BORDER)
		return QFrame::NoFrame;
	return border == B_FANCY_BORDER ? QFrame::StyledPanel : QFrame::Box;
}

BScrollView::BScrollView(const char* name, BView* target, uint32 resizingMode, uint32 flags,
	bool horizontal, bool vertical, border_style border)
	: BView(frame_around(target, horizontal, vertical, border), name, resizingMode, flags),
	  fTarget(NULL),
	  fHorizontal(horizontal),
	  fVertical(vertical),
	  fBorder(border)
{
	BScrollView::SetTarget(target);
}

void
BScrollView::SetTarget(BView* target)
{
	if (target == fTarget)
		return;
	if (fTarget != NULL)
		RemoveChild(fTarget);
	fTarget = target;
	if (fTarget == NULL)
		return;
	FitTarget();
	AddChild(fTarget);
}

//! The border and the bars are the widget's own, so it fills all.
void
BScrollView::FitTarget()
{
	ASSERT(ViewData::Of(fTarget).IsProxy());
	fTarget->MoveTo(B_ORIGIN);
	fTarget->ResizeTo(Bounds().Width(), Bounds().Height());
	fTarget->SetResizingMode(B_FOLLOW_ALL);
	auto policy = [](bool bar) { return bar ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff; };
	ViewData::Of(fTarget).proxy->Adjust<QAbstractScrollArea>(
		[shape = shape_of(fBorder), horizontal = policy(fHorizontal), vertical = policy(fVertical)](
			QAbstractScrollArea& area) {
			area.setFrameStyle(shape | (shape == QFrame::Box ? QFrame::Plain : QFrame::Sunken));
			area.setHorizontalScrollBarPolicy(horizontal);
			area.setVerticalScrollBarPolicy(vertical);
		});
}

BView*
BScrollView::Target() const
{
	return fTarget;
}

border_style
BScrollView::Border() const
{
	return fBorder;
}
