#include "interface/FieldLabel.h"
#include "interface/MenuAccess.h"
#include "interface/MenuFieldBar.h"
#include "interface/ViewData.h"
#include "server/ServerMenuField.h"
#include "support/ArchiveFields.h"

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

_BMCMenuBar_::_BMCMenuBar_(BMessage* data) : BMenuBar(data)
{
	Init();
}

BArchivable*
_BMCMenuBar_::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "_BMCMenuBar_") ? new _BMCMenuBar_(data) : NULL;
}

void
_BMCMenuBar_::Init()
{
	auto connect = [](ServerMenuField* field, ProxySink* sink) { field->SetSink(sink); };
	ViewData::Of(this).SetProxy(
		std::make_unique<WidgetProxy>(WidgetProxy::MakerOf<ServerMenuField>(connect),
			[this](BMessage* event) { HandleEvent(*event); }));
}

void
_BMCMenuBar_::HandleEvent(const BMessage& event)
{
	if (event.GetBool("opens", false)) {
		MenuAccess::AddDynamicItems(*this);
		ShowChanges();
		ViewData::Of(this).proxy->Adjust<ServerMenuField>(
			[](ServerMenuField& field) { field.Open(); });
	} else if (BMenuItem* item = MenuAccess::Find(*this, event.GetInt64("item", 0)))
		MenuAccess::Invoke(*item);
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

BMenuField::BMenuField(BRect frame, const char* name, const char* label, BMenu* menu,
	bool fixedSize, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  fLabel(label != NULL ? strdup(label) : NULL),
	  fBar(new _BMCMenuBar_(Bounds())),
	  fAlignment(B_ALIGN_LEFT),
	  fDivider(FieldLabel::UsualDivider(frame, label)),
	  fEnabled(true),
	  fFixedSize(fixedSize)
{
	if (menu != NULL)
		fBar->AddItem(menu);
	Init();
}

BMenuField::BMenuField(BMessage* data)
	: BView(data),
	  fLabel(NULL),
	  fBar(FieldLabel::ArchivedPart<_BMCMenuBar_>(*this))
{
	const BMessage& archive = archive_or_empty(data);
	if (fBar == NULL)
		fBar = new _BMCMenuBar_(Bounds());
	if (const char* label = archive.GetString("_label"))
		fLabel = strdup(label);
	fDivider = archived_float(archive, "_divide", 0, FieldLabel::UsualDivider(Frame(), fLabel));
	fFixedSize = archive.GetBool("be:fixeds", false);
	Init();
	SetAlignment(alignment(archived_choice(archive, "_align", B_ALIGN_CENTER, B_ALIGN_LEFT)));
	SetEnabled(!archive.GetBool("_disable", false));
}

BArchivable*
BMenuField::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BMenuField") ? new BMenuField(data) : NULL;
}

status_t
BMenuField::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BView::Archive(data, deep));
	writer.String("_label", fLabel);
	writer.True("_disable", !fEnabled);
	writer.Int32("_align", fAlignment);
	writer.Float("_divide", fDivider);
	writer.True("be:fixeds", fFixedSize);
	writer.Bool("be:dmark", true); // the mark of a menu that opens
	return writer.Status();
}

BMenuField::~BMenuField()
{
	free(fLabel);
}

void
BMenuField::Init()
{
	FieldLabel::Init(*this, fBar);
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
