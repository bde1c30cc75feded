#include "words.h"

#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>

namespace Frame {

using ZoPrimitives::ZoString;

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
