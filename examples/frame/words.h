#pragma once

#include "ZoPrimitives/ZoString.h"

#include <string>
#include <vector>

namespace Frame {

/// A text of this program, written in English, in the current language, as UTF-8. "{1}" stands for the first
/// of the values, which are UTF-8.
std::string Words(const char* english, const std::vector<std::string>& values = {});

/// What begins a line of the output, with blanks up to where its value stands.
std::string Label(const std::string& words);

/// A text of the model in UTF-8, for a terminal or a picture. Characters that could control a terminal become
/// '?'.
std::string Printable(const ZoPrimitives::ZoString& text);

/// The number of characters of a UTF-8 text.
std::size_t Width(const std::string& text);

} // namespace Frame
