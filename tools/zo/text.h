#pragma once

#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoString.h"

#include <string>
#include <string_view>

namespace ZoTool {

/// Texts of files are Windows-1252: as UTF-8, zero bytes included.
std::string Utf8(const ZoPrimitives::ZoString& text);

std::string ClassName(const ZoPrimitives::TZoClass& type);

/// How many columns a terminal needs for it.
std::size_t Width(std::string_view utf8);

/// Control characters as escapes (\n, \t, \x1B), so that a text of a file stays on its line and commands no
/// terminal.
std::string OnOneLine(std::string_view utf8);

} // namespace ZoTool
