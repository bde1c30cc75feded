#pragma once

#include <string_view>

namespace ZoTool {

// The sources of the report's page (the folder report), which the build puts into the program. In the page,
// "@style@", "@script@", "@diagram@", "@data@", "@language@" and "@translations@" stand for what belongs
// there, and "@'Summary'@" for a text in the current language. The script's texts, such as t('no items'), are
// in the translations.
std::string_view PageHtml();
std::string_view PageCss();
std::string_view PageJs();

} // namespace ZoTool
