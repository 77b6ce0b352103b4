#include "framework/TMERView.h"

namespace merion {

TMERView::TMERView(BRect frame, const char* name, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags)
{ }

} // namespace merion
