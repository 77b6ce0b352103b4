#include "prefs/TExitState.h"

#include "prefs/app_info.h"

TExitState* gExitState = nullptr;

namespace {

constexpr const char* kVersion = "_Ver";
constexpr const char* kWindowFrame = "_WFr";

} // namespace

bool
TExitState::Archive(BMessage* archive) const
{
	bool ok = TArchivable::Archive(archive);
	ok &= archive->AddString(kVersion, gAppVer) == B_OK;
	ok &= archive->AddRect(kWindowFrame, WindowFrame()) == B_OK;
	return ok;
}

bool
TExitState::Unarchive(const BMessage& archive)
{
	bool ok = TArchivable::Unarchive(archive);
	std::lock_guard locker(fLock);
	ok &= FindString(archive, kVersion, &fVersion) == B_OK;
	ok &= FindRect(archive, kWindowFrame, &fWindowFrame) == B_OK;
	return ok;
}

std::string
TExitState::Version() const
{
	std::lock_guard locker(fLock);
	return fVersion;
}

BRect
TExitState::WindowFrame() const
{
	std::lock_guard locker(fLock);
	return fWindowFrame;
}

void
TExitState::SetWindowFrame(BRect frame)
{
	std::lock_guard locker(fLock);
	fWindowFrame = frame;
}
