#include <LocaleRoster.h>

#include <Message.h>
#include <stdlib.h>
#include <string>
#include <string_view>

namespace {

constexpr const char* kLanguageField = "language";

//! The value of the first variable that is set and not empty, "" without one.
std::string_view
first_value(std::initializer_list<const char*> variables)
{
	for (const char* variable : variables) {
		const char* value = getenv(variable);
		if (value != nullptr && value[0] != '\0')
			return value;
	}
	return {};
}

//! "de_DE" of "de_DE.UTF-8@euro"; "" of a locale that is nobody's language.
std::string
code_of(std::string_view locale)
{
	const std::string code(locale.substr(0, locale.find_first_of(".@")));
	return code == "C" || code == "POSIX" ? std::string() : code;
}

status_t
add_code(BMessage* message, const std::string& code)
{
	return code.empty() ? B_OK : message->AddString(kLanguageField, code.c_str());
}

} // namespace

BLocaleRoster*
BLocaleRoster::Default()
{
	static BLocaleRoster sRoster;
	return &sRoster;
}

status_t
BLocaleRoster::GetPreferredLanguages(BMessage* message) const
{
	if (message == NULL)
		return B_BAD_VALUE;
	message->RemoveName(kLanguageField);
	const std::string locale = code_of(first_value({"LC_ALL", "LC_MESSAGES", "LANG"}));
	if (locale.empty())
		return add_code(message, "en");

	// The list counts only beside a locale, as it does for all programs of the desktop.
	std::string_view list = first_value({"LANGUAGE"});
	status_t status = B_OK;
	while (!list.empty() && status == B_OK) {
		const size_t end = list.find(':');
		status = add_code(message, code_of(list.substr(0, end)));
		list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
	}
	return status == B_OK ? add_code(message, locale) : status;
}
