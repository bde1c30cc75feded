#include "text.h"

#include "ZoPrimitives/ZoUtf8.h"

#include <fmt/format.h>

namespace ZoTool {

using namespace ZoPrimitives;

std::string Utf8(const ZoString& text) { return ZoToUtf8(text); }

std::string ClassName(const TZoClass& type) { return OnOneLine(Utf8(type.GetName())); }

std::size_t Width(std::string_view utf8) {
    std::size_t width = 0;
    for (const char c : utf8) width += (static_cast<unsigned char>(c) & 0xC0u) != 0x80u;
    return width;
}

std::string OnOneLine(std::string_view utf8) {
    std::string line;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const bool highControl =
            byte == 0xC2 && i + 1 < utf8.size() && static_cast<unsigned char>(utf8[i + 1]) < 0xA0;
        if (byte == '\n') {
            line += "\\n";
        } else if (byte == '\t') {
            line += "\\t";
        } else if (byte == '\r') {
            line += "\\r";
        } else if (byte < 0x20 || byte == 0x7F) {
            line += fmt::format("\\x{:02X}", byte);
        } else if (highControl) {
            line += fmt::format("\\x{:02X}", static_cast<unsigned char>(utf8[++i]));
        } else {
            line += static_cast<char>(byte);
        }
    }
    return line;
}

} // namespace ZoTool
