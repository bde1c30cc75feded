#pragma once

#include "ZoPrimitives/ZoString.h"

#include <string>

namespace ZoPrimitives {

/// Converts between Windows-1252 and Unicode. The five bytes that the code page leaves undefined map to the
/// control characters of the same number.
struct Windows1252 {
    static constexpr char32_t ToUnicode(unsigned char byte) noexcept {
        return byte >= 0x80 && byte < 0xA0 ? HIGH_CONTROLS[byte - 0x80] : byte;
    }
    /// The byte, or -1 for a character that is not in the code page.
    static constexpr int FromUnicode(char32_t character) noexcept {
        if (character < 0x80 || (character >= 0xA0 && character < 0x100)) return static_cast<int>(character);
        for (int i = 0; i < 32; ++i) {
            if (HIGH_CONTROLS[i] == character) return 0x80 + i;
        }
        return -1;
    }
    static constexpr char32_t MALFORMED = 0xFFFD;
    /// Reads one character of NUL-terminated UTF-8 and advances. Malformed input gives `MALFORMED` and
    /// advances by one byte.
    static constexpr char32_t Next(const char*& text) noexcept {
        const auto lead = static_cast<unsigned char>(*text++);
        if (lead < 0x80) return lead;
        const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        char32_t character = lead & (0x3Fu >> more);
        if (lead < 0xC2 || lead > 0xF4) return MALFORMED;
        for (int i = 0; i < more; ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            if ((byte & 0xC0u) != 0x80u) return MALFORMED;
            character = character << 6 | (byte & 0x3Fu);
        }
        const bool overlong = (more == 2 && character < 0x800) || (more == 3 && character < 0x10000);
        if (overlong || (character >= 0xD800 && character < 0xE000) || character > 0x10FFFF) return MALFORMED;
        text += more;
        return character;
    }

private:
    static constexpr char32_t HIGH_CONTROLS[32] = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
};

// For terminals and other places that need UTF-8.

inline std::string ZoToUtf8(const ZoString& text) {
    std::string result;
    for (const char* p = text.c_str(); *p != '\0'; ++p) {
        const char32_t character = Windows1252::ToUnicode(static_cast<unsigned char>(*p));
        if (character < 0x80) {
            result += static_cast<char>(character);
            continue;
        }
        if (character < 0x800) {
            result += static_cast<char>(0xC0 | (character >> 6));
        } else {
            result += static_cast<char>(0xE0 | (character >> 12));
            result += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
        }
        result += static_cast<char>(0x80 | (character & 0x3F));
    }
    return result;
}

/// Characters that Windows-1252 lacks and malformed bytes become '?', and are added to `lost` as they were.
/// Null is empty.
inline ZoString ZoFromUtf8(const char* text, std::string& lost) {
    std::string bytes;
    while (text != nullptr && *text != '\0') {
        const char* const start = text;
        const int byte = Windows1252::FromUnicode(Windows1252::Next(text));
        if (byte < 0) lost.append(start, text);
        bytes += byte < 0 ? '?' : static_cast<char>(byte);
    }
    return ZoString(bytes.c_str());
}
/// The same without telling what was lost.
inline ZoString ZoFromUtf8(const char* text) {
    std::string lost;
    return ZoFromUtf8(text, lost);
}

} // namespace ZoPrimitives
