#pragma once

#include <string>

#include <Message.h>
#include <Rect.h>

#include "framework/TShared.h"

class BView;

namespace merion {

/*!	A preference that all of the maker's applications share: a name, and a whole number from 0 to a maximum. In messages
	and in the file the value stands under the name.
	Thread: any, but what has to do with a control: that one's window's, locked. Owner: TInterAppPrefs. */
class TIAPItem {
public:
	//! `value`: until another one is loaded or set.
	TIAPItem(const char* name, int32 maximum, int32 value);
	virtual ~TIAPItem() = default;
	TIAPItem(const TIAPItem&) = delete;
	TIAPItem& operator=(const TIAPItem&) = delete;

	const char* Name() const { return fName.c_str(); }
	int32 Value() const { return fValue; }
	//! False, and nothing changes, when it is out of range.
	bool SetValue(int32 value);

	//! Puts the value into the message, in place of one that is there.
	bool Archive(BMessage* archive) const;
	//! False, and `value` stays, when the message has none for this item that it can take.
	bool FindValue(const BMessage& archive, int32* value) const;
	//! Takes it; otherwise false, and the value stays.
	bool Unarchive(const BMessage& archive);

	/*!	A new control for the common preferences window; its labels and value are set by UpdateControl(). Its changes are
		told to its window by kIAPControlChanged. The caller owns it. */
	virtual BView* CreateControl(BRect frame) const = 0;
	//! Shows the labels in the current language, and the value.
	virtual void UpdateControl(BView* control) const = 0;
	//! What the user has chosen there.
	virtual int32 ControlValue(BView* control) const = 0;

protected:
	//! The message that an item's control sends when the user has changed it.
	BMessage* NewControlMessage() const;

private:
	const std::string fName;
	const int32 fMaximum;
	TShared<int32> fValue;
};

//! The field of messages that names an item (string).
constexpr const char* kIAPSourceItem = "IAP:SrcIAPItem";

// An item's control -> its window: kIAPSourceItem. Then ControlValue() goes to TInterAppPrefs::ChangeValue().
constexpr uint32 kIAPControlChanged = 'iapc';

} // namespace merion
