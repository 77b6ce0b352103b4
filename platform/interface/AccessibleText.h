#pragma once

#include <Handler.h>
#include <QRect>
#include <memory>

class BView;

namespace BPrivate {

/*!	Brings the text of a drawn view to the desktop's screen readers and the like: what the view answers to scripts as the
	property "CurrentLine". The view sends a notice, of any code, when it has changed; one with a string of that name tells the
	new text at once.
	Thread: the view's window's. Owner: the view, while it is in a window. */
class AccessibleText : public BHandler {
public:
	//! Empty for a view that has no such property, or is never seen.
	static std::unique_ptr<AccessibleText> Of(BView* view);

	explicit AccessibleText(BView* view);
	~AccessibleText() override;

	//! In the window's coordinates; empty while nothing is to be seen of the view.
	void Place(QRect visible);
	void MessageReceived(BMessage* message) override;

private:
	static bool HasText(BView* view);
	void Ask();
	void Tell(const char* text);

	BView* const fView;
	const int64 fWindow; // the server's number
	const int64 fId;
	QRect fVisible;
};

} // namespace BPrivate
