#include "song_tags.h"

#include <fileref.h>
#include <filesystem>
#include <tpropertymap.h>

namespace {

constexpr const char* kBetweenNames = ";"; // of several artists; the player library's

std::string
property_of(const TagLib::PropertyMap& properties, const char* name)
{
	const auto found = properties.find(name);
	return found != properties.end() ? found->second.toString(kBetweenNames).to8Bit(true) : "";
}

} // namespace

bool
read_song_tags(const std::string& path, SongTags& tags)
{
	std::error_code error;
	if (!std::filesystem::is_regular_file(path, error)) // a pipe would be waited for
		return false;
	const TagLib::FileRef file(path.c_str());
	if (file.isNull())
		return false;
	// of all kinds of tags that the file has; its tag() is of one kind only
	const TagLib::PropertyMap properties = file.file()->properties();
	tags.artist = property_of(properties, "ARTIST");
	tags.title = property_of(properties, "TITLE");
	if (const TagLib::AudioProperties* sound = file.audioProperties())
		tags.length = sound->lengthInMilliseconds() * bigtime_t(1000);
	return true;
}
