#pragma once

#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// Inside a `catch` block: one or two sentences for the user about the exception that was caught, the
/// library's, the standard library's or another: what failed, on which file, why, and what helps.
/// Windows-1252, in the current language; empty outside such a block. Throws `std::bad_alloc` when there is
/// no memory for them.
ZO_API ZoString ZoExplain();

} // namespace ZoPrimitives
