#include "prefs/TPref.h"

#include <cstring>

using merion::TShared;
using merion::TSharedText;

TPref* gPref = nullptr;

namespace {

// Keys of the fields, as they stand in the settings file.
constexpr const char* kStayOnTop = "SoTp";
constexpr const char* kFontList = "FntL";
constexpr const char* kReadEncoding = "REnc";
constexpr const char* kMonitoringInterval = "MTmI";
constexpr const char* kLanguageFile = "LLTF";
constexpr const char* kAntiAliasing = "AAli";
constexpr const char* kUseActiveFrame = "UAFr";
constexpr const char* kUseBGImage = "UBGI";
constexpr const char* kFontFamily = "FntF";
constexpr const char* kBGImageAlign = "ImgA";
constexpr const char* kFontSize = "FntS";
constexpr const char* kActiveBGColor = "ABCl";
constexpr const char* kActiveFrameColor = "AFCl";
constexpr const char* kActiveLyricsColor = "ALCl";
constexpr const char* kBGColor = "BGCl";
constexpr const char* kLyricsColor = "LyCl";
constexpr const char* kBGImageFile = "BGIF";
constexpr const char* kDoubleBuffering = "DbBf";
constexpr const char* kShowToolBar = "STlB";
constexpr const char* kWriteCRType = "WCRT";
constexpr const char* kWriteEncoding = "WEnc";
constexpr const char* kTimeDifference = "TmDf";

bool
add_field(BMessage* archive, const char* key, const TShared<bool>& field)
{
	return archive->AddBool(key, field) == B_OK;
}

bool
add_field(BMessage* archive, const char* key, const TShared<int32>& field)
{
	return archive->AddInt32(key, field) == B_OK;
}

bool
add_field(BMessage* archive, const char* key, const TShared<int64>& field)
{
	return archive->AddInt64(key, field) == B_OK;
}

bool
add_field(BMessage* archive, const char* key, const TShared<float>& field)
{
	return archive->AddFloat(key, field) == B_OK;
}

bool
add_field(BMessage* archive, const char* key, const TShared<rgb_color>& field)
{
	const rgb_color color = field;
	return archive->AddData(key, B_RAW_TYPE, &color, sizeof(color), true, 1) == B_OK;
}

bool
add_field(BMessage* archive, const char* key, const TSharedText& field)
{
	return archive->AddString(key, field.Get().c_str()) == B_OK;
}

/*!	Takes the fields of a message that are there. Derived, so that it may use the record's finders. */
class FieldReader : merion::TArchivable {
public:
	explicit FieldReader(const BMessage& archive) : fArchive(archive) { }

	bool operator()(const char* key, TShared<bool>& field) const
	{
		bool value;
		return FindBool(fArchive, key, &value) == B_OK && Store(value, field);
	}

	bool operator()(const char* key, TShared<int32>& field) const
	{
		int32 value;
		return FindInt32(fArchive, key, &value) == B_OK && Store(value, field);
	}

	bool operator()(const char* key, TShared<int64>& field) const
	{
		int64 value;
		return FindInt64(fArchive, key, &value) == B_OK && Store(value, field);
	}

	bool operator()(const char* key, TShared<float>& field) const
	{
		float value;
		return FindFloat(fArchive, key, &value) == B_OK && Store(value, field);
	}

	bool operator()(const char* key, TShared<rgb_color>& field) const
	{
		const void* data;
		ssize_t size;
		rgb_color color;
		if (FindData(fArchive, key, B_RAW_TYPE, &data, &size) != B_OK
			|| size < static_cast<ssize_t>(sizeof(color)))
			return false;
		memcpy(&color, data, sizeof(color));
		return Store(color, field);
	}

	bool operator()(const char* key, TSharedText& field) const
	{
		const char* text;
		if (FindString(fArchive, key, &text) != B_OK)
			return false;
		field = text;
		return true;
	}

private:
	template<typename T> static bool Store(T value, TShared<T>& field)
	{
		field = value;
		return true;
	}

	const BMessage& fArchive;
};

} // namespace

