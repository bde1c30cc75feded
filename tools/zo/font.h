#pragma once

#include <string>
#include <string_view>

namespace ZoTool {

enum class Weight { Regular, Bold };

/// The width of a UTF-8 text in a sans-serif font of size 1. It is that of the widest among the common ones,
/// so that the text fits with the others, too.
double TextWidth(std::string_view utf8, Weight weight = Weight::Regular);

/// The text, cut with an ellipsis if it is wider than `room` in a font of that size.
std::string Fitted(std::string_view utf8, double room, double size, Weight weight = Weight::Regular);

} // namespace ZoTool
