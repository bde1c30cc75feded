#pragma once

#include <string_view>

namespace ZoTool {

// The sources of the report's page (the folder report), which the build puts into the program. In the page,
// "@style@", "@script@", "@diagram@" and "@data@" stand for what belongs there.
std::string_view PageHtml();
std::string_view PageCss();
std::string_view PageJs();

} // namespace ZoTool
