#pragma once

#include <View.h>

namespace merion {

//! Base of the maker's views. Thread and owner: as every view.
class TMERView : public BView {
public:
	TMERView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);
};

} // namespace merion
