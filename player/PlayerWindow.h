#pragma once

#include "host/QuboProtocol.h"

#include "Texts.h"

#include <Messenger.h>
#include <Window.h>

#include <memory>
#include <string>
#include <vector>

class BButton;
class BFilePanel;
class BListView;
class BMenu;
class BMenuBar;
class BMessageRunner;
class BSlider;
class BStringView;
class Deck;
class PlayState;

/*!	The player's window: what plays, where it is, the playlist, and the controls. Its title begins with kQuboWindowTitle.
	Thread: its own looper. It reads what plays and passes commands on; it waits for nothing. Its close button asks the application to
	quit; it closes when that does. Owner: itself. */
class PlayerWindow : public BWindow {
public:
	//! What is dropped on it goes into `list`, the engine's, by `finder`, a FileFinder.
	PlayerWindow(Deck& deck, PlayState& list, int32 volume, const BMessenger& finder);
	~PlayerWindow() override;

	void DispatchMessage(BMessage* message, BHandler* target) override;
	void MessageReceived(BMessage* message) override;
	bool QuitRequested() override;

private:
	void BuildMenus();
	BMenu* BuildPlaybackMenu();
	BMenu* BuildTimingMenu();
	void AddFollowItem(const char* label, bool on, const char* player);
	void BuildViews(float top);
	BButton* AddButton(BView* parent, BPoint& where, const char* name, TextKey label, uint32 code);

	bool KeyPressed(BMessage* message);
	void TakeKeysBack();
	void PositionDragged();
	void PositionChosen();
	void VolumeChosen();
	void SetVolumeRqtd(const BMessage* message);
	void StepVolume(int32 step);
	void SetShift(int32 ms);
	void EntryInvoked(BMessage* message);
	void MItemOpenClicked();
	void FilesDropped(BMessage* message);
	void PlayFilesRqtd(const BMessage* message);
	void FilesFound(const BMessage* message);
	void PlayOwn(int32 index, bigtime_t start);
	void AddOnsLoaded(BMessage* message);
	void ProblemTold(BMessage* message);
	void FollowingChanged(BMessage* message);
	void UpdateFollowMenu(const BMessage* message);

	void UpdateAll();
	void UpdatePosition();
	void SetNextPulse(const QuboInfo& info);
	void UpdateList();

	Deck& fDeck;
	PlayState& fPlaylist;
	const BMessenger fFinder;
	BMenuBar* fMenuBar = nullptr;
	BMenu* fFollowMenu = nullptr;
	BMenu* fAddOnsMenu = nullptr;
	BView* fBack = nullptr;
	BStringView* fTitle = nullptr;
	BStringView* fTime = nullptr;
	BStringView* fStatus = nullptr;
	BSlider* fPosition = nullptr;
	BSlider* fVolume = nullptr;
	BButton* fPlay = nullptr;
	BListView* fList = nullptr;
	std::unique_ptr<BMessageRunner> fPulse;
	std::unique_ptr<BFilePanel> fOpenPanel; // once it was asked for
	std::string fFollowText;                // what is followed, or why there is nothing
	bool fFollowing = false;
	bool fCanSeek = true;
	bool fDragging = false; // the position is in the user's hand
};
