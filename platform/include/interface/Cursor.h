#pragma once

#include <SupportDefs.h>

//! The desktop's pointers that programs use for a meaning; its theme draws them.
enum BCursorID {
	B_CURSOR_ID_SYSTEM_DEFAULT = 1,
	B_CURSOR_ID_I_BEAM = 2,
	B_CURSOR_ID_COPY = 4,
	B_CURSOR_ID_MOVE = 11,
	B_CURSOR_ID_NOT_ALLOWED = 13,
};

/*!	How the pointer looks over a view: see BView::SetViewCursor(). Copies are equal. Any thread. */
class BCursor {
public:
	BCursor(BCursorID id) : fID(id) { }

	bool operator==(const BCursor& other) const = default;

private:
	friend class BView;

	BCursorID fID;
};
