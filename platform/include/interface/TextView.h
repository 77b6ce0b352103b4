#pragma once

#include <InterfaceDefs.h>
#include <View.h>
#include <string>

/*!	Text that the user reads, selects and, unless MakeEditable(false) was called, changes; one font
	and colour for all of it. It is the desktop's own, so input methods, the clipboard and undoing
	work as everywhere. It has scroll bars when it is in a BScrollView.
	All offsets count bytes of UTF-8; one within a character means the character's start.
	Thread: as any view. Text() never waits; GetSelection() asks the display server. */
class BTextView : public BView {
public:
	/*!	Several lines. `textRect`: where the text is, in the view's coordinates; what it leaves at the
		left and the top becomes the margin. */
	BTextView(BRect frame, const char* name, BRect textRect, uint32 resizingMode,
		uint32 flags = B_WILL_DRAW);
	//! Several lines.
	explicit BTextView(BMessage* data);

	static BArchivable* Instantiate(BMessage* data);
	//! Asks the display server for the selection.
	status_t Archive(BMessage* data, bool deep = true) const override;

	void GetPreferredSize(float* width, float* height) override;
	//! That of the paper.
	void SetViewColor(rgb_color color) override;
	using BView::SetViewColor;
	//! That of the text.
	void SetHighColor(rgb_color color) override;
	using BView::SetHighColor;

	//! NULL: none. What is beyond MaxBytes() is left out.
	void SetText(const char* text);
	void SetText(const char* text, int32 length);
	//! Never NULL; until the text changes or its view is gone.
	const char* Text() const;
	int32 TextLength() const;
	//! At most `length` bytes from `offset` on, and a 0 after them.
	void GetText(int32 offset, int32 length, char* buffer) const;
	//! 0 out of range.
	uchar ByteAt(int32 offset) const;

	void MakeEditable(bool editable = true);
	bool IsEditable() const;
	//! A text that is not editable; what is, is selectable.
	void MakeSelectable(bool selectable = true);
	bool IsSelectable() const;
	//! Lines that are too long go on below.
	void SetWordWrap(bool wrap);
	bool DoesWordWrap() const;
	void SetAlignment(alignment flag);
	alignment Alignment() const;
	//! The margins. Of several lines the left and the top one count, for all sides.
	void SetInsets(float left, float top, float right, float bottom);

	/*!	The user cannot type or paste beyond that, or such characters (code points). SetText() may set
		the latter. */
	void SetMaxBytes(int32 max);
	int32 MaxBytes() const;
	void DisallowChar(uint32 character);
	void AllowChar(uint32 character);

	virtual void Select(int32 start, int32 end);
	void SelectAll();
	//! Both the place of the caret when nothing is selected. Either may be NULL.
	void GetSelection(int32* start, int32* end) const;
	//! Shows the caret, or the end of the selection.
	virtual void ScrollToSelection();

protected:
	//! One line, for a control around it.
	BTextView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);
	BTextView(BMessage* data, bool isLine);

private:
	// What the user has done; the text is the new one already.
	virtual void UserEdited();
	virtual void UserEntered();
	virtual void UserLeft();
	void Init();
	void Read(const BMessage& archive);
	BRect TextRect() const;
	void SetTextRect(BRect rect);
	void ShowPaperColor();
	void ShowTextColor();
	void UserActed(BMessage* event);
	void ShowMode();
	void ShowRules();

	std::string fText;
	std::u32string fDisallowed;
	BRect fInsets; // widths, not places
	int32 fMaxBytes;
	alignment fAlignment;
	bool fIsLine;
	bool fEditable;
	bool fSelectable;
	bool fWrap;
};
