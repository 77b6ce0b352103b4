#pragma once

#include <InterfaceDefs.h>
#include <View.h>

/*!	A frame with scroll bars around a list, or another control that can scroll by itself: that one fills the frame, and the bars are its own.
	Its frame is the target's and, around that, the border and the scroll bars.
	Thread: as any view. */
class BScrollView : public BView {
public:
	//! The target becomes its child, which follows all its sides; NULL for none yet. The target is in no window.
	BScrollView(const char* name, BView* target, uint32 resizingMode = B_FOLLOW_LEFT_TOP,
		uint32 flags = 0, bool horizontal = false, bool vertical = false,
		border_style border = B_FANCY_BORDER);

	//! Of another target: it is made to fill the frame. The old one belongs to the caller.
	virtual void SetTarget(BView* target);
	BView* Target() const;
	border_style Border() const;

private:
	void FitTarget();

	BView* fTarget;
	bool fHorizontal;
	bool fVertical;
	border_style fBorder;
};
