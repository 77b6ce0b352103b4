#include <MenuItem.h>

#include <Message.h>
#include <Window.h>
#include <atomic>
#include <stdlib.h>
#include <string.h>

static std::atomic<int64> sLastId = 0;

BMenuItem::BMenuItem(const char* label, BMessage* message, char shortcut, uint32 modifiers)
	: BInvoker(message, BMessenger()),
	  fId(++sLastId),
	  fLabel(strdup(label != NULL ? label : "")),
	  fSubmenu(NULL),
	  fSuper(NULL),
	  fModifiers(modifiers),
	  fShortcut(shortcut),
	  fEnabled(true),
	  fMarked(false),
	  fCanBeMarked(false)
{ }

BMenuItem::BMenuItem(BMenu* submenu, BMessage* message) : BMenuItem(submenu->Name(), message)
{
	fSubmenu = submenu;
	fSubmenu->fSuperitem = this;
	if (submenu->IsLabelFromMarked() && submenu->FindMarked() != NULL)
		SetLabel(submenu->FindMarked()->Label());
}

BMenuItem::~BMenuItem()
{
	if (fSuper != NULL)
		fSuper->RemoveItem(this);
	if (fSubmenu != NULL) {
		fSubmenu->fSuperitem = NULL;
		delete fSubmenu;
	}
	free(fLabel);
}

void
BMenuItem::SetLabel(const char* label)
{
	char* copy = strdup(label != NULL ? label : "");
	free(fLabel);
	fLabel = copy;
	Changed();
}

void
BMenuItem::SetEnabled(bool enabled)
{
	fEnabled = enabled;
	Changed();
}

void
BMenuItem::SetMarked(bool marked)
{
	fMarked = marked;
	fCanBeMarked = true;
	if (marked && fSuper != NULL)
		fSuper->ItemMarked(this);
	Changed();
}

void
BMenuItem::SetShortcut(char shortcut, uint32 modifiers)
{
	fShortcut = shortcut;
	fModifiers = modifiers;
	Changed();
}

const char*
BMenuItem::Label() const
{
	return fLabel;
}

bool
BMenuItem::IsEnabled() const
{
	return fEnabled && (fSubmenu == NULL || fSubmenu->fEnabled)
		&& (fSuper == NULL || fSuper->IsEnabled());
}

bool
BMenuItem::IsMarked() const
{
	return fMarked;
}

char
BMenuItem::Shortcut(uint32* modifiers) const
{
	if (modifiers != NULL)
		*modifiers = fShortcut != 0 ? fModifiers | B_COMMAND_KEY : 0;
	return fShortcut;
}

BMenu*
BMenuItem::Submenu() const
{
	return fSubmenu;
}

BMenu*
BMenuItem::Menu() const
{
	return fSuper;
}

status_t
BMenuItem::Invoke(BMessage* message)
{
	if (!IsEnabled())
		return B_ERROR;
	if (fSuper != NULL && fSuper->IsRadioMode())
		SetMarked(true);
	if (message == NULL)
		message = Message();
	if (message == NULL)
		return B_BAD_VALUE;
	BMessage copy(*message);
	if (fSuper != NULL) {
		copy.AddInt32("index", fSuper->IndexOf(this));
		copy.AddMessenger("be:sender", BMessenger(fSuper));
	}
	return BInvoker::Invoke(&copy);
}

//! The menu has come into a window, which gets what has no other target.
void
BMenuItem::Install(BWindow* window)
{
	if (!Messenger().IsValid())
		SetTarget(window);
	for (int32 i = 0; fSubmenu != NULL && i < fSubmenu->CountItems(); i++)
		fSubmenu->ItemAt(i)->Install(window);
}

void
BMenuItem::Changed()
{
	if (fSuper != NULL)
		fSuper->Changed();
}

BSeparatorItem::BSeparatorItem() : BMenuItem("", NULL)
{
	BMenuItem::SetEnabled(false);
}

void
BSeparatorItem::SetEnabled(bool)
{ }
