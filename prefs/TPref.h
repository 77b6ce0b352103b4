#pragma once

#include <GraphicsDefs.h>

#include "framework/TArchivable.h"
#include "framework/TShared.h"

// Encoding numbers of files, as the menus count them; 3 is a separator there.
constexpr int32 kEncodingUTF8 = 0;
constexpr int32 kEncodingSJIS = 1;
constexpr int32 kEncodingJIS = 2;
constexpr int32 kEncodingAuto = 4;

// Ways to lay out the background image.
constexpr int32 kBGImageTile = 0;
constexpr int32 kBGImageScaleToFit = 1;

//! The order in which menus, presets and skins count the colours; not that of the fields.
enum color_index : int32 {
	kColorLyrics,
	kColorBG,
	kColorActiveLyrics,
	kColorActiveBG,
	kColorActiveFrame,
	kColorCount
};

/*!	The user's preferences, shared with the maker's lyrics editor: the fields behind the comment "editor" are its own
	and only kept here.
	Thread: any; each field is read and written whole. Writers are the windows in which the user changes something;
	readers read a field each time they use it. A copy made while others write may mix old and new fields.
	The order of the virtual operations is shared with the editor. */
class TPref : public merion::TArchivable {
public:
	TPref() = default;
	TPref(const TPref&) = default;
	TPref& operator=(const TPref&) = default;

	bool Archive(BMessage* archive) const override;
	bool Unarchive(const BMessage& archive) override;
	//! The twelve fields that make up an appearance preset.
	virtual bool ArchiveAppearance(BMessage* archive) const;
	virtual bool UnarchiveAppearance(const BMessage& archive);

	//! The field of a colour index below kColorCount.
	merion::TShared<rgb_color>& Color(int32 index);

	merion::TShared<bool> fStayOnTop = false;
	merion::TShared<int32> fFontList = 0; // kept for others, nothing here reads it
	merion::TShared<int32> fReadEncoding = kEncodingAuto;
	merion::TShared<int64> fMonitoringInterval = 25000; // µs between two looks at the host
	merion::TSharedText fLanguageFile{"English.llt"};   // bare name

	// appearance
	merion::TShared<bool> fAntiAliasing = true;
	merion::TShared<bool> fUseActiveFrame = true;
	merion::TShared<bool> fUseBGImage = false;
	merion::TSharedText fFontFamily{"Haru", kFontFamilyLength};
	merion::TShared<int32> fBGImageAlign = kBGImageTile;
	merion::TShared<float> fFontSize = 12.0f; // points
	merion::TShared<rgb_color> fActiveBGColor = rgb_color{51, 51, 0, 255};
	merion::TShared<rgb_color> fActiveFrameColor = rgb_color{255, 255, 153, 255};
	merion::TShared<rgb_color> fActiveLyricsColor = rgb_color{255, 255, 204, 255};
	merion::TShared<rgb_color> fBGColor = rgb_color{0, 0, 0, 255};
	merion::TShared<rgb_color> fLyricsColor = rgb_color{255, 255, 255, 255};
	merion::TSharedText fBGImageFile; // full path

	merion::TShared<bool> fDoubleBuffering = true;
	merion::TShared<bool> fShowToolBar = true;             // editor
	merion::TShared<int32> fWriteCRType = 0;               // editor
	merion::TShared<int32> fWriteEncoding = kEncodingUTF8; // editor
	merion::TShared<int32> fTimeDifference = 0;            // editor

	static constexpr size_t kFontFamilyLength = 64; // bytes without the NUL
};

//! The one record of the running add-on; the plug-in object makes and deletes it.
extern TPref* gPref;
