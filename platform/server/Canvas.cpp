#include "server/Canvas.h"

#include "server/Keys.h"

#include <AppDefs.h>
#include <Cursor.h>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QStyleHints>
#include <QSysInfo>
#include <View.h>

namespace BPrivate {

static constexpr int kDoubleClickDistance = 5;
// Qt counts a wheel in eighths of a degree, a notch has 15 degrees
static constexpr float kWheelNotch = 120;

Canvas::Canvas(
	QWidget* parent, std::shared_ptr<EventPort> port, std::shared_ptr<FrameMailbox> mailbox)
	: QWidget(parent),
	  fPort(std::move(port)),
	  fMailbox(std::move(mailbox))
{
	setAttribute(Qt::WA_OpaquePaintEvent);
	setAttribute(Qt::WA_NoSystemBackground);
	setMouseTracking(true);
	setFocusPolicy(Qt::ClickFocus);
	setAcceptDrops(true);
	fFront.rest = palette().color(QPalette::Window);
}

void
Canvas::TakeFrame()
{
	std::optional<Frame> frame = fMailbox->Take();
	if (!frame)
		return;
	fMailbox->GiveBack(std::exchange(fFront, std::move(*frame)).image);
	update();
}

void
Canvas::paintEvent(QPaintEvent*)
{
	QPainter painter(this);
	painter.setCompositionMode(QPainter::CompositionMode_Source);
	QSizeF drawn = fFront.image.deviceIndependentSize();
	if (drawn.width() < width() || drawn.height() < height())
		painter.fillRect(rect(), fFront.rest);
	painter.drawImage(0, 0, fFront.image);
	fPaints++;
}

void
Canvas::mousePressEvent(QMouseEvent* event)
{
	fClicks = CountClicks(*event);
	SendButton(B_MOUSE_DOWN, event);
}

void
Canvas::mouseDoubleClickEvent(QMouseEvent* event)
{
	mousePressEvent(event);
}

void
Canvas::mouseReleaseEvent(QMouseEvent* event)
{
	SendButton(B_MOUSE_UP, event);
}

void
Canvas::mouseMoveEvent(QMouseEvent* event)
{
	SendMove(event->position(), event->globalPosition(), event->buttons(), event->modifiers());
}

//! A move to nowhere, so that the view that had the pointer learns that it has left.
void
Canvas::leaveEvent(QEvent*)
{
	QPoint screenWhere = QCursor::pos();
	QPointF where = mapFromGlobal(screenWhere);
	if (childAt(where.toPoint()) != nullptr || rect().contains(where.toPoint()))
		where = QPointF(-1, -1);
	SendMove(
		where, screenWhere, QGuiApplication::mouseButtons(), QGuiApplication::keyboardModifiers());
}

void
Canvas::wheelEvent(QWheelEvent* event)
{
	BMessage message(B_MOUSE_WHEEL_CHANGED);
	message.AddFloat("be:wheel_delta_x", -event->angleDelta().x() / kWheelNotch);
	message.AddFloat("be:wheel_delta_y", -event->angleDelta().y() / kWheelNotch);
	message.AddPoint("be:window_where", BPoint(event->position().x(), event->position().y()));
	fPort->Send(std::move(message));
}

//! What the control with the focus has no use for comes here.
void
Canvas::keyPressEvent(QKeyEvent* event)
{
	if (!IsForDefaultButton(*event) || !PressDefaultButton())
		SendKey(true, event);
}

void
Canvas::keyReleaseEvent(QKeyEvent* event)
{
	// the keyboard's repeat lets go of the key in between only for those who did not ask
	if (!event->isAutoRepeat())
		SendKey(false, event);
}

bool
Canvas::IsForDefaultButton(const QKeyEvent& event)
{
	return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) && !event.isAutoRepeat()
		&& (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

//! False when the window has none to be pressed.
bool
Canvas::PressDefaultButton()
{
	const auto buttons = findChildren<QPushButton*>();
	for (QPushButton* button : buttons) {
		if (button->isDefault() && button->isVisible() && button->isEnabled()) {
			button->animateClick();
			return true;
		}
	}
	return false;
}

void
Canvas::SendButton(uint32 what, QMouseEvent* event)
{
	QPointF where = event->position();
	BMessage message(what);
	message.AddPoint("where", BPoint(where.x(), where.y()));
	message.AddPoint("be:window_where", BPoint(where.x(), where.y()));
	message.AddPoint(
		"screen_where", BPoint(event->globalPosition().x(), event->globalPosition().y()));
	message.AddInt32("buttons", platform_buttons(event->buttons()));
	message.AddInt32("modifiers", platform_modifiers(event->modifiers()));
	if (what == B_MOUSE_DOWN)
		message.AddInt32("clicks", fClicks);
	fPort->Send(std::move(message));
}

void
Canvas::SendKey(bool down, QKeyEvent* event)
{
	PlatformKey key = platform_key(*event);
	bool mapped = !key.bytes.isEmpty();
	uint32 mappedWhat = down ? B_KEY_DOWN : B_KEY_UP;
	uint32 unmappedWhat = down ? B_UNMAPPED_KEY_DOWN : B_UNMAPPED_KEY_UP;
	BMessage message(mapped ? mappedWhat : unmappedWhat);
	message.AddInt32("key", key.code);
	message.AddInt32("modifiers", platform_modifiers(event->modifiers()));
	if (mapped) {
		message.AddInt32("raw_char", key.rawChar);
		for (char byte : key.bytes)
			message.AddInt8("byte", byte);
		message.AddString("bytes", key.bytes.constData());
		if (event->isAutoRepeat())
			message.AddInt32("be:key_repeat", event->count());
	}
	fPort->Send(std::move(message));
}

void
Canvas::SendMove(
	QPointF where, QPointF screenWhere, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
	PointerMove move;
	move.x = where.x();
	move.y = where.y();
	move.screenX = screenWhere.x();
	move.screenY = screenWhere.y();
	move.buttons = platform_buttons(buttons);
	move.modifiers = platform_modifiers(modifiers);
	move.when = system_time();
	move.drag = fIsDragging ? fDrag : 0;
	fPort->SendMove(move);
}

int32
Canvas::CountClicks(const QMouseEvent& event)
{
	bool again = event.button() == fLastButton && fSinceClick.isValid()
		&& fSinceClick.elapsed() <= QGuiApplication::styleHints()->mouseDoubleClickInterval()
		&& (event.position().toPoint() - fLastClick).manhattanLength() <= kDoubleClickDistance;
	fSinceClick.restart();
	fLastClick = event.position().toPoint();
	fLastButton = event.button();
	return again ? fClicks + 1 : 1;
}

static bool
is_on_this_machine(const QUrl& url)
{
	const QString host = url.host();
	return url.isLocalFile()
		&& (host.isEmpty() || host == "localhost" || host == QSysInfo::machineHostName());
}

//! The local files of a drag, byte by byte as they are named: a name need be no text.
static BMessage
dragged_files(uint32 what, const QMimeData* data)
{
	BMessage message(what);
	const QList<QUrl> urls = data->urls();
	for (const QUrl& url : urls) {
		if (is_on_this_machine(url))
			message.AddString("path",
				QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8()).constData());
	}
	return message;
}

//! Never a move: the program that drags would delete its file.
static void
accept_as_copy(QDropEvent* event)
{
	event->setDropAction(Qt::CopyAction);
	event->accept();
}

/*!	Taken in any case, so that the moves are told; the view answers to those. */
void
Canvas::dragEnterEvent(QDragEnterEvent* event)
{
	BMessage files = dragged_files(kFilesDragged, event->mimeData());
	fIsDragging = files.HasString("path") && (event->possibleActions() & Qt::CopyAction);
	fIsDragRefused = false;
	if (!fIsDragging) {
		event->ignore();
		return;
	}
	files.AddInt64("be:drag", ++fDrag);
	fPort->Send(std::move(files));
	dragMoveEvent(event);
}

//! As the view has answered last; until it has answered, files are welcome.
void
Canvas::dragMoveEvent(QDragMoveEvent* event)
{
	event->ignore();
	if (!fIsDragging)
		return;
	if (!fIsDragRefused)
		accept_as_copy(event);
	SendMove(
		event->position(), mapToGlobal(event->position()), event->buttons(), event->modifiers());
}

void
Canvas::dragLeaveEvent(QDragLeaveEvent*)
{
	leaveEvent(nullptr);
	fIsDragging = false;
}

void
Canvas::dropEvent(QDropEvent* event)
{
	event->ignore();
	if (!fIsDragging || fIsDragRefused) {
		dragLeaveEvent(nullptr);
		return;
	}
	fIsDragging = false;
	BMessage files = dragged_files(kFilesDropped, event->mimeData());
	if (!files.HasString("path"))
		return;
	accept_as_copy(event);
	const QPointF screenWhere = mapToGlobal(event->position());
	files.AddPoint("be:window_where", BPoint(event->position().x(), event->position().y()));
	files.AddPoint("screen_where", BPoint(screenWhere.x(), screenWhere.y()));
	fPort->Send(std::move(files));
}

static Qt::CursorShape
shape_of(int32 cursorID)
{
	switch (cursorID) {
		case B_CURSOR_ID_I_BEAM:
			return Qt::IBeamCursor;
		case B_CURSOR_ID_COPY:
			return Qt::DragCopyCursor;
		case B_CURSOR_ID_MOVE:
			return Qt::SizeAllCursor;
		case B_CURSOR_ID_NOT_ALLOWED:
			return Qt::ForbiddenCursor;
		default:
			return Qt::ArrowCursor;
	}
}

void
Canvas::SetPointer(int32 cursorID, int64 drag)
{
	if (cursor().shape() != shape_of(cursorID))
		setCursor(shape_of(cursorID));
	if (fIsDragging && drag == fDrag)
		fIsDragRefused = cursorID == B_CURSOR_ID_NOT_ALLOWED;
}

} // namespace BPrivate
