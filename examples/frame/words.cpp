#include "words.h"

#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>

namespace Frame {

using ZoPrimitives::ZoString;

std::string Words(const char* english, const std::vector<std::string>& values) {
    const std::string text = ZoPrimitives::ZoToUtf8(ZoPrimitives::TTranslatedString(english).ToZoString());
    std::string filled;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool holds = text[i] == '{' && i + 2 < text.size() && text[i + 2] == '}';
        const std::size_t value = holds ? static_cast<std::size_t>(text[i + 1] - '1') : values.size();
        if (value < values.size()) {
            filled += values[value];
            i += 2;
        } else {
            filled += text[i];
        }
    }
    return filled;
}

std::string Label(const std::string& words) {
    constexpr std::size_t room = 13;
    const std::size_t width = Width(words);
    return "  " + words + std::string(width < room ? room - width : 1, ' ');
}

std::string Printable(const ZoString& text) {
    ZoString shown(text);
    for (unsigned i = 0; i < shown.length(); ++i) {
        const char32_t character = ZoPrimitives::Windows1252::ToUnicode(static_cast<unsigned char>(shown[i]));
        if (character < 0x20 || (character >= 0x7F && character < 0xA0)) shown[i] = '?';
    }
    return ZoPrimitives::ZoToUtf8(shown);
}

std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

} // namespace Frame
