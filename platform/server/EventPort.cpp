#include "server/EventPort.h"

#include <AppDefs.h>
#include <OS.h>

namespace BPrivate {

static constexpr int kRetryMs = 10;
// a move that nobody took for so long was thrown away by a message filter
static constexpr bigtime_t kLostAfter = 50000;

int64
MoveSlots::Put(const PointerMove& move)
{
	std::lock_guard lock(fMutex);
	bigtime_t now = system_time();
	auto open = fMoves.find(fOpen);
	if (open != fMoves.end() && now - fOpenSince < kLostAfter) {
		open->second = move;
		return 0;
	}
	// what is older than the lost one is lost too
	if (fMoves.size() > 16)
		fMoves.clear();
	fOpen = ++fLast;
	fOpenSince = now;
	fMoves[fOpen] = move;
	return fOpen;
}

void
MoveSlots::Seal()
{
	std::lock_guard lock(fMutex);
	fOpen = 0;
}

std::optional<PointerMove>
MoveSlots::Take(int64 slot)
{
	std::lock_guard lock(fMutex);
	auto found = fMoves.find(slot);
	if (found == fMoves.end())
		return std::nullopt;
	PointerMove move = found->second;
	fMoves.erase(fMoves.begin(), std::next(found));
	return move;
}

EventPort::EventPort(BMessenger window, std::shared_ptr<MoveSlots> moves)
	: fWindow(std::move(window)),
	  fMoves(std::move(moves))
{
	fRetry.setInterval(kRetryMs);
	QObject::connect(&fRetry, &QTimer::timeout, [this] { Resend(); });
}

void
EventPort::Send(BMessage message)
{
	Send(std::move(message), fWindow);
}

void
EventPort::Send(BMessage message, const BMessenger& target)
{
	fMoves->Seal();
	if (!message.HasInt64("when"))
		message.AddInt64("when", system_time());
	if (fWaiting.empty()
		&& target.SendMessage(&message, static_cast<BHandler*>(NULL), 0) != B_WOULD_BLOCK)
		return;
	if (!fWaiting.empty() && Replaces(fWaiting.back(), message))
		fWaiting.back().message = message;
	else
		fWaiting.push_back({target, message});
	fRetry.start();
}

void
EventPort::SendMove(const PointerMove& move)
{
	int64 slot = fMoves->Put(move);
	if (slot == 0)
		return;
	BMessage message(B_MOUSE_MOVED);
	message.AddInt64("when", move.when);
	message.AddInt64("be:slot", slot);
	message.AddPoint("be:window_where", BPoint(move.x, move.y));
	message.AddPoint("where", BPoint(move.x, move.y));
	message.AddPoint("screen_where", BPoint(move.screenX, move.screenY));
	message.AddInt32("buttons", move.buttons);
	message.AddInt32("modifiers", move.modifiers);
	message.AddInt64("be:drag", move.drag);
	// not by Send(): a move follows the moves before it anyway
	if (!fWaiting.empty()
		|| fWindow.SendMessage(&message, static_cast<BHandler*>(NULL), 0) == B_WOULD_BLOCK) {
		fWaiting.push_back({fWindow, message});
		fRetry.start();
	}
}

void
EventPort::Resend()
{
	while (!fWaiting.empty()) {
		Waiting& first = fWaiting.front();
		if (first.target.SendMessage(&first.message, static_cast<BHandler*>(NULL), 0)
			== B_WOULD_BLOCK)
			return;
		fWaiting.pop_front();
	}
	fRetry.stop();
}

//! Of two reports of one kind in a row, a window that is behind needs the newer only.
bool
EventPort::Replaces(const Waiting& last, const BMessage& message) const
{
	return last.message.what == message.what && last.target == fWindow
		&& (message.what == B_WINDOW_MOVED || message.what == B_WINDOW_RESIZED);
}

} // namespace BPrivate
