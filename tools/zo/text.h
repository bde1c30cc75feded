#pragma once

#include "ZoPrimitives/ZoClassField.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoString.h"

#include <string>
#include <string_view>

namespace ZoTool {

/// Texts of files are Windows-1252: as UTF-8, zero bytes included.
std::string Utf8(std::string_view windows1252);
std::string Utf8(const ZoPrimitives::ZoString& text);

/// How many columns a terminal needs for it.
std::size_t Width(std::string_view utf8);

/// Control characters as escapes (\n, \t, \x1B), so that a text of a file stays on its line and commands no
/// terminal.
std::string OnOneLine(std::string_view utf8);
/// In quotation marks, which are escaped inside it, as are backslashes and control characters.
std::string Quoted(std::string_view utf8);

// Names on one line.
std::string ClassName(const ZoPrimitives::TZoClass& type);
std::string FieldName(const ZoPrimitives::TZoClassField& field);

/// "1 object", "2 objects", in the current language, all of which add an s.
std::string Counted(unsigned long long count, std::string_view what);

} // namespace ZoTool
