#pragma once

#include <SupportDefs.h>

/*!	What the host passes to an add-on's factory. The factory writes 1 into `version` once its object
   is built: the version of the interface below that the object follows. */
struct PluginConstructorStruct {
	int32 version;
	int32 reserved[7];
};

/*!	A general plug-in of the host: an object that the host makes by NewPlugin(), drives by the
   operations below and deletes before it unloads the add-on. Thread: the host may call it from any
   of its threads, one call at a time. Owner: the host. The order of members and of virtual
   operations is the host's binary interface. */
class GeneralPlugin {
public:
	char* name = nullptr;     // heap copy, the add-on's
	char* infoLine = nullptr; // heap copy, the add-on's; one line for the host's list of add-ons
	int32 reserved = 0;
	bool reservedFlag = false;

	virtual ~GeneralPlugin() = default;
	virtual int32 Init() = 0;   // show yourself; 1 when done
	virtual void Cleanup() = 0; // close all windows; the deletion follows
	//! Shows the about box when `query` is false; 1 when the add-on has one.
	virtual int32 About(bool query) = 0;
	//! Shows the preferences when `query` is false; 1 when the add-on has them.
	virtual int32 Prefs(bool query) = 0;
	virtual uint32 GetFlags() = 0;
};

//! The one symbol that the host looks up in an add-on.
extern "C" GeneralPlugin* NewPlugin(PluginConstructorStruct* construct);
