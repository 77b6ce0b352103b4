#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <Message.h>
#include <Messenger.h>
#include <Rect.h>

#include "framework/TIAPItem.h"
#include "framework/TIAPPort.h"

namespace merion {

/*!	The preferences that all of the maker's applications share. A change made in one is stored (common_prefs_file.h),
	told to the application itself by kIAPChanged, and sent to the ports of the others (TIAPPort), which tell theirs.
	kIAPChanged has kIAPSourceItem and the value under the item's name; who gets it calls SetValue().
	Thread: any; a lock inside, and values go out as copies. Owner: an application keeps it to its end; an add-on, which
	is unloaded before, calls Stop(). */
class TInterAppPrefs {
public:
	TInterAppPrefs();
	~TInterAppPrefs();
	TInterAppPrefs(const TInterAppPrefs&) = delete;
	TInterAppPrefs& operator=(const TInterAppPrefs&) = delete;

	/*!	The application's signature, of which the name of its port is made. From now on changes of others are heard of;
		where no port can be had, they are not. The BApplication must exist. Once. */
	void SetAppSignatureRef(const char* signature);
	//! Takes the item over, and loads its value. The item stays for as long as this object.
	void AddItem(TIAPItem* item);
	/*!	How the application tells its user that a change made in the window could not be stored; without it nobody does. Before the first
		ShowWindow(). Thread of the calls: the window's. */
	void SetFailureReport(std::function<void()> report);
	int32 CountItems() const;
	//! In the order of adding; NULL when out of range.
	TIAPItem* ItemAt(int32 index) const;
	TIAPItem* FindItem(const char* name) const;

	//! B_NAME_NOT_FOUND without such an item, and nothing is written.
	[[nodiscard]] status_t GetValue(const char* name, int32* value) const;
	//! Puts the value into the message, under the item's name.
	[[nodiscard]] status_t GetValue(const char* name, BMessage* value) const;

	/*!	Takes the value of the item that a kIAPChanged names. B_NAME_NOT_FOUND: it names none of ours, B_BAD_VALUE: no
		value that the item can take. */
	status_t SetValue(const BMessage& message);
	/*!	The user has changed it here: takes, stores and tells it. B_NAME_NOT_FOUND, B_BAD_VALUE (out of range): nothing
		has happened. Any other error is one of storing: the others know the value, but it will not last. */
	[[nodiscard]] status_t ChangeValue(const char* name, int32 value);

	// The window in which the user changes them. Thread: of one looper only, which holds no lock of the window.

	//! Shows it beside the frame; it is made with the items that there are then.
	void ShowWindow(BRect beside);
	//! Hides it, when it may come again (`hideOnly`); else ends it. Nothing when there is none.
	void CloseWindow(bool hideOnly);
	//! For what it is to hear of: kLanguageChanged (SetValue() tells it of values). Nothing when there is none. Any thread.
	void PostToWindow(BMessage* message) const;
	//! For the window: its change could not be stored.
	void ReportFailure() const;

	/*!	Ends the thread, for good: when it returns, nothing of this object runs or will. Not with a lock that the
		application's looper may wait for, and not on the thread that reads the port. May be called twice. */
	void Stop();

private:
	void ChangedByOthers(const BMessage& message) const;
	TIAPItem* SourceItem(const BMessage& message) const;
	BMessenger Window() const;

	mutable std::mutex fLock; // guards the list and the messenger; the items guard themselves
	std::vector<std::unique_ptr<TIAPItem>> fItems;
	BMessenger fWindow; // to it, guarded by fLock
	std::function<void()> fFailureReport;
	std::mutex
		fPortLock; // guards the port, also while something is sent; its reader never takes it
	std::unique_ptr<TIAPPort> fPort; // null before SetAppSignatureRef() and after Stop()
};

} // namespace merion

//! The running application's; it makes it.
extern merion::TInterAppPrefs* gIAP;
