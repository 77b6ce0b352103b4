#include <Roster.h>

#include "app/ApplicationRegistry.h"
#include "app/DesktopFile.h"
#include <Message.h>
#include <Path.h>
#include <strings.h>

using namespace BPrivate;

static const BRoster sRoster;
const BRoster* be_roster = &sRoster;

bool
BRoster::IsRunning(const char* signature) const
{
	return signature != NULL && is_application(signature);
}

//! The paths of the message's refs; those that are no files any more are left out.
static std::vector<std::string>
paths_of_refs(const BMessage* message)
{
	std::vector<std::string> paths;
	entry_ref ref;
	for (int32 i = 0; message != NULL && message->FindRef("refs", i, &ref) == B_OK; i++) {
		BPath path;
		if (BEntry(&ref).GetPath(&path) == B_OK)
			paths.push_back(path.Path());
	}
	return paths;
}

static status_t
launch_signature(const char* signature, const std::vector<std::string>& files, team_id* team)
{
	const std::vector<std::string> command = command_for_signature(signature, files);
	if (command.empty())
		return B_LAUNCH_FAILED_APP_NOT_FOUND;
	const status_t error = launch_detached(command, team);
	return error == B_ENTRY_NOT_FOUND ? B_LAUNCH_FAILED_EXECUTABLE : error;
}

status_t
BRoster::Launch(const char* signature, BMessage* initialMessage, team_id* team) const
{
	if (signature == NULL || signature[0] == '\0')
		return B_BAD_VALUE;
	if (IsRunning(signature))
		return B_ALREADY_RUNNING;
	if (initialMessage != NULL && !initialMessage->IsEmpty() && !initialMessage->HasRef("refs"))
		return B_NOT_SUPPORTED;
	return launch_signature(signature, paths_of_refs(initialMessage), team);
}

static bool
is_page_type(const char* mimeType)
{
	static const char kAddressType[] = "application/x-vnd.Be.URL.";
	return strcasecmp(mimeType, "text/html") == 0
		|| strncasecmp(mimeType, kAddressType, sizeof(kAddressType) - 1) == 0;
}

static status_t
open_with_desktop(const char* address, team_id* team)
{
	const status_t error = launch_detached({"xdg-open", address}, team);
	return error == B_ENTRY_NOT_FOUND ? B_LAUNCH_FAILED_NO_PREFERRED_APP : error;
}

status_t
BRoster::Launch(const char* mimeType, int argc, const char* const* args, team_id* team) const
{
	if (mimeType == NULL || mimeType[0] == '\0' || argc < 0 || (argc > 0 && args == NULL))
		return B_BAD_VALUE;
	std::vector<std::string> words;
	for (int i = 0; i < argc; i++) {
		// an opener would take one that begins so for an option
		if (args[i] == NULL || args[i][0] == '\0' || args[i][0] == '-')
			return B_BAD_VALUE;
		words.push_back(args[i]);
	}
	if (is_page_type(mimeType))
		return argc == 1 ? open_with_desktop(args[0], team) : B_BAD_VALUE;
	return IsRunning(mimeType) ? B_ALREADY_RUNNING : launch_signature(mimeType, words, team);
}

status_t
BRoster::Launch(const entry_ref* ref, const BMessage* initialMessage, team_id* team) const
{
	if (ref == NULL)
		return B_BAD_VALUE;
	if (initialMessage != NULL && !initialMessage->IsEmpty())
		return B_NOT_SUPPORTED;
	BEntry entry(ref);
	BPath path;
	if (!entry.Exists() || entry.GetPath(&path) != B_OK)
		return B_ENTRY_NOT_FOUND;
	return open_with_desktop(path.Path(), team);
}
