#pragma once

#include "server/Canvas.h"

#include <Window.h>

namespace BPrivate {

//! What a window is made of, as its loopers' side knows it; kept in step by jobs.
struct WindowTraits {
	QRect frame; // of the content
	QString title;
	window_look look = B_TITLED_WINDOW_LOOK;
	window_feel feel = B_NORMAL_WINDOW_FEEL;
	uint32 flags = 0;
	bool allWorkspaces = false;
	QSize minimum{1, 1};
	QSize maximum{16383, 16383};
};

/*!	A window of the desktop. It never closes by itself: its looper decides. Server thread only.
	Reports to its port: B_WINDOW_MOVED, B_WINDOW_RESIZED (with "be:generation", the number of the
	last SetFrame() it had seen, and "be:decor", the frame with the border), B_WINDOW_ACTIVATED,
	B_MINIMIZE, B_SCREEN_CHANGED, kScaleMessage and B_QUIT_REQUESTED. */
class ServerWindow : public QWidget {
public:
	ServerWindow(const WindowTraits& traits, std::shared_ptr<EventPort> port,
		std::shared_ptr<FrameMailbox> mailbox);

	Canvas* Content() const { return fCanvas; }
	void SetShown(bool shown);
	//! Moves and sizes it; the report that comes in any case has the generation.
	void SetFrame(QRect frame, int64 generation);
	void SetTraits(const WindowTraits& traits);
	void SetMinimized(bool minimized);
	void Activate(bool activate);
	//! The screens have changed.
	void ReportScreen();

	static void ReportScreenToAll();

protected:
	void moveEvent(QMoveEvent* event) override;
	void resizeEvent(QResizeEvent* event) override;
	void changeEvent(QEvent* event) override;
	void closeEvent(QCloseEvent* event) override;
	void showEvent(QShowEvent* event) override;

private:
	Qt::WindowFlags FlagsFor(const WindowTraits& traits) const;
	void ApplyFlags();
	void ApplyLimits(QSize size);
	void ReportFrame(bool moved, bool resized);
	void ReportScale();

	WindowTraits fTraits;
	std::shared_ptr<EventPort> fPort;
	Canvas* fCanvas;
	Qt::WindowFlags fFlags;
	QRect fReported;
	int64 fGeneration = 0;
	float fScale = 0;
	bool fMinimized = false;
	bool fScreenWatched = false;
};

} // namespace BPrivate
