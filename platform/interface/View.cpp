#include "interface/ViewData.h"

#include <Cursor.h>
#include <Debug.h>
#include <algorithm>
#include <string.h>

using namespace BPrivate;

BView::BView(BRect frame, const char* name, uint32 resizingMode, uint32 flags)
	: BHandler(name),
	  fData(new ViewData)
{
	fData->view = this;
	fData->frame = frame;
	fData->flags = flags;
	fData->resizing = resizingMode;
}

BView::~BView()
{
	RemoveSelf();
	while (!fData->children.empty()) {
		BView* child = fData->children.back();
		fData->RemoveChild(child);
		delete child;
	}
	delete fData;
}

void
BView::AttachedToWindow()
{ }

void
BView::AllAttached()
{ }

void
BView::DetachedFromWindow()
{ }

void
BView::AllDetached()
{ }

void
BView::Draw(BRect)
{ }

void
BView::FrameMoved(BPoint)
{ }

void
BView::FrameResized(float, float)
{ }

void
BView::MouseDown(BPoint)
{ }

void
BView::MouseUp(BPoint)
{ }

void
BView::MouseMoved(BPoint, uint32, const BMessage*)
{ }

void
BView::KeyDown(const char*, int32)
{ }

void
BView::KeyUp(const char*, int32)
{ }

void
BView::WindowActivated(bool)
{ }

void
BView::GetPreferredSize(float* width, float* height)
{
	if (width != NULL)
		*width = fData->frame.Width();
	if (height != NULL)
		*height = fData->frame.Height();
}

void
BView::ResizeToPreferred()
{
	float width = 0;
	float height = 0;
	GetPreferredSize(&width, &height);
	ResizeTo(width, height);
}

void
BView::MakeFocus(bool focus)
{
	if (Window() == NULL)
		return;
	WindowData& window = WindowData::Of(Window());
	if (focus)
		window.SetFocus(this, !window.focusFromServer);
	else if (window.focus == this)
		window.SetFocus(NULL, true);
}

bool
BView::IsFocus() const
{
	return Window() != NULL && WindowData::Of(Window()).focus == this;
}

void
BView::Show()
{
	if (fData->hideLevel-- != 1)
		return;
	fData->PlaceProxies();
	fData->PlaceAncestors();
	fData->Invalidate(fData->VisibleRect());
}

void
BView::Hide()
{
	if (fData->hideLevel == 0)
		fData->Invalidate(fData->VisibleRect());
	if (fData->hideLevel++ == 0) {
		fData->PlaceProxies();
		fData->PlaceAncestors();
	}
}

bool
BView::IsHidden() const
{
	return IsHidden(NULL);
}

bool
BView::IsHidden(const BView* lookingFrom) const
{
	if (fData->hideLevel > 0)
		return true;
	if (lookingFrom == this)
		return false;
	if (fData->parent != NULL)
		return fData->parent->IsHidden(lookingFrom);
	// only the root, or a view in no window, has no parent
	return fData->isRoot && lookingFrom == NULL && fData->window->IsHidden();
}

uint32
BView::Flags() const
{
	return fData->flags;
}

void
BView::SetFlags(uint32 flags)
{
	fData->flags = flags;
}

uint32
BView::ResizingMode() const
{
	return fData->resizing;
}

void
BView::SetResizingMode(uint32 mode)
{
	fData->resizing = mode;
}

void
BView::AddChild(BView* child, BView* before)
{
	if (child != NULL && child != this)
		fData->AddChild(child, before);
}

bool
BView::RemoveChild(BView* child)
{
	return fData->RemoveChild(child);
}

bool
BView::RemoveSelf()
{
	return fData->parent != NULL && ViewData::Of(fData->parent).RemoveChild(this);
}

int32
BView::CountChildren() const
{
	return fData->children.size();
}

BView*
BView::ChildAt(int32 index) const
{
	return index >= 0 && index < CountChildren() ? fData->children[index] : NULL;
}

//! `step` places further in the list of the parent's children.
static BView*
sibling(const BView* view, BView* parent, int32 step)
{
	if (parent == NULL)
		return NULL;
	const std::vector<BView*>& all = ViewData::Of(parent).children;
	int32 index = std::find(all.begin(), all.end(), view) - all.begin() + step;
	return parent->ChildAt(index);
}

BView*
BView::NextSibling() const
{
	return sibling(this, fData->parent, 1);
}

BView*
BView::PreviousSibling() const
{
	return sibling(this, fData->parent, -1);
}

BView*
BView::Parent() const
{
	BView* parent = fData->parent;
	return parent != NULL && !ViewData::Of(parent).isRoot ? parent : NULL;
}

