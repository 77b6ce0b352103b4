#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "server/ServerText.h"
#include "support/ArchiveFields.h"

#include <GraphicsDefs.h>
#include <Message.h>
#include <TextView.h>
#include <algorithm>
#include <string.h>

using namespace BPrivate;

//! Tells the widget, of whichever kind it is.
template<typename Function>
static void
adjust_text(const BView* view, Function change)
{
	ViewData::Of(view).proxy->Adjust<QWidget>(
		[change](QWidget& widget) { change(ServerText::Of(widget)); });
}

BTextView::BTextView(
	BRect frame, const char* name, BRect textRect, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  fIsLine(false)
{
	Init();
	SetTextRect(textRect);
}

BTextView::BTextView(BRect frame, const char* name, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  fIsLine(true)
{
	Init();
}

//!	Its text is all it says: a name would be the program's own, not one for the user.
template<typename Widget>
static WidgetProxy::Maker
make_text()
{
	return WidgetProxy::MakerOf<Widget>(
		[](Widget* widget, ProxySink* sink) { widget->SetSink(sink); });
}

void
BTextView::Init()
{
	fInsets = BRect(0, 0, 0, 0);
	fMaxBytes = INT32_MAX;
	fAlignment = B_ALIGN_LEFT;
	fEditable = true;
	fSelectable = true;
	fWrap = true;
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		fIsLine ? make_text<ServerTextLine>() : make_text<ServerTextArea>(),
		[this](BMessage* event) { UserActed(event); }));
}

void
BTextView::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

static QColor
to_qcolor(rgb_color color)
{
	return QColor(color.red, color.green, color.blue);
}

void
BTextView::SetViewColor(rgb_color color)
{
	BView::SetViewColor(color);
	ShowPaperColor();
}

void
BTextView::ShowPaperColor()
{
	adjust_text(this, [color = to_qcolor(ViewColor())](ServerText& text) {
		text.SetColor(QPalette::Base, color);
	});
}

void
BTextView::SetHighColor(rgb_color color)
{
	BView::SetHighColor(color);
	ShowTextColor();
}

void
BTextView::ShowTextColor()
{
	adjust_text(this, [color = to_qcolor(HighColor())](ServerText& text) {
		text.SetColor(QPalette::Text, color);
	});
}

void
BTextView::SetText(const char* text)
{
	SetText(text, text != NULL ? strlen(text) : 0);
}

//! The start of the character that the byte belongs to.
static size_t
character_start(const std::string& text, size_t offset)
{
	while (offset > 0 && offset < text.size() && (text[offset] & 0xc0) == 0x80)
		offset--;
	return std::min(offset, text.size());
}

void
BTextView::SetText(const char* text, int32 length)
{
	fText = text != NULL ? std::string(text, strnlen(text, std::max(length, 0))) : std::string();
	if (fText.size() > static_cast<size_t>(fMaxBytes))
		fText.resize(character_start(fText, fMaxBytes));
	ViewData::Of(this).proxy->Set<QWidget>([shown = QString::fromUtf8(fText)](QWidget& widget) {
		ServerText::Of(widget).ShowText(shown);
	});
}

const char*
BTextView::Text() const
{
	return fText.c_str();
}

int32
BTextView::TextLength() const
{
	return fText.size();
}

void
BTextView::GetText(int32 offset, int32 length, char* buffer) const
{
	if (buffer == NULL)
		return;
	const bool isInside = offset >= 0 && offset < TextLength() && length > 0;
	const size_t count = isInside ? fText.copy(buffer, length, offset) : 0;
	buffer[count] = 0;
}

uchar
BTextView::ByteAt(int32 offset) const
{
	return offset >= 0 && offset < TextLength() ? fText[offset] : 0;
}

void
BTextView::MakeEditable(bool editable)
{
	fEditable = editable;
	ShowMode();
}

bool
BTextView::IsEditable() const
{
	return fEditable;
}

void
BTextView::MakeSelectable(bool selectable)
{
	fSelectable = selectable;
	ShowMode();
}

bool
BTextView::IsSelectable() const
{
	return fSelectable;
}

void
BTextView::ShowMode()
{
	adjust_text(this, [editable = fEditable, selectable = fSelectable](ServerText& text) {
		text.SetMode(editable, selectable);
	});
}

void
BTextView::SetWordWrap(bool wrap)
{
	fWrap = wrap;
	adjust_text(this, [wrap](ServerText& text) { text.SetWrap(wrap); });
}

bool
BTextView::DoesWordWrap() const
{
	return fWrap;
}

void
BTextView::SetAlignment(alignment flag)
{
	fAlignment = flag;
	adjust_text(this, [side = to_side(flag)](ServerText& text) { text.SetSide(side); });
}

alignment
BTextView::Alignment() const
{
	return fAlignment;
}

void
BTextView::SetInsets(float left, float top, float right, float bottom)
{
	fInsets = BRect(left, top, right, bottom);
	const QMargins margins(left, top, right, bottom);
	adjust_text(this, [margins](ServerText& text) { text.SetMargins(margins); });
}

BRect
BTextView::TextRect() const
{
	return BRect(fInsets.left, fInsets.top, Bounds().Width() - fInsets.right,
		Bounds().Height() - fInsets.bottom);
}

