#include "framework/TIAPItem.h"

namespace merion {

TIAPItem::TIAPItem(const char* name, int32 maximum, int32 value)
	: fName(name),
	  fMaximum(maximum),
	  fValue(value)
{ }

bool
TIAPItem::SetValue(int32 value)
{
	if (value < 0 || value > fMaximum)
		return false;
	fValue = value;
	return true;
}

bool
TIAPItem::Archive(BMessage* archive) const
{
	archive->RemoveName(Name());
	return archive->AddInt32(Name(), Value()) == B_OK;
}

bool
TIAPItem::FindValue(const BMessage& archive, int32* value) const
{
	int32 found;
	if (archive.FindInt32(Name(), &found) != B_OK || found < 0 || found > fMaximum)
		return false;
	*value = found;
	return true;
}

bool
TIAPItem::Unarchive(const BMessage& archive)
{
	int32 value;
	return FindValue(archive, &value) && SetValue(value);
}

BMessage*
TIAPItem::NewControlMessage() const
{
	auto* message = new BMessage(kIAPControlChanged);
	message->AddString(kIAPSourceItem, Name());
	return message;
}

} // namespace merion
