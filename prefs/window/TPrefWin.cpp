#include "prefs/window/TPrefWin.h"

#include <File.h>
#include <Message.h>
#include <Resources.h>

#include "framework/TLLT.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/own_file.h"

TPrefWin::TPrefWin(BRect frame, TCommMan* manager)
	: TMERDlgWin(frame, "PrefWin", B_TITLED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL,
		B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_ASYNCHRONOUS_CONTROLS)
{
	SetTarget(manager);
	SetInitStatus(LoadView());
}

status_t
TPrefWin::LoadView()
{
	BFile file(tavora_displayer_fname().c_str(), B_READ_ONLY);
	BResources resources;
	status_t status = file.InitCheck();
	if (status == B_OK)
		status = resources.SetTo(&file);
	if (status != B_OK)
		return status;
	size_t size;
	const void* data = resources.LoadResource('ARCV', "PrefViewRsrc", &size);
	if (data == nullptr)
		return B_NAME_NOT_FOUND;
	BMessage archive;
	return archive.Unflatten(static_cast<const char*>(data));
}
