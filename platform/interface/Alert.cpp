#include "app/LooperAccess.h"
#include "app/LooperList.h"
#include "interface/ViewData.h"
#include "server/ServerSign.h"
#include "server/ServerText.h"
#include "server/UserAnswer.h"

#include <Alert.h>
#include <Button.h>
#include <Invoker.h>
#include <Screen.h>
#include <TextView.h>
#include <algorithm>

using namespace BPrivate;

namespace {

const uint32 kButtonPressed = '_alb'; // "which" (int32)
const float kMargin = 16;             // between the border, the parts and the buttons
const float kTextWidth = 360;         // longer lines are broken
const float kMinWidth = 200;
const int kSignSize = 32;
const float kButtonGap = 8;
const float kUsualButtonWidth = 75; // at least
const int kTextRoom = 2;            // for what the toolkit rounds
const float kScrollBarRoom = 18;
const uint32 kCommandKeys = B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY;

ServerSign::Kind
sign_of(alert_type type)
{
	switch (type) {
		case B_WARNING_ALERT:
			return ServerSign::Kind::kWarning;
		case B_STOP_ALERT:
			return ServerSign::Kind::kStop;
		default:
			return ServerSign::Kind::kInfo;
	}
}

//! The sign beside the text.
class SignView : public BView {
public:
	explicit SignView(alert_type type) : BView(BRect(), "sign", B_FOLLOW_NONE, B_WILL_DRAW)
	{
		auto setUp = [kind = sign_of(type)](ServerSign* sign, ProxySink*) { sign->SetKind(kind); };
		ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
			WidgetProxy::MakerOf<ServerSign>(setUp), [](BMessage*) {}));
	}
};

} // namespace

BAlert::BAlert(const char* title, const char* text, const char* button1, const char* button2,
	const char* button3, button_width width, alert_type type)
	: BWindow(BRect(0, 0, kMinWidth, 99), title, B_MODAL_WINDOW,
		B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE | B_ASYNCHRONOUS_CONTROLS),
	  fPanel(new BView(Bounds(), "panel", B_FOLLOW_ALL, B_WILL_DRAW)),
	  fButtonWidth(width),
	  fType(type),
	  fAnswer(std::make_shared<UserAnswer>())
{
	LooperList::SetQuitOrder(this, LooperList::kQuitsFirst);
	const char* labels[kMaxButtons] = {button1, button2, button3};
	AddPanel(text);
	AddButtons(labels);
	LayOut();
}

BAlert::~BAlert()
{
	fAnswer->Give(fWhich);
}

void
BAlert::AddPanel(const char* text)
{
	const rgb_color paper = ui_color(B_PANEL_BACKGROUND_COLOR);
	fPanel->SetViewColor(paper);
	AddChild(fPanel);
	if (fType != B_EMPTY_ALERT)
		fPanel->AddChild(fSign = new SignView(fType));
	fText = new BTextView(BRect(), "text", BRect(), B_FOLLOW_NONE);
	fText->SetViewColor(paper);
	fText->MakeEditable(false);
	fText->SetText(text);
	ViewData::Of(fText).proxy->Adjust<QPlainTextEdit>([](QPlainTextEdit& edit) {
		// only for the pointer, so that the Tab key goes from button to button
		edit.setFocusPolicy(Qt::ClickFocus);
	});
	fPanel->AddChild(fText);
}

void
BAlert::AddButtons(const char* const labels[])
{
	int32 count = 0;
	for (; count < kMaxButtons && labels[count] != NULL; count++) {
		BMessage* message = new BMessage(kButtonPressed);
		message->AddInt32("which", count);
		fButtons[count] = new BButton(BRect(), "button", labels[count], message);
		fPanel->AddChild(fButtons[count]);
	}
	if (count == 0)
		return;
	fButtons[count - 1]->MakeDefault(true);
	fButtons[count - 1]->MakeFocus(true);
}

//! Answers how wide the row of them is.
float
BAlert::SizeButtons()
{
	float widest = fButtonWidth == B_WIDTH_AS_USUAL ? kUsualButtonWidth : 0;
	const int32 count = CountButtons();
	for (int32 i = 0; i < count; i++) {
		fButtons[i]->ResizeToPreferred();
		widest = std::max(widest, fButtons[i]->Bounds().Width());
	}
	float sum = 0;
	for (int32 i = 0; i < count; i++) {
		if (fButtonWidth != B_WIDTH_FROM_LABEL)
			fButtons[i]->ResizeTo(widest, fButtons[i]->Bounds().Height());
		sum += fButtons[i]->Bounds().Width() + (i > 0 ? kButtonGap : 0);
	}
	return sum;
}

void
BAlert::PlaceButtons(float right, float top)
{
	for (int32 i = CountButtons() - 1; i >= 0; i--) {
		const float width = fButtons[i]->Bounds().Width();
		fButtons[i]->MoveTo(right - width, top);
		right -= width + kButtonGap;
	}
}

