#pragma once

#include <regex>
#include <string>
#include <vector>

/// Where a text of XML is not well-formed, "" when it is; knows what the pictures use.
inline std::string XmlFault(const std::string& text) {
    static const std::regex piece(
        R"re(<\?xml [^<>]*\?>\n|<(/?)(\w+)(?: [\w:-]+="[^"<>]*")*(/?)>|[^<>&\x01-\x09\x0b-\x1f]|&(?:amp|lt|gt|quot);)re");
    std::vector<std::string> open;
    auto at = text.begin();
    for (std::smatch match;
         std::regex_search(at, text.end(), match, piece, std::regex_constants::match_continuous);
         at = match[0].second) {
        if (match[2].length() == 0 || match[3].length() != 0) continue;
        if (match[1].length() == 0) {
            open.push_back(match[2]);
        } else {
            if (open.empty() || open.back() != match[2]) break;
            open.pop_back();
            if (open.empty())
                return std::string(match[0].second, text.end()) == "\n" ? "" : "something behind its end";
        }
    }
    return "not well-formed: " + std::string(at, text.end()).substr(0, 40);
}