bool
TPref::Archive(BMessage* archive) const
{
	bool ok = TArchivable::Archive(archive);
	ok &= add_field(archive, kStayOnTop, fStayOnTop);
	ok &= add_field(archive, kFontList, fFontList);
	ok &= add_field(archive, kReadEncoding, fReadEncoding);
	ok &= add_field(archive, kMonitoringInterval, fMonitoringInterval);
	ok &= add_field(archive, kLanguageFile, fLanguageFile);
	ok &= ArchiveAppearance(archive);
	ok &= add_field(archive, kDoubleBuffering, fDoubleBuffering);
	ok &= add_field(archive, kShowToolBar, fShowToolBar);
	ok &= add_field(archive, kWriteCRType, fWriteCRType);
	ok &= add_field(archive, kWriteEncoding, fWriteEncoding);
	ok &= add_field(archive, kTimeDifference, fTimeDifference);
	return ok;
}

bool
TPref::ArchiveAppearance(BMessage* archive) const
{
	bool ok = TArchivable::Archive(archive);
	ok &= add_field(archive, kAntiAliasing, fAntiAliasing);
	ok &= add_field(archive, kUseActiveFrame, fUseActiveFrame);
	ok &= add_field(archive, kUseBGImage, fUseBGImage);
	ok &= add_field(archive, kFontFamily, fFontFamily);
	ok &= add_field(archive, kBGImageAlign, fBGImageAlign);
	ok &= add_field(archive, kFontSize, fFontSize);
	ok &= add_field(archive, kActiveBGColor, fActiveBGColor);
	ok &= add_field(archive, kActiveFrameColor, fActiveFrameColor);
	ok &= add_field(archive, kActiveLyricsColor, fActiveLyricsColor);
	ok &= add_field(archive, kBGColor, fBGColor);
	ok &= add_field(archive, kLyricsColor, fLyricsColor);
	ok &= add_field(archive, kBGImageFile, fBGImageFile);
	return ok;
}

bool
TPref::Unarchive(const BMessage& archive)
{
	const FieldReader find(archive);
	bool ok = TArchivable::Unarchive(archive);
	ok &= find(kStayOnTop, fStayOnTop);
	ok &= find(kReadEncoding, fReadEncoding);
	ok &= find(kFontList, fFontList);
	ok &= find(kMonitoringInterval, fMonitoringInterval);
	ok &= find(kLanguageFile, fLanguageFile);
	ok &= UnarchiveAppearance(archive);
	ok &= find(kDoubleBuffering, fDoubleBuffering);
	ok &= find(kShowToolBar, fShowToolBar);
	ok &= find(kWriteCRType, fWriteCRType);
	ok &= find(kWriteEncoding, fWriteEncoding);
	ok &= find(kTimeDifference, fTimeDifference);
	return ok;
}

bool
TPref::UnarchiveAppearance(const BMessage& archive)
{
	const FieldReader find(archive);
	bool ok = TArchivable::Unarchive(archive);
	ok &= find(kAntiAliasing, fAntiAliasing);
	ok &= find(kUseActiveFrame, fUseActiveFrame);
	ok &= find(kUseBGImage, fUseBGImage);
	ok &= find(kFontFamily, fFontFamily);
	ok &= find(kBGImageAlign, fBGImageAlign);
	ok &= find(kFontSize, fFontSize);
	ok &= find(kActiveBGColor, fActiveBGColor);
	ok &= find(kActiveFrameColor, fActiveFrameColor);
	ok &= find(kActiveLyricsColor, fActiveLyricsColor);
	ok &= find(kBGColor, fBGColor);
	ok &= find(kLyricsColor, fLyricsColor);
	ok &= find(kBGImageFile, fBGImageFile);
	return ok;
}

TShared<rgb_color>&
TPref::Color(int32 index)
{
	switch (index) {
		case kColorLyrics:
			return fLyricsColor;
		case kColorBG:
			return fBGColor;
		case kColorActiveLyrics:
			return fActiveLyricsColor;
		case kColorActiveBG:
			return fActiveBGColor;
		default:
			return fActiveFrameColor;
	}
}