//! Broken where it is too wide, scrolled when it is too high.
BSize
BAlert::SizeText() const
{
	const BRect screen = BScreen().Frame();
	const float widest = std::min(kTextWidth, floorf(screen.Width() * 2 / 3));
	const float most = floorf(screen.Height() / 2);
	const auto size = ViewData::Of(fText).proxy->Ask<ServerTextArea>([=](ServerTextArea& area) {
		area.ensurePolished();
		const int width = std::min<int>(area.IdealWidth(), widest);
		return QSize(width + kTextRoom, area.HeightFor(width) + kTextRoom);
	});
	if (!size)
		return BSize(widest, 0);
	const bool isCut = size->height() - 1 > most;
	ViewData::Of(fText).proxy->Adjust<QPlainTextEdit>([isCut](QPlainTextEdit& edit) {
		edit.setVerticalScrollBarPolicy(isCut ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
	});
	const float bar = isCut ? kScrollBarRoom : 0;
	return BSize(size->width() - 1 + bar, std::min(size->height() - 1.0f, most));
}

void
BAlert::LayOut()
{
	const float buttonsWidth = SizeButtons();
	const BSize text = SizeText();
	float left = kMargin;
	float bottom = kMargin + text.height;
	float top = kMargin;
	if (fSign != NULL) {
		fSign->MoveTo(left, kMargin);
		fSign->ResizeTo(kSignSize - 1, kSignSize - 1);
		left += kSignSize + kMargin;
		// a short text stands beside the middle of the sign
		top += std::max(0.0f, floorf((kSignSize - 1 - text.height) / 2));
		bottom = std::max(bottom, kMargin + kSignSize - 1);
	}
	fText->MoveTo(left, top);
	fText->ResizeTo(text.width, text.height);
	bottom += kMargin + 1;
	const float width
		= std::max({kMinWidth, left + text.width + kMargin, buttonsWidth + 2 * kMargin});
	PlaceButtons(width - kMargin, bottom);
	const float buttonHeight = fButtons[0] != NULL ? fButtons[0]->Bounds().Height() : 0;
	ResizeTo(width, bottom + buttonHeight + kMargin);
}

//! In the middle of that window, as far as the screen allows, else somewhat above the screen's.
static BPoint
place_of(const BRect& box, const BRect& screen, const BWindow* around)
{
	BPoint place(screen.left + (screen.Width() - box.Width()) / 2,
		screen.top + (screen.Height() - box.Height()) / 3);
	if (around != NULL) {
		const BRect frame = around->Frame();
		place.x = frame.left + (frame.Width() - box.Width()) / 2;
		place.y = frame.top + (frame.Height() - box.Height()) / 2;
	}
	place.x = std::max(std::min(place.x, screen.right - box.Width()), screen.left);
	place.y = std::max(std::min(place.y, screen.bottom - box.Height()), screen.top);
	return BPoint(floorf(place.x), floorf(place.y));
}

void
BAlert::Open()
{
	LayOut();
	const auto* around = dynamic_cast<BWindow*>(LooperAccess::OfThisThread());
	if (around != NULL && (around->IsHidden() || around->IsMinimized()))
		around = NULL;
	MoveTo(place_of(Frame(), BScreen(this).Frame(), around));
	Show();
}

void
BAlert::MessageReceived(BMessage* message)
{
	if (message->what == kButtonPressed)
		ButtonPressed(message->GetInt32("which", -1));
	else
		BWindow::MessageReceived(message);
}

void
BAlert::DispatchMessage(BMessage* message, BHandler* target)
{
	int8 byte;
	if (message->what == B_KEY_DOWN && message->FindInt8("byte", &byte) == B_OK && byte != 0
		&& (message->GetInt32("modifiers", 0) & kCommandKeys) == 0) {
		for (int32 i = 0; i < CountButtons(); i++) {
			if (fKeys[i] == byte) {
				fButtons[i]->Invoke();
				return;
			}
		}
	}
	BWindow::DispatchMessage(message, target);
}

//! The first answer counts: a second key may have been pressed before the box is gone.
void
BAlert::ButtonPressed(int32 index)
{
	if (fWhich >= 0 || index < 0)
		return;
	fWhich = index;
	if (fInvoker != NULL && fInvoker->Message() != NULL) {
		BMessage message(*fInvoker->Message());
		message.AddInt32("which", index);
		fInvoker->Invoke(&message);
	}
	PostMessage(B_QUIT_REQUESTED);
}

void
BAlert::SetShortcut(int32 index, char key)
{
	if (index >= 0 && index < CountButtons())
		fKeys[index] = key;
}

char
BAlert::Shortcut(int32 index) const
{
	return index >= 0 && index < CountButtons() ? fKeys[index] : 0;
}

int32
BAlert::Go()
{
	// once it is open, it may be gone at any time
	const std::shared_ptr<UserAnswer> answer = fAnswer;
	const BMessenger box(this);
	auto* waiting = dynamic_cast<BWindow*>(LooperAccess::OfThisThread());
	Open();
	const std::optional<int64> which = answer->Wait([waiting] {
		if (waiting != NULL)
			waiting->UpdateIfNeeded();
	});
	if (!which)
		box.SendMessage(B_QUIT_REQUESTED);
	return which.value_or(-1);
}

status_t
BAlert::Go(BInvoker* invoker)
{
	fInvoker = invoker;
	Open();
	return B_OK;
}

BButton*
BAlert::ButtonAt(int32 index) const
{
	return index >= 0 && index < kMaxButtons ? fButtons[index] : NULL;
}

int32
BAlert::CountButtons() const
{
	return std::count_if(std::begin(fButtons), std::end(fButtons),
		[](const BButton* button) { return button != NULL; });
}

BTextView*
BAlert::TextView() const
{
	return fText;
}

alert_type
BAlert::Type() const
{
	return fType;
}
