#include "plugin/helpers/load_language.h"

#include <string>

#include <Directory.h>
#include <Entry.h>
#include <NodeMonitor.h>
#include <Resources.h>

#include "framework/TAppPrivacy.h"
#include "framework/TLLT.h"
#include "framework/TNodeMonitorHandler.h"
#include "plugin/helpers/settings_files.h"
#include "prefs/TPref.h"

using merion::TNodeMonitorHandler;

namespace {

constexpr int32 kDefaultLanguage = 1; // id of the resource, type 'CSTR'

void
choose_desktop_language()
{
	const std::string file = gAppPrivacy->DesktopLanguage();
	if (!file.empty())
		gPref->fLanguageFile = file;
}

//! The node that the path leads to, by way of symbolic links too; nothing when there is none.
void
add_node(const std::string& path, uint32 flags, TNodeMonitorHandler::Nodes* nodes)
{
	node_ref node;
	const BEntry entry(path.c_str(), true);
	if (entry.InitCheck() == B_OK && entry.GetNodeRef(&node) == B_OK)
		(*nodes)[node] |= flags;
}

std::string
parent_of(const std::string& path)
{
	return path.substr(0, path.rfind('/'));
}

void
add_language_files(const std::string& folder, TNodeMonitorHandler::Nodes* nodes)
{
	BDirectory directory(folder.c_str());
	BEntry entry;
	while (directory.GetNextEntry(&entry) == B_OK) {
		if (std::string_view(entry.Name()).ends_with(".llt"))
			add_node(folder + "/" + entry.Name(), B_WATCH_STAT, nodes);
	}
}

} // namespace

bool
load_global(const char* shortName, const char* exitStateName)
{
	if (are_reset_keys_held()) {
		save_pref(true);
		return false;
	}
	const bool hasExitState = load_exit_state(shortName, exitStateName);
	const bool hasPref = load_pref();
	return hasExitState && hasPref;
}

bool
load_language(const char* addOnPath)
{
	gAppPrivacy->SetApplicationPath(addOnPath);
	if (!gAppPrivacy->IsLoaded() && !has_pref_file())
		choose_desktop_language();

	merion::TLLT table;
	BResources resources(addOnPath);
	if (table.Load(&resources, kDefaultLanguage) != B_OK)
		table
			= *gLLT; // the file is being replaced: what it had is there, under another language's texts
	const bool hasChosen = gAppPrivacy->Load(&table);
	*gLLT = table;
	return hasChosen;
}

void
set_node_monitor_language(const char* addOnPath, TNodeMonitorHandler* watcher)
{
	TNodeMonitorHandler::Nodes nodes;
	const std::string folder = merion::language_folder(addOnPath);
	if (!folder.empty()) {
		// the folder itself may come, go or be exchanged
		add_node(parent_of(folder), B_WATCH_DIRECTORY, &nodes);
		add_node(folder, B_WATCH_DIRECTORY, &nodes);
		add_language_files(folder, &nodes);
	}
	watcher->Watch(nodes);
	if (gAppPrivacy->ShouldBeLanguageChanged())
		watcher->Notify();
}
