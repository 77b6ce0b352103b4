#pragma once

#include <QColor>
#include <QImage>
#include <SupportDefs.h>
#include <mutex>
#include <optional>
#include <utility>

namespace BPrivate {

//! One complete picture of a window's drawn views.
struct Frame {
	QImage image;
	QColor rest; // of what the window has beyond the image while it is being resized
};

/*!	Where a window's thread leaves its frames and the server finds the newest: at most one job is on
	its way, however many frames are put. Any thread. */
class FrameMailbox {
public:
	//! True when a job that takes the frame must be posted.
	bool Put(Frame frame)
	{
		std::lock_guard lock(fMutex);
		if (fFrame)
			fSpare = std::move(fFrame->image);
		fFrame = std::move(frame);
		fCount++;
		return !std::exchange(fPosted, true);
	}
	std::optional<Frame> Take()
	{
		std::lock_guard lock(fMutex);
		fPosted = false;
		return std::exchange(fFrame, std::nullopt);
	}
	/*!	The server gives back the image of a frame that it shows no more, so that its memory serves
		again. */
	void GiveBack(QImage image)
	{
		std::lock_guard lock(fMutex);
		fSpare = std::move(image);
	}
	//! Null when there is none.
	QImage TakeSpare()
	{
		std::lock_guard lock(fMutex);
		return std::exchange(fSpare, QImage());
	}
	//! Frames put so far.
	int64 CountFrames() const
	{
		std::lock_guard lock(fMutex);
		return fCount;
	}

private:
	mutable std::mutex fMutex;
	std::optional<Frame> fFrame;
	QImage fSpare;
	int64 fCount = 0;
	bool fPosted = false;
};

} // namespace BPrivate
