#include "framework/TInterAppPrefs.h"

#include <cstring>
#include <utility>

#include <Application.h>

#include "framework/TIAPWin.h"
#include "framework/common_prefs_file.h"
#include "framework/framework_codes.h"

merion::TInterAppPrefs* gIAP = nullptr;

namespace merion {

namespace {

BMessage
notice_of(const char* item, int32 value)
{
	BMessage notice(kIAPChanged);
	notice.AddString(kIAPSourceItem, item);
	notice.AddInt32(item, value);
	return notice;
}

void
tell_application(BMessage* notice)
{
	// an application that does nothing for so long must not keep the sender
	constexpr bigtime_t kPatience = 500000; // µs
	be_app_messenger.SendMessage(notice, static_cast<BHandler*>(nullptr), kPatience);
}

} // namespace

TInterAppPrefs::TInterAppPrefs() = default;

TInterAppPrefs::~TInterAppPrefs()
{
	Stop();
}

void
TInterAppPrefs::SetAppSignatureRef(const char* signature)
{
	std::lock_guard locker(fPortLock);
	fPort = std::make_unique<TIAPPort>(
		signature, [this](const BMessage& message) { ChangedByOthers(message); });
}

void
TInterAppPrefs::AddItem(TIAPItem* item)
{
	item->Unarchive(load_common_prefs());
	std::lock_guard locker(fLock);
	fItems.emplace_back(item);
}

void
TInterAppPrefs::SetFailureReport(std::function<void()> report)
{
	fFailureReport = std::move(report);
}

int32
TInterAppPrefs::CountItems() const
{
	std::lock_guard locker(fLock);
	return static_cast<int32>(fItems.size());
}

TIAPItem*
TInterAppPrefs::ItemAt(int32 index) const
{
	std::lock_guard locker(fLock);
	return index >= 0 && index < static_cast<int32>(fItems.size()) ? fItems[index].get() : nullptr;
}

TIAPItem*
TInterAppPrefs::FindItem(const char* name) const
{
	std::lock_guard locker(fLock);
	for (const auto& item : fItems) {
		if (strcmp(item->Name(), name) == 0)
			return item.get();
	}
	return nullptr;
}

status_t
TInterAppPrefs::GetValue(const char* name, int32* value) const
{
	const TIAPItem* item = FindItem(name);
	if (item == nullptr)
		return B_NAME_NOT_FOUND;
	*value = item->Value();
	return B_OK;
}

status_t
TInterAppPrefs::GetValue(const char* name, BMessage* value) const
{
	const TIAPItem* item = FindItem(name);
	if (item == nullptr)
		return B_NAME_NOT_FOUND;
	return item->Archive(value) ? B_OK : B_NO_MEMORY;
}

status_t
TInterAppPrefs::SetValue(const BMessage& message)
{
	TIAPItem* item = SourceItem(message);
	if (item == nullptr)
		return B_NAME_NOT_FOUND;
	if (!item->Unarchive(message))
		return B_BAD_VALUE;
	BMessage notice = notice_of(item->Name(), item->Value());
	PostToWindow(&notice);
	return B_OK;
}

status_t
TInterAppPrefs::ChangeValue(const char* name, int32 value)
{
	TIAPItem* item = FindItem(name);
	if (item == nullptr)
		return B_NAME_NOT_FOUND;
	if (!item->SetValue(value))
		return B_BAD_VALUE;

	BMessage notice = notice_of(name, value);
	const status_t status = save_common_pref(notice, name);
	tell_application(&notice);
	std::lock_guard locker(fPortLock);
	if (fPort != nullptr)
		fPort->SendToOthers(notice);
	return status;
}

void
TInterAppPrefs::ShowWindow(BRect beside)
{
	BLooper* looper = nullptr;
	const BMessenger known = Window();
	if (known.LockTarget()) {
		known.Target(&looper);
		static_cast<TIAPWin*>(looper)->Appear();
		looper->Unlock();
		return;
	}
	auto* window = new TIAPWin(this);
	{
		std::lock_guard locker(fLock);
		fWindow = BMessenger(window);
	}
	window->SetPos(beside.IsValid(), beside);
	window->Appear();
}

void
TInterAppPrefs::CloseWindow(bool hideOnly)
{
	const BMessenger known = Window();
	BLooper* looper = nullptr;
	if (!known.LockTarget())
		return;
	known.Target(&looper);
	auto* window = static_cast<TIAPWin*>(looper);
	if (!hideOnly) {
		window->Quit();
		return;
	}
	if (!window->IsHidden())
		window->Hide();
	window->Unlock();
}

void
TInterAppPrefs::PostToWindow(BMessage* message) const
{
	Window().SendMessage(message, static_cast<BHandler*>(nullptr), 0);
}

void
TInterAppPrefs::ReportFailure() const
{
	if (fFailureReport)
		fFailureReport();
}

BMessenger
TInterAppPrefs::Window() const
{
	std::lock_guard locker(fLock);
	return fWindow;
}

void
TInterAppPrefs::Stop()
{
	std::lock_guard locker(fPortLock);
	fPort.reset();
}

//! On the thread of the port. The application gets what it knows and no more, whatever was sent.
void
TInterAppPrefs::ChangedByOthers(const BMessage& message) const
{
	const TIAPItem* item = SourceItem(message);
	int32 value;
	if (item == nullptr || !item->FindValue(message, &value))
		return;
	BMessage notice = notice_of(item->Name(), value);
	tell_application(&notice);
}

TIAPItem*
TInterAppPrefs::SourceItem(const BMessage& message) const
{
	const char* name = nullptr;
	return message.FindString(kIAPSourceItem, &name) == B_OK ? FindItem(name) : nullptr;
}

} // namespace merion
