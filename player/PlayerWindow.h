#pragma once

#include "PlayState.h"
#include "Texts.h"

#include <Window.h>

#include <memory>

class BButton;
class BFilePanel;
class BListView;
class BMenu;
class BMenuBar;
class BMessageRunner;
class BSlider;
class BStringView;
class Engine;

/*!	The player's window: what plays, where it is, the playlist, and the controls. Its title begins with kQuboWindowTitle.
	Thread: its own looper. It reads the PlayState and tells the engine; it waits for neither. Its close button asks the application to
	quit; it closes when that does. Owner: itself. */
class PlayerWindow : public BWindow {
public:
	PlayerWindow(PlayState& state, Engine& engine, int32 volume);
	~PlayerWindow() override;

	void DispatchMessage(BMessage* message, BHandler* target) override;
	void MessageReceived(BMessage* message) override;
	bool QuitRequested() override;

private:
	void BuildMenus();
	BMenu* BuildPlaybackMenu();
	void BuildViews(float top);
	BButton* AddButton(BView* parent, BPoint& where, const char* name, TextKey label, uint32 code);

	bool KeyPressed(BMessage* message);
	void TakeKeysBack();
	void PositionDragged();
	void PositionChosen();
	void VolumeChosen();
	void StepVolume(int32 step);
	void EntryInvoked(BMessage* message);
	void MItemOpenClicked();
	void FilesDropped(BMessage* message);
	void AddOnsLoaded(BMessage* message);
	void ProblemTold(BMessage* message);

	void UpdateAll();
	void UpdatePosition();
	void UpdateList();

	PlayState& fState;
	Engine& fEngine;
	BMenuBar* fMenuBar = nullptr;
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
	bool fDragging = false;                 // the position is in the user's hand
};
