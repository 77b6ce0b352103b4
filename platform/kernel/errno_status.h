#pragma once

#include <SupportDefs.h>

namespace BPrivate {

//! The platform's status for a value of errno; 0 is B_OK, what has no name of its own is B_ERROR.
status_t status_of_errno(int error);

} // namespace BPrivate
