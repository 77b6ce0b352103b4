#pragma once

#include "host/GeneralPlugin.h"

class TTavoraDCommMan;

/*!	The add-on as its host sees it. Does nothing on the host's threads but post requests to the communication manager.
	While it exists, so do the add-on's singletons, which it makes and deletes: there is one of it at a time.
	The name and the information line are left to the host when it is deleted. */
class TTavoraD : public GeneralPlugin {
public:
	//! Loads the settings and starts the manager; throws when memory is short.
	explicit TTavoraD(PluginConstructorStruct* construct);
	//! Saves the exit state and closes all windows; nothing of the add-on runs afterwards.
	~TTavoraD() override;

	int32 Init() override;
	void Cleanup() override;
	int32 About(bool query) override;
	int32 Prefs(bool query) override;
	uint32 GetFlags() override;

private:
	TTavoraDCommMan* fCommMan; // deletes itself when it is quit
};
