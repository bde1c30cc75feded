#pragma once

#include "ZoPrimitives/ZoString.h"

#include <string>

namespace Frame {

/// A text of the model in UTF-8, for a terminal or a picture. Characters that could control a terminal become
/// '?'.
std::string Printable(const ZoPrimitives::ZoString& text);

/// The number of characters of a UTF-8 text.
std::size_t Width(const std::string& text);

} // namespace Frame
