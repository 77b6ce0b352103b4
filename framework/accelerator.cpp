#include "framework/accelerator.h"

namespace merion {

namespace {

// Takes the ellipsis, in either spelling, off the label.
std::string_view
take_ellipsis(std::string_view* label)
{
	for (const std::string_view ellipsis : {"…", "..."}) {
		if (label->ends_with(ellipsis)) {
			label->remove_suffix(ellipsis.size());
			return ellipsis;
		}
	}
	return {};
}

} // namespace

std::string
merge_accelerator_key(std::string_view label, std::string_view key, int32 format)
{
	if (key.empty() || (format != kAccKeyInBrackets && format != kAccKeyWithModifier))
		return std::string(label);
	std::string_view ellipsis;
	if (format == kAccKeyInBrackets)
		ellipsis = take_ellipsis(&label);
	std::string merged(label);
	if (format == kAccKeyInBrackets)
		merged.append(" (").append(key).append(")").append(ellipsis);
	else
		merged.append("  Alt+").append(key);
	return merged;
}

} // namespace merion
