#include "server/ServerWindow.h"

#include "server/X11Extras.h"

#include <AppDefs.h>
#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <QWindow>

namespace BPrivate {

static BRect
to_rect(const QRect& rect)
{
	return BRect(rect.left(), rect.top(), rect.right(), rect.bottom());
}

static bool
is_floating(window_feel feel)
{
	return feel == B_FLOATING_APP_WINDOW_FEEL || feel == B_FLOATING_SUBSET_WINDOW_FEEL
		|| feel == B_FLOATING_ALL_WINDOW_FEEL;
}

static bool
is_modal(window_feel feel)
{
	return feel == B_MODAL_APP_WINDOW_FEEL || feel == B_MODAL_SUBSET_WINDOW_FEEL
		|| feel == B_MODAL_ALL_WINDOW_FEEL;
}

ServerWindow::ServerWindow(const WindowTraits& traits, std::shared_ptr<EventPort> port,
	std::shared_ptr<FrameMailbox> mailbox)
	: fTraits(traits),
	  fPort(std::move(port)),
	  fCanvas(new Canvas(this, fPort, std::move(mailbox))),
	  fReported(traits.frame)
{
	fFlags = FlagsFor(traits);
	setWindowFlags(fFlags);
	setGeometry(traits.frame);
	fCanvas->setGeometry(rect());
	SetTraits(traits);
}

void
ServerWindow::SetShown(bool shown)
{
	if (!shown) {
		hide();
		return;
	}
	bool withoutFocus = (fTraits.flags & (B_AVOID_FRONT | B_AVOID_FOCUS)) != 0;
	setAttribute(Qt::WA_ShowWithoutActivating, withoutFocus);
	show();
	if (!withoutFocus) {
		raise();
		activateWindow();
	}
	// for when it becomes active, now or later
	if (focusWidget() == nullptr)
		fCanvas->setFocus();
}

void
ServerWindow::SetFrame(QRect frame, int64 generation)
{
	fGeneration = generation;
	bool moved = frame.topLeft() != fReported.topLeft();
	bool resized = frame.size() != fReported.size();
	ApplyLimits(frame.size());
	setGeometry(frame);
	// what the events have not told, because the window is hidden or stayed as it was
	ReportFrame(moved && frame.topLeft() != fReported.topLeft(),
		resized && frame.size() != fReported.size());
}

void
ServerWindow::SetTraits(const WindowTraits& traits)
{
	if (windowTitle() != traits.title)
		setWindowTitle(traits.title);
	fTraits = traits;
	ApplyLimits(size());
	setWindowModality(is_modal(traits.feel) ? Qt::ApplicationModal : Qt::NonModal);
	ApplyFlags();
}

//! A window that the user cannot size is one whose limits are its size.
void
ServerWindow::ApplyLimits(QSize size)
{
	QSize minimum = fTraits.minimum;
	QSize maximum = fTraits.maximum;
	if (fTraits.flags & (B_NOT_RESIZABLE | B_NOT_H_RESIZABLE)) {
		minimum.setWidth(size.width());
		maximum.setWidth(size.width());
	}
	if (fTraits.flags & (B_NOT_RESIZABLE | B_NOT_V_RESIZABLE)) {
		minimum.setHeight(size.height());
		maximum.setHeight(size.height());
	}
	// never a minimum above the maximum that still holds
	setMaximumSize(maximum.expandedTo(minimumSize()));
	setMinimumSize(minimum);
	setMaximumSize(maximum);
}

Qt::WindowFlags
ServerWindow::FlagsFor(const WindowTraits& traits) const
{
	Qt::WindowFlags flags = Qt::Window;
	switch (traits.look) {
		case B_NO_BORDER_WINDOW_LOOK:
		case B_BORDERED_WINDOW_LOOK:
			flags |= Qt::FramelessWindowHint;
			break;
		case B_FLOATING_WINDOW_LOOK:
			flags = Qt::Tool;
			break;
		case B_MODAL_WINDOW_LOOK:
			flags = Qt::Dialog;
			break;
		default:
			break;
	}
	if (!(flags & Qt::FramelessWindowHint)) {
		flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
		flags.setFlag(Qt::WindowCloseButtonHint, !(traits.flags & B_NOT_CLOSABLE));
		flags.setFlag(Qt::WindowMinimizeButtonHint, !(traits.flags & B_NOT_MINIMIZABLE));
		flags.setFlag(
			Qt::WindowMaximizeButtonHint, !(traits.flags & (B_NOT_ZOOMABLE | B_NOT_RESIZABLE)));
	}
	flags.setFlag(Qt::WindowStaysOnTopHint, is_floating(traits.feel));
	flags.setFlag(Qt::WindowDoesNotAcceptFocus, (traits.flags & B_AVOID_FOCUS) != 0);
	return flags;
}

/*!	On the QWindow, because QWidget::setWindowFlags() hides and recreates the window and shifts it
	by its border. */
void
ServerWindow::ApplyFlags()
{
	Qt::WindowFlags flags = FlagsFor(fTraits);
	if (flags == fFlags)
		return;
	fFlags = flags;
	if (windowHandle() != nullptr)
		windowHandle()->setFlags(flags);
	overrideWindowFlags(flags);
}

void
ServerWindow::SetMinimized(bool minimized)
{
	if (minimized == fMinimized)
		return;
	if (minimized)
		setWindowState(windowState() | Qt::WindowMinimized);
	else
		setWindowState(windowState() & ~Qt::WindowMinimized);
}

void
ServerWindow::Activate(bool activate)
{
	if (!activate) {
		lower();
		return;
	}
	raise();
	activateWindow();
}

void
ServerWindow::moveEvent(QMoveEvent*)
{
	ReportFrame(geometry().topLeft() != fReported.topLeft(), false);
}

void
ServerWindow::resizeEvent(QResizeEvent*)
{
	fCanvas->setGeometry(rect());
	ReportFrame(false, geometry().size() != fReported.size());
}

void
ServerWindow::ReportFrame(bool moved, bool resized)
{
	// only what is told now: of a move and a resize together each has its own event
	QRect now = geometry();
	if (moved)
		fReported.moveTopLeft(now.topLeft());
	if (resized)
		fReported.setSize(now.size());
	BMessage report;
	report.AddInt64("when", system_time());
	report.AddInt64("be:generation", fGeneration);
	QRect outer = windowHandle() != nullptr ? windowHandle()->frameGeometry() : now;
	report.AddRect("be:decor", to_rect(outer));
	report.AddRect("be:frame", to_rect(now));
	if (moved) {
		BMessage message(report);
		message.what = B_WINDOW_MOVED;
		message.AddPoint("where", BPoint(now.x(), now.y()));
		fPort->Send(std::move(message));
	}
	if (resized) {
		BMessage message(report);
		message.what = B_WINDOW_RESIZED;
		message.AddInt32("width", now.width() - 1);
		message.AddInt32("height", now.height() - 1);
		fPort->Send(std::move(message));
	}
}

void
ServerWindow::changeEvent(QEvent* event)
{
	QWidget::changeEvent(event);
	if (event->type() == QEvent::ActivationChange) {
		BMessage message(B_WINDOW_ACTIVATED);
		message.AddBool("active", isActiveWindow());
		fPort->Send(std::move(message));
	} else if (event->type() == QEvent::WindowStateChange && isMinimized() != fMinimized) {
		fMinimized = isMinimized();
		BMessage message(B_MINIMIZE);
		message.AddBool("minimize", fMinimized);
		fPort->Send(std::move(message));
	}
}

void
ServerWindow::closeEvent(QCloseEvent* event)
{
	event->ignore();
	BMessage message(B_QUIT_REQUESTED);
	fPort->Send(std::move(message));
}

void
ServerWindow::showEvent(QShowEvent* event)
{
	QWidget::showEvent(event);
	if (!fScreenWatched && windowHandle() != nullptr) {
		fScreenWatched = true;
		connect(windowHandle(), &QWindow::screenChanged, this, [this] { ReportScale(); });
	}
	ReportScale();
	if (is_floating(fTraits.feel) && fTraits.look == B_FLOATING_WINDOW_LOOK)
		X11Extras::SkipTaskbar(*this);
	if (fTraits.allWorkspaces)
		X11Extras::ShowOnAllWorkspaces(*this);
}

void
ServerWindow::ReportScale()
{
	float scale = devicePixelRatioF();
	if (scale == fScale)
		return;
	fScale = scale;
	BMessage message(kScaleMessage);
	message.AddFloat("be:scale", scale);
	fPort->Send(std::move(message));
}

void
ServerWindow::ReportScreen()
{
	BMessage message(B_SCREEN_CHANGED);
	message.AddRect("frame", to_rect(screen()->geometry()));
	message.AddInt32("mode", B_RGB32);
	fPort->Send(std::move(message));
	ReportScale();
}

void
ServerWindow::ReportScreenToAll()
{
	const QWidgetList widgets = QApplication::topLevelWidgets();
	for (QWidget* widget : widgets) {
		if (auto* window = dynamic_cast<ServerWindow*>(widget))
			window->ReportScreen();
	}
}

} // namespace BPrivate
