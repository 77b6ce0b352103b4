#pragma once

#include <memory>
#include <string>
#include <vector>

#include <Entry.h>
#include <MessageRunner.h>
#include <sys/stat.h>

#include "framework/TMERView.h"
#include "framework/TQuestion.h"
#include "host/Qubo_FrontEnd.h"
#include "lyrics/TLineList.h"
#include "lyrics/TTimeTable.h"
#include "lyrics/dropped_file.h"

class BBitmap;
class TDisplayMenu;

/*!	Shows the playing song's lyrics, with the line that belongs to the play time in the middle.
	It asks the host for the play time at each interval of the preferences, loads the lyrics of a new song, and again when
	their file changes on the disk. Text before a line's first "]" is not shown; each line has one time tag at most.
	Others can ask for the current line and watch it, and for where the lyrics come from (lyrics_codes.h).
	Thread: its window's; with lyrics on the screen, a look that finds nothing new costs no file access.
	Times: ms from the start of the song. */
class TTavoraDView : public merion::TMERView {
public:
	explicit TTavoraDView(BRect frame);
	~TTavoraDView() override;

	void AttachedToWindow() override;
	void DetachedFromWindow() override;
	void MessageReceived(BMessage* message) override;
	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override;
	status_t GetSupportedSuites(BMessage* data) override;
	void Draw(BRect updateRect) override;
	void FrameResized(float newWidth, float newHeight) override;
	// The secondary button opens the menu, dragging moves the window, a double click asks for the preferences.
	void MouseDown(BPoint where) override;
	void DoubleClicked(BPoint where, uint32 buttons, uint32 modifiers) override;
	void DragStarted(BPoint where, uint32 buttons, uint32 modifiers) override;
	void Dragged(BPoint where) override;
	//! Shows whether what is dragged over the view would be taken.
	void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) override;

	//! The look at the host, at each tick.
	void PollingQuboInfoRqtd();
	//! The path of the current song's lyrics file (lyrics_fname()).
	std::string LyricsFName() const;
	//! The current line's text without its tag; empty when no lyrics are shown.
	std::string CurrentLineText() const;
	//! To the clipboard; one that is empty leaves it alone.
	void CopyCurrentLine() const;
	//! Of the shown lines, the one in the middle.
	int32 CurrentLine() const { return fCurrentLine; }

	//! A window of that height shows so many lines, pixels.
	float HeightOfLines(int32 count) const { return count * fLinePitch - 1; }
	//! Opens the popup menu at a point of the view; without one, in its middle.
	void ShowMenu(BPoint where);
	void ShowMenu();
	//! Does what the menu's item with that accelerator does.
	void AcceleratorPressed(char key);

	void LanguageChanged();
	//! `message`: '_ipc', names the changed item.
	void IAPChanged(const BMessage* message);

	// The preferences were changed.
	void PrefAppearanceChanged();
	void PrefDoubleBufferingChanged();

private:
	// The song and its lines
	void SongChanged();
	void PrepareLyrics();
	bool LoadLyrics();
	void LoadPluginInfo();
	bool CalcDispLyrics();
	void TellWindowSong();
	void CurrentLineChanged();
	std::string_view DispLine(int32 index) const { return fDispLines[index]; }
	int32 CountDispLines() const { return fDispLines.size(); }

	// Their file
	int32 LyricsModificationTime() const;
	void SetLyricsNodeWatching();
	void ClearLyricsNodeWatching();
	void NodeMonitor();

	// What is dropped
	void ShowRefusal(bool refuses);
	void EndDrag();
	dropped_file KindOf(const BMessage* files);
	void FileDropped(const BMessage* message);
	void ImageDropped(const entry_ref& ref);
	void SkinDropped(const entry_ref& ref);
	void AppearanceDropped();
	void LyricsDropped(const entry_ref& ref);
	void CopyLyricsRqtd(const BMessage* message);
	void AskToCopy(const BMessage& request, int32 question, const std::string& key,
		const std::string& path, merion::TQuestion::Button goOn);

	// The menu
	void MakeMenu();
	void UpdateMenu();

	// Scripting
	bool PropertyRequested(BMessage* message);
	BMessage LyricsSource() const;

	// Drawing
	void SetAppearance(bool toSelf, bool toOffScreen);
	void SetAppearanceOfSpecifyView(BView* view, BFont* font);
	void LoadBGImage();
	bool ReadBGImage(const std::string& file);
	void CreateOffScreen();
	void DestroyOffScreen();
	void PreRenderNextLine();
	void DrawLyrics(BView* target, int32 line);
	void DrawBackground(BView* target, BRect bounds);
	void DrawLine(BView* target, BRect bounds, int32 index, float top, bool isCurrent);
	void DrawHighlight(BView* target, BRect bounds, float top);
	bool HasBGImage() const;

	int32 fCurrentLine = 0;
	int32 fLastDrawnLine = -1; // -1: nothing was drawn since the lyrics were loaded
	TTimeTable fTimeTable;
	TLineList fLyrics; // the text that the shown lines lie in
	std::vector<std::string_view> fDispLines;
	bool fShowsLyrics = false; // not the information about the plug-in
	int32 fEncoding = 0;       // of them
	bool fIsEncodingGuessed = false;
	int32 fModificationTime = 0; // s since 1970, 0: there is no lyrics file
	std::unique_ptr<BMessageRunner> fRunner;
	std::unique_ptr<TDisplayMenu> fMenu;
	bool fMovesWindow = false; // while dragging
	BPoint fGrip;              // where the window is held then, from its left top corner
	merion::TQuestion fQuestion;
	entry_ref fDragged; // what is over the view
	dropped_file fDraggedKind = dropped_file::kOther;
	bool fHasDragged = false;
	bool fShowsRefusal = false;
	Qubo_FrontEnd fFrontEnd;
	QuboSongEntry fSong; // all zero: none

	float fFontHeight = 0; // ascent and descent, pixels
	float fLinePitch = 1;  // from one line to the next
	std::unique_ptr<BBitmap> fBGImage;
	std::string fBGImageFile;       // that fBGImage was loaded from, or could not be
	struct stat fBGImageState = {}; // of the file then
	std::unique_ptr<BBitmap> fOffScreen;
	BView* fOSView = nullptr;    // fOffScreen's
	int32 fPreRenderedLine = -1; // whose picture fOffScreen holds; -1: none
};
