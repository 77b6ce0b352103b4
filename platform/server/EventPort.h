#pragma once

#include <Message.h>
#include <Messenger.h>
#include <QTimer>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace BPrivate {

// Messages between the server and the windows' side, all but the first with "when" (int64).
enum {
	kUpdateMessage = '_UPD', // the window to itself: draw what is invalid
	kScaleMessage = '_SCL',  // "be:scale" float: the window is now on a screen of that scale
	kFilesDragged
	= '_FDG', // "path" strings, "be:drag" int64: the number by which the moves name them
	kFilesDropped = '_FDP', // "be:window_where", "screen_where" points, "path" strings
	kProxyEvent = '_PXY',   // a control's: "be:serial" int64 and its own
	kProxyFocus = '_PXF',   // the control got the focus
};

//! A pointer's move, as the window that it is for will see it.
struct PointerMove {
	float x;
	float y;
	float screenX;
	float screenY;
	uint32 buttons;
	uint32 modifiers;
	int64 when;
	int64 drag; // of kFilesDragged; 0: nothing is dragged
};

/*!	Keeps moves of the pointer from filling the queue of a window that is busy: while one move's
	message waits, newer moves go into its slot here. Any thread. */
class MoveSlots {
public:
	//! The number of the slot to send a message for, or 0 when one that waits takes it along.
	int64 Put(const PointerMove& move);
	//! What comes from now on must not overtake what was put before.
	void Seal();
	//! The newest state of the slot; nothing if it was taken already.
	std::optional<PointerMove> Take(int64 slot);

private:
	std::mutex fMutex;
	std::map<int64, PointerMove> fMoves;
	int64 fOpen = 0;
	int64 fOpenSince = 0;
	int64 fLast = 0;
};

/*!	Sends the events of one window to its loopers' side; never waits: what does not fit into the
	queue is sent later, in order.
	Server thread only. */
class EventPort {
public:
	EventPort(BMessenger window, std::shared_ptr<MoveSlots> moves);

	//! To the window itself.
	void Send(BMessage message);
	//! To one of its handlers. Nothing happens when it, or the window, is gone.
	void Send(BMessage message, const BMessenger& target);
	void SendMove(const PointerMove& move);

private:
	struct Waiting {
		BMessenger target;
		BMessage message;
	};

	void Resend();
	bool Replaces(const Waiting& last, const BMessage& message) const;

	BMessenger fWindow;
	std::shared_ptr<MoveSlots> fMoves;
	std::deque<Waiting> fWaiting;
	QTimer fRetry;
};

} // namespace BPrivate
