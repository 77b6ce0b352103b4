#include "interface/ViewData.h"

#include <Alert.h>
#include <Button.h>
#include <Invoker.h>
#include <OS.h>
#include <QApplication>
#include <QLabel>
#include <QStyle>
#include <Screen.h>
#include <algorithm>
#include <atomic>

using namespace BPrivate;

namespace {

const uint32 kButtonPressed = '_alb'; // "which" (int32)
const float kMargin = 16;             // between the border, the parts and the buttons
const float kTextWidth = 360;         // longer lines are broken
const float kMinWidth = 200;
const int kSignSize = 32;
const bigtime_t kUpdateInterval = 50000; // µs, of a window that waits
const uint32 kCommandKeys = B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY;

//! A label that shows a text or a picture as it is.
class LabelView : public BView {
public:
	LabelView(const char* name, std::function<void(QLabel*)> setUp)
		: BView(BRect(), name, B_FOLLOW_NONE, B_WILL_DRAW)
	{
		ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
			WidgetProxy::MakerOf<QLabel>([setUp](QLabel* label, ProxySink*) { setUp(label); }),
			[](BMessage*) {}));
	}

	//! At its ease, but broken where it is wider than that.
	BSize SizeWithin(float width)
	{
		const auto size = ViewData::Of(this).proxy->Ask<QLabel>([width](QLabel& label) {
			label.setWordWrap(false);
			QSize ideal = label.sizeHint();
			if (ideal.width() > width) {
				label.setWordWrap(true);
				ideal = QSize(width, label.heightForWidth(width));
			}
			return ideal;
		});
		return size ? BSize(size->width() - 1, size->height() - 1) : BSize(width, 0);
	}
};

QStyle::StandardPixmap
picture_of(alert_type type)
{
	switch (type) {
		case B_WARNING_ALERT:
			return QStyle::SP_MessageBoxWarning;
		case B_STOP_ALERT:
			return QStyle::SP_MessageBoxCritical;
		default:
			return QStyle::SP_MessageBoxInformation;
	}
}

LabelView*
make_sign(alert_type type)
{
	return new LabelView("sign", [picture = picture_of(type)](QLabel* label) {
		label->setPixmap(QApplication::style()->standardIcon(picture).pixmap(kSignSize, kSignSize));
	});
}

LabelView*
make_text(const QString& text)
{
	return new LabelView("text", [text](QLabel* label) {
		label->setTextFormat(Qt::PlainText);
		label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
		label->setText(text);
	});
}

} // namespace

//! What Go() waits for; it outlives the box.
struct BPrivate::AlertAnswer {
	std::atomic<int32> which = -1;
	sem_id isThere = create_sem(0, "alert");

	~AlertAnswer() { delete_sem(isThere); }
};

BAlert::BAlert(const char* title, const char* text, const char* button1, const char* button2,
	const char* button3, button_width width, alert_type type)
	: BWindow(BRect(0, 0, kMinWidth, 99), title, B_MODAL_WINDOW,
		B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE | B_ASYNCHRONOUS_CONTROLS),
	  fAnswer(std::make_shared<AlertAnswer>())
{
	const char* labels[kMaxButtons] = {button1, button2, button3};
	const float buttonsWidth = AddButtons(labels, width);
	BView* sign = type != B_EMPTY_ALERT ? make_sign(type) : NULL;
	LayOut(sign, make_text(QString::fromUtf8(text)), buttonsWidth);
}

BAlert::~BAlert()
{
	release_sem(fAnswer->isThere);
}

//! In their order, not yet in their places; answers how wide the row of them is.
float
BAlert::AddButtons(const char* const labels[], button_width width)
{
	float widest = 0;
	float sum = 0;
	int32 count = 0;
	for (; count < kMaxButtons && labels[count] != NULL; count++) {
		BMessage* message = new BMessage(kButtonPressed);
		message->AddInt32("which", count);
		fButtons[count] = new BButton(BRect(), "button", labels[count], message);
		AddChild(fButtons[count]);
		fButtons[count]->ResizeToPreferred();
		widest = std::max(widest, fButtons[count]->Bounds().Width());
	}
	for (int32 i = 0; i < count; i++) {
		if (width != B_WIDTH_FROM_LABEL)
			fButtons[i]->ResizeTo(widest, fButtons[i]->Bounds().Height());
		sum += fButtons[i]->Bounds().Width() + kMargin / 2;
	}
	if (count > 0)
		fButtons[count - 1]->MakeDefault(true);
	return sum;
}

void
BAlert::LayOut(BView* sign, BView* text, float buttonsWidth)
{
	float left = kMargin;
	float bottom = kMargin;
	if (sign != NULL) {
		AddChild(sign);
		sign->MoveTo(left, kMargin);
		sign->ResizeTo(kSignSize, kSignSize);
		left += kSignSize + kMargin;
		bottom += kSignSize;
	}
	AddChild(text);
	const BSize size = static_cast<LabelView*>(text)->SizeWithin(kTextWidth);
	text->MoveTo(left, kMargin);
	text->ResizeTo(size.width, size.height);
	bottom = std::max(bottom, kMargin + size.height) + kMargin;

	const float width
		= std::max({kMinWidth, left + size.width + kMargin, buttonsWidth + 2 * kMargin});
	float right = width - kMargin;
	float height = bottom;
	for (int32 i = CountButtons() - 1; i >= 0; i--) {
		const BRect bounds = fButtons[i]->Bounds();
		fButtons[i]->MoveTo(right - bounds.Width(), bottom);
		right -= bounds.Width() + kMargin / 2;
		height = bottom + bounds.Height() + kMargin;
	}
	ResizeTo(width, height);
	const BRect screen = BScreen(this).Frame();
	MoveTo(floorf(screen.left + (screen.Width() - width) / 2),
		floorf(screen.top + std::max(0.0f, (screen.Height() - height) / 3)));
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
	int32 none = -1;
	if (!fAnswer->which.compare_exchange_strong(none, index))
		return;
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
	// From here on the box may be gone at any time.
	const std::shared_ptr<AlertAnswer> answer = fAnswer;
	BWindow* waiting = dynamic_cast<BWindow*>(BLooper::LooperForThread(find_thread(NULL)));
	Show();
	const bigtime_t interval = waiting != NULL ? kUpdateInterval : B_INFINITE_TIMEOUT;
	while (acquire_sem_etc(answer->isThere, 1, B_RELATIVE_TIMEOUT, interval) == B_TIMED_OUT)
		waiting->UpdateIfNeeded();
	return answer->which;
}

status_t
BAlert::Go(BInvoker* invoker)
{
	fInvoker = invoker;
	Show();
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
