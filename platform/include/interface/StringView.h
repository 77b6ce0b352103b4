#pragma once

#include <InterfaceDefs.h>
#include <View.h>

/*!	A line of text that the user cannot change, in the view's font and high colour. What does not fit ends in an ellipsis.
	Thread: as any view; Text() never waits. */
class BStringView : public BView {
public:
	BStringView(BRect frame, const char* name, const char* text,
		uint32 resizingMode = B_FOLLOW_LEFT_TOP, uint32 flags = B_WILL_DRAW);
	explicit BStringView(BMessage* data);
	~BStringView() override;

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	void GetPreferredSize(float* width, float* height) override;
	using BView::SetHighColor;
	void SetHighColor(rgb_color color) override;

	void SetText(const char* text);
	//! NULL if it has none.
	const char* Text() const;
	void SetAlignment(alignment flag);
	alignment Alignment() const;

private:
	void Init();
	void ShowColor();

	char* fText;
	alignment fAlignment;
};
