#pragma once

#include <InterfaceDefs.h>
#include <View.h>

/*!	A border around its children, with a label in its top edge: a text, or a view.
	It is the desktop's group box; children that draw themselves lie over it. */
class BBox : public BView {
public:
	explicit BBox(BRect frame, const char* name = NULL, uint32 resizingMode = B_FOLLOW_LEFT_TOP,
		uint32 flags = B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE_JUMP,
		border_style border = B_FANCY_BORDER);
	explicit BBox(BMessage* data);
	~BBox() override;

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	//! What the label, and the children as they lie, need.
	void GetPreferredSize(float* width, float* height) override;

	virtual void SetBorder(border_style border);
	border_style Border() const;
	//! NULL: none. It takes the place of a label view, which is deleted.
	void SetLabel(const char* label);
	/*!	Adds the view as the first child, at its place in the top edge; its size stays. It takes the
		place of the label before, and is deleted with the box. */
	status_t SetLabel(BView* viewLabel);
	//! NULL if the label is a view, or there is none.
	const char* Label() const;
	BView* LabelView() const;

	//! From the top of the box to the lower edge of its upper border.
	float TopBorderOffset();
	//! What the borders leave for the children.
	BRect InnerFrame();

private:
	void Init();
	void ClearLabel();
	void ShowLabel();

	char* fLabel;
	BView* fLabelView;
	border_style fStyle;
};
