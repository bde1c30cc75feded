#pragma once

#include <string>
#include <string_view>

namespace ZoTool {

/// A UTF-8 text for a place between tags or in an attribute of HTML or XML: markup in it stays text, and
/// characters that XML has not become U+FFFD.
std::string Escaped(std::string_view utf8);

} // namespace ZoTool
