#pragma once

#include "server/AccessibleTexts.h"
#include "server/EventPort.h"
#include "server/FrameMailbox.h"

#include <QElapsedTimer>
#include <QWidget>
#include <memory>

namespace BPrivate {

/*!	The content of a window: shows the newest frame that its thread drew, and turns the pointer, the
	keys and dragged files into messages.
	The window's controls are its children. Server thread only. */
class Canvas : public QWidget {
public:
	Canvas(QWidget* parent, std::shared_ptr<EventPort> port, std::shared_ptr<FrameMailbox> mailbox);

	//! Shows the newest frame, if there is one that it does not show yet.
	void TakeFrame();
	//! Frames shown so far.
	int64 CountPaints() const { return fPaints; }
	const std::shared_ptr<EventPort>& Port() const { return fPort; }
	/*!	How the pointer looks where no control is. `drag`: the drag that the view under the pointer has seen, whose
		files it refuses by the not-allowed one; 0: none. */
	void SetPointer(int32 cursorID, int64 drag);
	AccessibleTexts& Texts() { return fTexts; }

protected:
	void paintEvent(QPaintEvent* event) override;
	void mousePressEvent(QMouseEvent* event) override;
	void mouseDoubleClickEvent(QMouseEvent* event) override;
	void mouseReleaseEvent(QMouseEvent* event) override;
	void mouseMoveEvent(QMouseEvent* event) override;
	void leaveEvent(QEvent* event) override;
	void wheelEvent(QWheelEvent* event) override;
	void keyPressEvent(QKeyEvent* event) override;
	void keyReleaseEvent(QKeyEvent* event) override;
	void dragEnterEvent(QDragEnterEvent* event) override;
	void dragMoveEvent(QDragMoveEvent* event) override;
	void dragLeaveEvent(QDragLeaveEvent* event) override;
	void dropEvent(QDropEvent* event) override;

private:
	static bool IsForDefaultButton(const QKeyEvent& event);
	bool PressDefaultButton();
	void SendButton(uint32 what, QMouseEvent* event);
	void SendKey(bool down, QKeyEvent* event);
	void SendMove(QPointF where, QPointF screenWhere, Qt::MouseButtons buttons,
		Qt::KeyboardModifiers modifiers);
	int32 CountClicks(const QMouseEvent& event);

	std::shared_ptr<EventPort> fPort;
	std::shared_ptr<FrameMailbox> fMailbox;
	Frame fFront;
	int64 fPaints = 0;
	QElapsedTimer fSinceClick;
	QPoint fLastClick;
	Qt::MouseButton fLastButton = Qt::NoButton;
	int32 fClicks = 0;
	int64 fDrag = 0; // the newest drag's number
	bool fIsDragging = false;
	bool fIsDragRefused = false;
	AccessibleTexts fTexts{this};
};

} // namespace BPrivate
