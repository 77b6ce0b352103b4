#include "interface/FieldLabel.h"
#include "interface/MenuAccess.h"
#include "interface/MenuFieldBar.h"
#include "interface/ViewData.h"
#include "server/ServerMenuField.h"

#include <MenuField.h>
#include <Message.h>
#include <math.h>
#include <stdlib.h>
#include <string.h>

using namespace BPrivate;

_BMCMenuBar_::_BMCMenuBar_(BRect frame)
	: BMenuBar(frame, "_mc_mb_", B_FOLLOW_ALL, B_ITEMS_IN_ROW, false)
{
	Init();
}

void
_BMCMenuBar_::Init()
{
	auto connect = [](ServerMenuField* field, ProxySink* sink) { field->SetSink(sink); };
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerMenuField>(connect), [this](BMessage* event) {
			if (BMenuItem* item = MenuAccess::Find(*this, event->GetInt64("item", 0)))
				MenuAccess::Invoke(*item);
		}));
}

void
_BMCMenuBar_::ShowModel(const MenuModel& model)
{
	ViewData::Of(this).proxy->Adjust<ServerMenuField>(
		[model](ServerMenuField& field) { field.Show(model); });
}

BMenuField::BMenuField(BRect frame, const char* name, const char* label, BMenu* menu,
	uint32 resizingMode, uint32 flags)
	: BMenuField(frame, name, label, menu, false, resizingMode, flags)
{ }

BMenuField::BMenuField(BRect frame, const char* name, const char* label, BMenu* menu, bool,
	uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  fLabel(label != NULL ? strdup(label) : NULL),
	  fAlignment(B_ALIGN_LEFT),
	  fDivider(label != NULL && *label != 0 ? floorf(frame.Width() / 2) : 0),
	  fEnabled(true)
{
	Init(menu);
}

BMenuField::~BMenuField()
{
	free(fLabel);
}

void
BMenuField::Init(BMenu* menu)
{
	fBar = new _BMCMenuBar_(Bounds());
	FieldLabel::Init(*this, fBar);
	if (menu != NULL)
		fBar->AddItem(menu);
	SetDivider(fDivider);
	FieldLabel::SetLabel(*this, *fBar, fLabel);
}

void
BMenuField::MakeFocus(bool focus)
{
	fBar->MakeFocus(focus);
}

void
BMenuField::GetPreferredSize(float* width, float* height)
{
	fBar->Refresh();
	FieldLabel::GetPreferredSize(*this, *fBar, fLabel, width, height);
}

void
BMenuField::ResizeToPreferred()
{
	BView::ResizeToPreferred();
	SetDivider(FieldLabel::Width(*this, fLabel));
}

BMenu*
BMenuField::Menu() const
{
	return fBar->SubmenuAt(0);
}

BMenuBar*
BMenuField::MenuBar() const
{
	return fBar;
}

BMenuItem*
BMenuField::MenuItem() const
{
	return fBar->ItemAt(0);
}

void
BMenuField::SetLabel(const char* label)
{
	char* copy = label != NULL ? strdup(label) : NULL;
	free(fLabel);
	fLabel = copy;
	FieldLabel::SetLabel(*this, *fBar, fLabel);
}

const char*
BMenuField::Label() const
{
	return fLabel;
}

void
BMenuField::SetEnabled(bool enabled)
{
	fEnabled = enabled;
	FieldLabel::SetEnabled(*this, enabled);
	fBar->SetEnabled(enabled);
}

bool
BMenuField::IsEnabled() const
{
	return fEnabled;
}

void
BMenuField::SetAlignment(alignment label)
{
	fAlignment = label;
	FieldLabel::SetAlignment(*this, label);
}

alignment
BMenuField::Alignment() const
{
	return fAlignment;
}

void
BMenuField::SetDivider(float divider)
{
	fDivider = roundf(divider);
	FieldLabel::Place(*this, *fBar, fDivider);
}

float
BMenuField::Divider() const
{
	return fDivider;
}
