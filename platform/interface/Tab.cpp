#include "support/ArchiveFields.h"

#include <TabView.h>

using namespace BPrivate;

BTab::BTab(BView* contents) : fView(contents), fTabView(NULL), fEnabled(true), fSelected(false) { }

BTab::BTab(BMessage* data) : BTab()
{
	fEnabled = !archive_or_empty(data).GetBool("_disable", false);
}

BTab::~BTab()
{
	SetView(NULL);
}

BArchivable*
BTab::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BTab") ? new BTab(data) : NULL;
}

status_t
BTab::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BArchivable::Archive(data, deep));
	if (!fEnabled)
		writer.Bool("_disable", false);
	return writer.Status();
}

const char*
BTab::Label() const
{
	return fView != NULL ? fView->Name() : NULL;
}

void
BTab::SetLabel(const char* label)
{
	if (fView == NULL || label == NULL)
		return;
	fView->SetName(label);
	Changed();
}

void
BTab::SetEnabled(bool enabled)
{
	fEnabled = enabled;
	Changed();
}

bool
BTab::IsEnabled() const
{
	return fEnabled;
}

bool
BTab::IsSelected() const
{
	return fSelected;
}

void
BTab::Select(BView* owner)
{
	if (owner == NULL || fView == NULL)
		return;
	fView->RemoveSelf();
	owner->AddChild(fView);
	fSelected = true;
}

void
BTab::Deselect()
{
	if (fView != NULL)
		fView->RemoveSelf();
	fSelected = false;
}

void
BTab::SetView(BView* contents)
{
	if (contents == fView)
		return;
	BView* owner = fView != NULL && fSelected ? fView->Parent() : NULL;
	if (fView != NULL) {
		fView->RemoveSelf();
		delete fView;
	}
	fView = contents;
	if (owner != NULL && fView != NULL)
		Select(owner);
	Changed();
}

BView*
BTab::View() const
{
	return fView;
}

void
BTab::Changed()
{
	if (fTabView != NULL)
		fTabView->ShowTab(this);
}
