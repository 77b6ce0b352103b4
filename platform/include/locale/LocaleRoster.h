#pragma once

#include <SupportDefs.h>

class BMessage;

/*!	What the user has set about languages. Any thread; it lasts as long as the process. */
class BLocaleRoster {
public:
	static BLocaleRoster* Default();

	/*!	Replaces "language" (strings) by the codes of the user's languages, the preferred one first,
		at least one: "ja", "pt_BR". They are those of $LANGUAGE, then that of $LC_ALL, $LC_MESSAGES
		or $LANG, the first that is set; "en" when that one is "C" or none is. B_BAD_VALUE for NULL. */
	status_t GetPreferredLanguages(BMessage* message) const;

private:
	BLocaleRoster() = default;
};
