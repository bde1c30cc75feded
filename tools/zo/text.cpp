#include "text.h"

#include "words.h"

#include "ZoPrimitives/ZoUtf8.h"

#include <fmt/format.h>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

bool IsControl(char32_t character) { return character < 0x20 || (character >= 0x7F && character < 0xA0); }

std::string Escaped(char32_t character) {
    switch (character) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return fmt::format("\\x{:02X}", static_cast<unsigned>(character));
    }
}

// `toEscape`: beside control characters.
std::string Escape(std::string_view utf8, std::string_view toEscape) {
    std::string line;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        // The control characters beyond ASCII are C2 80 to C2 9F.
        const bool wide = byte == 0xC2 && i + 1 < utf8.size();
        const auto character = static_cast<char32_t>(wide ? static_cast<unsigned char>(utf8[i + 1]) : byte);
        if ((wide || byte < 0x80) && IsControl(character)) {
            line += Escaped(character);
            i += wide;
        } else {
            if (toEscape.find(utf8[i]) != std::string_view::npos) line += '\\';
            line += utf8[i];
        }
    }
    return line;
}

} // namespace

std::string Utf8(std::string_view windows1252) {
    std::string utf8;
    utf8.reserve(windows1252.size());
    for (const char c : windows1252) {
        const char32_t character = Windows1252::ToUnicode(static_cast<unsigned char>(c));
        if (character < 0x80) {
            utf8 += static_cast<char>(character);
            continue;
        }
        if (character < 0x800) {
            utf8 += static_cast<char>(0xC0 | (character >> 6));
        } else {
            utf8 += static_cast<char>(0xE0 | (character >> 12));
            utf8 += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
        }
        utf8 += static_cast<char>(0x80 | (character & 0x3F));
    }
    return utf8;
}

std::string Utf8(const ZoString& text) { return Utf8(std::string_view(text.c_str(), text.length())); }

std::size_t Width(std::string_view utf8) {
    std::size_t width = 0;
    for (const char c : utf8) width += (static_cast<unsigned char>(c) & 0xC0u) != 0x80u;
    return width;
}

std::string OnOneLine(std::string_view utf8) { return Escape(utf8, ""); }
std::string Quoted(std::string_view utf8) { return '"' + Escape(utf8, "\"\\") + '"'; }

std::string ClassName(const TZoClass& type) { return OnOneLine(Utf8(type.GetName())); }
std::string FieldName(const TZoClassField& field) { return OnOneLine(Utf8(field.GetFieldName())); }

std::string Counted(unsigned long long count, std::string_view what) {
    return fmt::format("{} {}{}", count, Translation(std::string(what)), count == 1 ? "" : "s");
}

} // namespace ZoTool
