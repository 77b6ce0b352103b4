#include "framework/TQuestion.h"

#include <string>

#include <Alert.h>
#include <Invoker.h>
#include <Looper.h>
#include <Message.h>

#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TInterAppPrefs.h"
#include "framework/TLLT.h"
#include "framework/accelerator.h"
#include "framework/dialogs.h"

namespace merion {

namespace {

constexpr bigtime_t kAnswerTimeout
	= 1000000; // the owner's queue may be full, and it may be waiting for the box to end

std::string
label_of(const TQuestion::Button& button)
{
	const std::string_view key(&button.accelerator, button.accelerator != 0 ? 1 : 0);
	return merge_accelerator_key(
		gLLT->Text(button.labelKey), key, TIAPItemAccKeyFormat::Format(gIAP));
}

} // namespace

TQuestion::TQuestion() = default;

TQuestion::~TQuestion()
{
	Close();
}

void
TQuestion::Ask(const char* text, std::initializer_list<Button> buttons, const BMessage& answer,
	const BMessenger& target)
{
	Close();
	std::string labels[3];
	const char* texts[3] = {};
	std::string keys;
	for (const Button& button : buttons) {
		const size_t index = keys.size();
		labels[index] = label_of(button);
		texts[index] = labels[index].c_str();
		keys += button.accelerator != 0 ? button.accelerator : ' ';
	}
	auto* alert = new BAlert(gLLT->Text("Alert_Caption"), text, texts[0], texts[1], texts[2]);
	set_alert_keys(alert, keys.c_str());
	fInvoker = std::make_unique<BInvoker>(new BMessage(answer), target);
	fInvoker->SetTimeout(kAnswerTimeout);
	fBox = BMessenger(alert);
	alert->Go(fInvoker.get());
}

void
TQuestion::Tell(const char* text, Button button)
{
	Ask(text, {button}, BMessage(), BMessenger());
}

void
TQuestion::Close()
{
	if (fBox.LockTarget()) {
		BLooper* box;
		fBox.Target(&box);
		box->Quit();
	}
	fBox = BMessenger();
}

} // namespace merion
