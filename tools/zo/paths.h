#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ZoTool {

/// Paths are UTF-8 in the tool's own texts, on every system.
std::filesystem::path PathOf(const std::string& utf8);
std::string Utf8Of(const std::filesystem::path& path);

/// Throws `Trouble` if `target` is one of the files that are read. "-" is none.
void RequireAnother(const std::string& target, const std::vector<std::string>& sources);

} // namespace ZoTool
