#pragma once

#include <initializer_list>
#include <memory>

#include <Messenger.h>

class BInvoker;
class BMessage;

namespace merion {

/*!	A box with a question, or a message, that nobody waits for: the window behind it goes on, and the answer comes as a
	message. There is one box at a time.
	Owner: whoever gets the answer; when it ends, so does the box that is still open. Thread: the owner's looper, locked. */
class TQuestion {
public:
	//! The text's key in gLLT, and the letter that presses it together with Command; 0 for none.
	struct Button {
		const char* labelKey;
		char accelerator;
	};

	TQuestion();
	~TQuestion();

	/*!	Opens it, in place of the one before, with one to three buttons. Return and Escape press the last one, which
		changes nothing. `answer` (copied) comes to the target with "which" (int32): the button's index. A box that is closed
		otherwise, and one that is replaced, does not answer. */
	void Ask(const char* text, std::initializer_list<Button> buttons, const BMessage& answer,
		const BMessenger& target);
	//! The same with one button, and no answer.
	void Tell(const char* text, Button button = {"Button_OK", 'O'});
	//! Closes it, unanswered, and returns when it is gone.
	void Close();

private:
	std::unique_ptr<BInvoker> fInvoker;
	BMessenger fBox; // may be gone
};

} // namespace merion
