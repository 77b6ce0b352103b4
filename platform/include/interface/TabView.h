#pragma once

#include <Archivable.h>
#include <InterfaceDefs.h>
#include <View.h>
#include <vector>

class BTabView;

/*!	A tab of a BTabView, and the view that it stands for. The name of that view is its label.
	Owner: the tab view that it was added to; it owns its view in turn.
	Thread: with the window's lock, once it is in a window. */
class BTab : public BArchivable {
public:
	explicit BTab(BView* contents = NULL);
	//! Without a view, which only its tab view gives it.
	explicit BTab(BMessage* data);
	~BTab() override;

	static BArchivable* Instantiate(BMessage* data);
	//! One that is not enabled is when it is built again: that is the platform's format.
	status_t Archive(BMessage* data, bool deep = true) const override;

	//! The view's name, NULL without a view or a name.
	const char* Label() const;
	//! Nothing happens without a view.
	virtual void SetLabel(const char* label);
	//! One that is not enabled cannot be chosen by the user.
	virtual void SetEnabled(bool enabled);
	bool IsEnabled() const;
	bool IsSelected() const;
	//! Puts the view into `owner`.
	virtual void Select(BView* owner);
	virtual void Deselect();
	//! Deletes the old one.
	virtual void SetView(BView* contents);
	BView* View() const;

private:
	friend class BTabView;

	void Changed();

	BView* fView;
	BTabView* fTabView;
	bool fEnabled;
	bool fSelected;
};

/*!	Several views in one place, and tabs to choose which of them is seen. Only that one is in the
	window; it keeps its size. The arrow keys choose while the tabs have the focus. */
class BTabView : public BView {
public:
	//! Tabs are as wide as their labels; `width` is only kept.
	BTabView(BRect frame, const char* name, button_width width = B_WIDTH_AS_USUAL,
		uint32 resizingMode = B_FOLLOW_ALL,
		uint32 flags
		= B_FULL_UPDATE_ON_RESIZE | B_WILL_DRAW | B_NAVIGABLE_JUMP | B_FRAME_EVENTS | B_NAVIGABLE);
	explicit BTabView(BMessage* data);
	//! Deletes the tabs with their views.
	~BTabView() override;

	static BArchivable* Instantiate(BMessage* data);
	//! `deep`: with the tabs and their views.
	status_t Archive(BMessage* data, bool deep = true) const override;

	//! The first tab is selected, unless another one is already.
	void AttachedToWindow() override;
	//! With room for all tabs and for the largest of their views as they are.
	void GetPreferredSize(float* width, float* height) override;

	/*!	Behind the others; its label is the name of `target`. NULL: a new tab is made. Owns both. */
	virtual void AddTab(BView* target, BTab* tab = NULL);
	/*!	The caller's, with its view; NULL if out of range. The one before it is selected in its
		place. */
	virtual BTab* RemoveTab(int32 index);
	//! NULL if out of range.
	BTab* TabAt(int32 index) const;
	BView* ViewForTab(int32 index) const;
	int32 CountTabs() const;
	/*!	Also the hook that is called when the user chooses. Out of range: nothing. */
	virtual void Select(int32 index);
	//! Negative: none.
	int32 Selection() const;
	//! What the selected tab's view is in: all that tabs and border leave.
	BView* ContainerView() const;

	button_width TabWidth() const;
	float TabHeight() const;
	//! In the tab view's coordinates; asks the display server.
	BRect TabFrame(int32 index) const;

private:
	friend class BTab;

	void Init();
	status_t ReadTabs(BUnarchiver& unarchiver);
	status_t ReadPage(BUnarchiver& unarchiver, int32 index, BView*& page);
	void FitContainer();
	void ShowTab(const BTab* tab);

	std::vector<BTab*> fTabs;
	BView* fContainer;
	button_width fTabWidth;
	float fTabHeight;
	int32 fSelection;
	bool fByUser; // within Select(): the tabs on the screen show it already
};
