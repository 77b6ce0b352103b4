#pragma once

#include <SupportDefs.h>

/*!	The platform's message codes. System messages (an underscore and capitals) are the kits' own; the rest
	is what applications send each other. */
enum {
	B_ABOUT_REQUESTED = '_ABR',
	B_WINDOW_ACTIVATED = '_ACT',
	B_APP_ACTIVATED = '_ACT',
	B_ARGV_RECEIVED = '_ARG', // "argc" (int32), "argv" (strings), "cwd" (string)
	B_QUIT_REQUESTED = '_QRQ',
	B_CLOSE_REQUESTED = '_QRQ',
	B_CANCEL = '_CNC',
	B_INVALIDATE = '_IVL',
	B_KEY_DOWN = '_KYD',
	B_KEY_UP = '_KYU',
	B_UNMAPPED_KEY_DOWN = '_UKD',
	B_UNMAPPED_KEY_UP = '_UKU',
	B_KEY_MAP_LOADED = '_KML',
	B_LAYOUT_WINDOW = '_LAY',
	B_MODIFIERS_CHANGED = '_MCH',
	B_MINIMIZE = '_WMN',
	B_MOUSE_DOWN = '_MDN',
	B_MOUSE_MOVED = '_MMV',
	B_MOUSE_ENTER_EXIT = '_MEX',
	B_MOUSE_IDLE = '_MSI',
	B_MOUSE_UP = '_MUP',
	B_MOUSE_WHEEL_CHANGED = '_MWC',
	B_OPEN_IN_WORKSPACE = '_OWS',
	B_PACKAGE_UPDATE = '_PKU',
	B_PRINTER_CHANGED = '_PCH',
	B_PULSE = '_PUL',
	B_READY_TO_RUN = '_RTR',
	B_REFS_RECEIVED = '_RRC', // "refs" (entry_refs)
	B_RELEASE_OVERLAY_LOCK = '_ROV',
	B_ACQUIRE_OVERLAY_LOCK = '_AOV',
	B_SCREEN_CHANGED = '_SCH',
	B_VALUE_CHANGED = '_VCH',
	B_TRANSLATOR_ADDED = '_ART',
	B_TRANSLATOR_REMOVED = '_RRT',
	B_DELETE_TRANSLATOR = '_DRT',
	B_VIEW_MOVED = '_VMV',
	B_VIEW_RESIZED = '_VRS',
	B_WINDOW_MOVED = '_WMV',
	B_WINDOW_RESIZED = '_WRS',
	B_WORKSPACES_CHANGED = '_WCG',
	B_WORKSPACE_ACTIVATED = '_WAC',
	B_ZOOM = '_WZM',
	B_COLORS_UPDATED = '_CLU',
	B_FONTS_UPDATED = '_FNU',
	B_TRACKER_ADDON_MESSAGE = '_TAM',
	_QUIT_ = '_QIT', // ends a looper without asking it
	_MESSAGE_DROPPED_ = '_MDP',
	_MENUS_DONE_ = '_MND'
};

//! Of applications; the first six are scripting commands, see BMessage::AddSpecifier().
enum {
	B_SET_PROPERTY = 'PSET',
	B_GET_PROPERTY = 'PGET',
	B_CREATE_PROPERTY = 'PCRT',
	B_DELETE_PROPERTY = 'PDEL',
	B_COUNT_PROPERTIES = 'PCNT',
	B_EXECUTE_PROPERTY = 'PEXE',
	B_GET_SUPPORTED_SUITES = 'SUIT',
	B_UNDO = 'UNDO',
	B_REDO = 'REDO',
	B_CUT = 'CCUT',
	B_COPY = 'COPY',
	B_PASTE = 'PSTE',
	B_SELECT_ALL = 'SALL',
	B_SAVE_REQUESTED = 'SAVE',         // a file panel's: "directory" (entry_ref), "name" (string)
	B_MESSAGE_NOT_UNDERSTOOD = 'MNOT', // a reply: "error" (int32), "message" (string)
	B_NO_REPLY = 'NONE',               // a reply: the message was deleted unanswered
	B_REPLY = 'RPLY',
	B_SIMPLE_DATA = 'DATA', // a drop: "refs" (entry_refs)
	B_MIME_DATA = 'MIME',
	B_ARCHIVED_OBJECT = 'ARCV',
	B_UPDATE_STATUS_BAR = 'SBUP',
	B_RESET_STATUS_BAR = 'SBRS',
	B_NODE_MONITOR = 'NDMN', // see NodeMonitor.h
	B_QUERY_UPDATE = 'QUPD',
	B_ENDORSABLE = 'ENDO',
	B_COPY_TARGET = 'DDCP',
	B_MOVE_TARGET = 'DDMV',
	B_TRASH_TARGET = 'DDRM',
	B_LINK_TARGET = 'DDLN',
	B_INPUT_DEVICES_CHANGED = 'IDCH',
	B_INPUT_METHOD_EVENT = 'IMEV',
	B_WINDOW_MOVE_TO = 'WDMT',
	B_WINDOW_MOVE_BY = 'WDMB',
	B_SILENT_RELAUNCH = 'AREL',
	B_OBSERVER_NOTICE_CHANGE = 'NTCH', // see BHandler::SendNotices()
	B_CONTROL_INVOKED = 'CIVK',
	B_CONTROL_MODIFIED = 'CMOD'
};