BView*
BView::FindView(const char* name) const
{
	if (name == NULL)
		return NULL;
	if (Name() != NULL && strcmp(Name(), name) == 0)
		return const_cast<BView*>(this);
	for (BView* child : fData->children) {
		if (BView* found = child->FindView(name))
			return found;
	}
	return NULL;
}

BWindow*
BView::Window() const
{
	return fData->window;
}

BRect
BView::Bounds() const
{
	return fData->Bounds();
}

BRect
BView::Frame() const
{
	return fData->frame;
}

BPoint
BView::LeftTop() const
{
	return fData->scroll;
}

void
BView::MoveTo(BPoint where)
{
	fData->SetFrame(fData->frame.OffsetToCopy(where));
}

void
BView::MoveTo(float x, float y)
{
	MoveTo(BPoint(x, y));
}

void
BView::MoveBy(float dh, float dv)
{
	MoveTo(fData->frame.LeftTop() + BPoint(dh, dv));
}

void
BView::ResizeTo(float width, float height)
{
	BRect frame = fData->frame;
	frame.right = frame.left + width;
	frame.bottom = frame.top + height;
	fData->SetFrame(frame);
}

void
BView::ResizeBy(float dh, float dv)
{
	ResizeTo(fData->frame.Width() + dh, fData->frame.Height() + dv);
}

void
BView::ScrollTo(BPoint where)
{
	if (where == fData->scroll)
		return;
	fData->scroll = where;
	fData->PlaceProxies();
	Invalidate();
}

void
BView::ScrollBy(float dh, float dv)
{
	ScrollTo(fData->scroll + BPoint(dh, dv));
}

BPoint
BView::ConvertToParent(BPoint point) const
{
	return point - fData->scroll + fData->frame.LeftTop();
}

BPoint
BView::ConvertFromParent(BPoint point) const
{
	return point - fData->frame.LeftTop() + fData->scroll;
}

void
BView::ConvertToParent(BPoint* point) const
{
	*point = ConvertToParent(*point);
}

void
BView::ConvertFromParent(BPoint* point) const
{
	*point = ConvertFromParent(*point);
}

BRect
BView::ConvertToParent(BRect rect) const
{
	return rect.OffsetToCopy(ConvertToParent(rect.LeftTop()));
}

BRect
BView::ConvertFromParent(BRect rect) const
{
	return rect.OffsetToCopy(ConvertFromParent(rect.LeftTop()));
}

BPoint
BView::ConvertToScreen(BPoint point) const
{
	point += fData->Origin();
	return Window() != NULL ? Window()->ConvertToScreen(point) : point;
}

BPoint
BView::ConvertFromScreen(BPoint point) const
{
	if (Window() != NULL)
		point = Window()->ConvertFromScreen(point);
	return point - fData->Origin();
}

void
BView::ConvertToScreen(BPoint* point) const
{
	*point = ConvertToScreen(*point);
}

void
BView::ConvertFromScreen(BPoint* point) const
{
	*point = ConvertFromScreen(*point);
}

BRect
BView::ConvertToScreen(BRect rect) const
{
	return rect.OffsetToCopy(ConvertToScreen(rect.LeftTop()));
}

BRect
BView::ConvertFromScreen(BRect rect) const
{
	return rect.OffsetToCopy(ConvertFromScreen(rect.LeftTop()));
}

void
BView::Invalidate()
{
	fData->Invalidate(fData->VisibleRect());
}

void
BView::Invalidate(BRect rect)
{
	if (rect.IsValid())
		fData->Invalidate(to_qrect(rect.OffsetToCopy(rect.LeftTop() + fData->Origin())));
}

void
BView::Flush() const
{
	if (Window() != NULL)
		Window()->Flush();
}

void
BView::Sync() const
{
	if (Window() != NULL)
		Window()->Sync();
}

void
BView::GetMouse(BPoint* where, uint32* buttons, bool)
{
	BPoint screenWhere;
	get_mouse(&screenWhere, buttons);
	if (where != NULL)
		*where = ConvertFromScreen(screenWhere);
}

void
BView::SetViewCursor(const BCursor* cursor, bool sync)
{
	if (cursor == NULL || Window() == NULL)
		return;
	fData->cursor = cursor->fID;
	WindowData::Of(Window()).TellPointer(sync);
}

status_t
BView::SetEventMask(uint32 mask, uint32 options)
{
	fData->eventMask = mask;
	fData->eventOptions = options;
	return B_OK;
}

uint32
BView::EventMask()
{
	return fData->eventMask;
}

status_t
BView::SetMouseEventMask(uint32 mask, uint32 options)
{
	BMessage* current = Window() != NULL ? Window()->CurrentMessage() : NULL;
	if (current == NULL || current->what != B_MOUSE_DOWN)
		return B_NOT_ALLOWED;
	fData->mouseMask = mask;
	fData->mouseOptions = options;
	return B_OK;
}
