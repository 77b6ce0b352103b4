#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "framework/language_files.h"

namespace merion {

/*!	What an application knows of its languages: the folder "Language" beside it, which of its files the user has chosen,
	and what of that was loaded last.
	Thread: any; a lock inside. Owner: the application, for as long as its windows. */
class TAppPrivacy {
public:
	/*!	`chosenFile` answers the bare name of the file that the user has chosen. It is called from any thread, and must
		not call this object. */
	explicit TAppPrivacy(std::function<std::string()> chosenFile);

	//! The application's own file, beside which the folder lies. Empty: there are no languages.
	void SetApplicationPath(const std::string& path);
	std::string Folder() const;
	std::string ChosenFile() const { return fChosenFile(); }

	//! All that can be chosen now, in the order to show them in.
	std::vector<language_file> Languages() const;
	//! The bare name of the file in the desktop's language, empty without one.
	std::string DesktopLanguage() const;

	/*!	Loads the chosen file over the table's texts. False, and the table stays, when the file is not there or is no
		language file. Either way this is what was loaded last. */
	bool Load(TLLT* table);
	//! Whether the chosen file, or what it holds, is another than what was loaded last; true before the first Load().
	bool ShouldBeLanguageChanged() const;
	//! Whether Load() was called yet.
	bool IsLoaded() const;

private:
	//! A file as it was met; without bytes it could not be read.
	struct state {
		std::string folder;
		std::string name;
		std::optional<std::string> bytes;

		bool operator==(const state& other) const = default;
	};

	state CurrentState() const;

	const std::function<std::string()> fChosenFile;
	mutable std::mutex fLock; // guards the rest; not held while files are read
	std::string fFolder;
	std::optional<state> fLoaded;
};

} // namespace merion

//! The running application's; it makes and deletes it.
extern merion::TAppPrivacy* gAppPrivacy;
