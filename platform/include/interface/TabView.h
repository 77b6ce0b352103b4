#pragma once

#include <Archivable.h>
#include <View.h>
#include <string>
#include <vector>

class BTabView;

/*!	A tab: a label, and the view that is shown while it is chosen. Owner: the tab view it is added to. Thread: that one's. */
class BTab : public BArchivable {
public:
	//! Takes the view over. NULL: none yet.
	explicit BTab(BView* contents = NULL);
	~BTab() override;

	//! Of a tab that was given none, its view's name.
	const char* Label() const;
	virtual void SetLabel(const char* label);
	//! One that is not enabled cannot be chosen by the user.
	bool IsEnabled() const { return fEnabled; }
	virtual void SetEnabled(bool enabled);
	bool IsSelected() const;
	BView* View() const { return fView; }
	//! Deletes the view before.
	virtual void SetView(BView* contents);

private:
	friend class BTabView;

	void ShowState();

	std::string fLabel;
	bool fHasLabel = false;
	bool fEnabled = true;
	BView* fView;
	BTabView* fOwner = nullptr; // once added
};

/*!	Views behind each other, one of which is shown, and a row of tabs to choose it by. Only the shown one is attached to
	the window: it is a child of the container view, in whose coordinates it is placed.
	Owner of its tabs and of all their views. */
class BTabView : public BView {
public:
	BTabView(BRect frame, const char* name, button_width width = B_WIDTH_AS_USUAL,
		uint32 resizingMode = B_FOLLOW_ALL,
		uint32 flags
		= B_FULL_UPDATE_ON_RESIZE | B_WILL_DRAW | B_NAVIGABLE_JUMP | B_FRAME_EVENTS | B_NAVIGABLE);
	~BTabView() override;

	void GetPreferredSize(float* width, float* height) override;

	//! Adds the view behind a tab, a new one for NULL. The first one is selected.
	virtual void AddTab(BView* target, BTab* tab = NULL);
	//! Takes the tab with its view out; the caller owns it. NULL when out of range.
	virtual BTab* RemoveTab(int32 index);
	//! NULL when out of range.
	virtual BTab* TabAt(int32 index) const;
	int32 CountTabs() const;
	//! Shows that tab's view; the user's choice comes here too. Out of range: nothing.
	virtual void Select(int32 index);
	//! -1 without tabs.
	int32 Selection() const { return fSelection; }

	BView* ContainerView() const { return fContainer; }
	//! Of the row of tabs, pixels.
	float TabHeight() const { return fTabHeight; }

private:
	friend class BTab;

	void Init();
	void ShowTab(const BTab& tab);
	void Swap(int32 index);

	std::vector<BTab*> fTabs;
	int32 fSelection = -1;
	BView* fContainer = nullptr;
	float fTabHeight = 0;
};
