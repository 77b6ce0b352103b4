#include "lyrics/TTavoraDView.h"

#include <AppDefs.h>
#include <Bitmap.h>
#include <Message.h>
#include <PropertyInfo.h>

#include "lyrics/lyrics_codes.h"

namespace {

const property_info kProperties[] = {
	{kCurrentLineProperty, {B_GET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0},
		"The lyrics line that is being sung.", 0, {B_STRING_TYPE}},
	{},
};

} // namespace

std::string
TTavoraDView::CurrentLineText() const
{
	if (!fShowsLyrics || fCurrentLine >= CountDispLines())
		return {};
	return std::string(DispLine(fCurrentLine));
}

void
TTavoraDView::CurrentLineChanged()
{
	if (!IsWatched())
		return;
	BMessage notice(kCurrentLineChanged);
	notice.AddString(kCurrentLineProperty, CurrentLineText().c_str());
	notice.AddInt32("Index", fCurrentLine);
	SendNotices(kCurrentLineChanged, &notice);
}

BHandler*
TTavoraDView::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	BPropertyInfo properties(const_cast<property_info*>(kProperties));
	if (properties.FindMatch(message, index, specifier, form, property) >= 0)
		return this;
	return TMERView::ResolveSpecifier(message, index, specifier, form, property);
}

status_t
TTavoraDView::GetSupportedSuites(BMessage* data)
{
	BPropertyInfo properties(const_cast<property_info*>(kProperties));
	data->AddString("suites", "suite/vnd.MERION-TavoraDisplayer");
	data->AddFlat("messages", &properties);
	return TMERView::GetSupportedSuites(data);
}

bool
TTavoraDView::PropertyRequested(BMessage* message)
{
	int32 index;
	BMessage specifier;
	int32 form;
	const char* property;
	BPropertyInfo properties(const_cast<property_info*>(kProperties));
	if (message->GetCurrentSpecifier(&index, &specifier, &form, &property) != B_OK
		|| properties.FindMatch(message, index, &specifier, form, property) < 0)
		return false;

	BMessage reply(B_REPLY);
	reply.AddString("result", CurrentLineText().c_str());
	reply.AddInt32("error", B_OK);
	message->SendReply(&reply);
	return true;
}
