#include "framework/TAppPrivacy.h"

merion::TAppPrivacy* gAppPrivacy = nullptr;

namespace merion {

TAppPrivacy::TAppPrivacy(std::function<std::string()> chosenFile)
	: fChosenFile(std::move(chosenFile))
{ }

void
TAppPrivacy::SetApplicationPath(const std::string& path)
{
	std::lock_guard locker(fLock);
	fFolder = language_folder(path);
}

std::string
TAppPrivacy::Folder() const
{
	std::lock_guard locker(fLock);
	return fFolder;
}

std::vector<language_file>
TAppPrivacy::Languages() const
{
	return list_languages(Folder());
}

std::string
TAppPrivacy::DesktopLanguage() const
{
	return desktop_language(Languages());
}

bool
TAppPrivacy::Load(TLLT* table)
{
	state current = CurrentState();
	const bool isLanguage = current.bytes.has_value() && load_language_text(*current.bytes, table);
	std::lock_guard locker(fLock);
	fLoaded = std::move(current);
	return isLanguage;
}

bool
TAppPrivacy::ShouldBeLanguageChanged() const
{
	const state current = CurrentState();
	std::lock_guard locker(fLock);
	return !fLoaded.has_value() || *fLoaded != current;
}

bool
TAppPrivacy::IsLoaded() const
{
	std::lock_guard locker(fLock);
	return fLoaded.has_value();
}

TAppPrivacy::state
TAppPrivacy::CurrentState() const
{
	state current{Folder(), ChosenFile(), std::nullopt};
	current.bytes = read_language_file(current.folder, current.name);
	return current;
}

} // namespace merion
