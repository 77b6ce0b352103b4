#include <ListItem.h>

#include <stdlib.h>
#include <string.h>

BListItem::BListItem() : fSelected(false), fEnabled(true) { }

BListItem::~BListItem() = default;

void
BListItem::Select()
{
	fSelected = true;
}

void
BListItem::Deselect()
{
	fSelected = false;
}

bool
BListItem::IsSelected() const
{
	return fSelected;
}

void
BListItem::SetEnabled(bool enabled)
{
	fEnabled = enabled;
}

bool
BListItem::IsEnabled() const
{
	return fEnabled;
}

BStringItem::BStringItem(const char* text) : fText(text != NULL ? strdup(text) : NULL) { }

BStringItem::~BStringItem()
{
	free(fText);
}

void
BStringItem::SetText(const char* text)
{
	char* copy = text != NULL ? strdup(text) : NULL;
	free(fText);
	fText = copy;
}

const char*
BStringItem::Text() const
{
	return fText;
}

const char*
BStringItem::_Label() const
{
	return fText;
}