void
BTextView::SetTextRect(BRect rect)
{
	SetInsets(std::max(rect.left, 0.0f), std::max(rect.top, 0.0f), 0, 0);
}

void
BTextView::SetMaxBytes(int32 max)
{
	fMaxBytes = std::max(max, 0);
	if (TextLength() > fMaxBytes)
		SetText(std::string(fText).c_str());
	ShowRules();
}

int32
BTextView::MaxBytes() const
{
	return fMaxBytes;
}

void
BTextView::DisallowChar(uint32 character)
{
	if (fDisallowed.find(character) == std::u32string::npos)
		fDisallowed += character;
	ShowRules();
}

void
BTextView::AllowChar(uint32 character)
{
	std::erase(fDisallowed, character);
	ShowRules();
}

void
BTextView::ShowRules()
{
	adjust_text(this,
		[rules = TextRules{fDisallowed, fMaxBytes}](ServerText& text) { text.SetRules(rules); });
}

// The selection

void
BTextView::Select(int32 start, int32 end)
{
	if (start < 0 || start > end)
		return;
	const int from = character_start(fText, start);
	const int to = character_start(fText, end);
	adjust_text(this, [=](ServerText& text) { text.SelectBytes({from, to}); });
}

void
BTextView::SelectAll()
{
	Select(0, TextLength());
}

void
BTextView::GetSelection(int32* start, int32* end) const
{
	const auto selected = ViewData::Of(this).proxy->Ask<QWidget>(
		[](QWidget& widget) { return ServerText::Of(widget).SelectedBytes(); });
	// the user may have typed what is not known here yet
	const int32 length = TextLength();
	if (start != NULL)
		*start = selected ? std::min(selected->from, length) : 0;
	if (end != NULL)
		*end = selected ? std::min(selected->to, length) : 0;
}

void
BTextView::ScrollToSelection()
{
	adjust_text(this, [](ServerText& text) { text.ScrollToSelection(); });
}

// The user

void
BTextView::UserActed(BMessage* event)
{
	const char* text;
	if (event->FindString("text", &text) == B_OK) {
		fText = text;
		UserEdited();
	}
	if (event->GetBool("entered", false))
		UserEntered();
	if (event->GetBool("left", false))
		UserLeft();
}

void
BTextView::UserEdited()
{ }

void
BTextView::UserEntered()
{ }

void
BTextView::UserLeft()
{ }

// Archives

// What the platform has when nobody asks for something else.
static constexpr float kTabWidth = 28;
static constexpr int32 kColorSpace = B_CMAP8;

BTextView::BTextView(BMessage* data) : BTextView(data, false) { }

BTextView::BTextView(BMessage* data, bool isLine) : BView(data), fIsLine(isLine)
{
	Init();
	Read(archive_or_empty(data));
}

void
BTextView::Read(const BMessage& archive)
{
	// a line's is the control's affair
	if (!fIsLine)
		SetTextRect(archived_rect(archive, "_trect", BRect(0, 0, 0, 0)));
	// every view is archived with colours: those that nobody has chosen are the desktop's
	if (ViewColor() != ViewData().viewColor)
		ShowPaperColor();
	if (HighColor() != DrawState().high)
		ShowTextColor();
	fMaxBytes = std::max(archive.GetInt32("_max", INT32_MAX), 0);
	const void* characters;
	ssize_t size;
	if (archive.FindData("_dis_ch", B_RAW_TYPE, &characters, &size) == B_OK) {
		fDisallowed.resize(size / sizeof(char32_t));
		memcpy(fDisallowed.data(), characters, fDisallowed.size() * sizeof(char32_t));
	}
	ShowRules();
	SetText(archive.GetString("_text"));
	SetAlignment(alignment(archived_choice(archive, "_align", B_ALIGN_CENTER, B_ALIGN_LEFT)));
	SetWordWrap(archive.GetBool("_wrap", true));
	fSelectable = !archive.GetBool("_nsel", false);
	MakeEditable(!archive.GetBool("_nedit", false));
	BTextView::Select(archive.GetInt32("_sel", 0, 0), archive.GetInt32("_sel", 1, 0));
}

BArchivable*
BTextView::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BTextView") ? new BTextView(data) : NULL;
}

status_t
BTextView::Archive(BMessage* data, bool deep) const
{
	int32 selected[2];
	GetSelection(&selected[0], &selected[1]);
	ArchiveWriter writer(data, BView::Archive(data, deep));
	writer.String("_text", Text());
	writer.Int32("_align", fAlignment);
	writer.Float("_tab", kTabWidth);
	writer.Int32("_col_sp", kColorSpace);
	writer.Rect("_trect", TextRect());
	writer.Int32("_max", fMaxBytes);
	for (int32 offset : selected)
		writer.Int32("_sel", offset);
	writer.Bool("_stylable", false);
	writer.Bool("_auto_in", false);
	writer.Bool("_wrap", fWrap);
	writer.Bool("_nsel", !fSelectable);
	writer.Bool("_nedit", !fEditable);
	writer.Bool("_password", false);
	writer.Raw("_dis_ch", fDisallowed.data(), fDisallowed.size() * sizeof(char32_t));
	return writer.Status();
}
