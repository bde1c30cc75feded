#include "markup.h"

namespace ZoTool {

std::string Escaped(std::string_view utf8) {
    std::string escaped;
    escaped.reserve(utf8.size());
    for (const char c : utf8) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r') {
                escaped += "\uFFFD";
            } else {
                escaped += c;
            }
        }
    }
    return escaped;
}

} // namespace ZoTool
