#pragma once

#include <string>
#include <string_view>

namespace ZoTool {

class Tool;

/// Makes a file of these contents, or replaces the one that is there when they are all written. Throws
/// `Trouble`. `path` is UTF-8.
void SaveFile(const std::string& path, std::string_view contents);

/// What a command makes of one file: into the file of that name, or to standard output for "-". Throws
/// `Trouble`, also when that would replace `source`.
void SaveResult(Tool& tool, const std::string& path, std::string_view contents, const std::string& source);

} // namespace ZoTool
