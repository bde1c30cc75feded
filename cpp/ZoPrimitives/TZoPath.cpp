#include "ZoPrimitives/TZoPath.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/WholeText.h"

namespace ZoPrimitives {

namespace {

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(std::string& text, char32_t character) {
    const auto append = [&](char32_t bits) { text += static_cast<char>(static_cast<unsigned char>(bits)); };
    const auto follow = [&](int shift) { append(0x80 | ((character >> shift) & 0x3F)); };
    if (character < 0x80) return append(character);
    if (character < 0x800) {
        append(0xC0 | character >> 6);
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        follow(6);
    } else {
        append(0xF0 | character >> 18);
        follow(12);
        follow(6);
    }
    follow(0);
}

/// Of UTF-16. A surrogate alone, which UTF-8 does not have, makes a text that the system refuses.
std::string Utf8Of(const wchar_t* path) {
    std::string text;
    for (; *path != L'\0'; ++path) {
        auto character = static_cast<char32_t>(*path);
        const auto next = static_cast<char32_t>(path[1]);
        if (IsHighSurrogate(character) && IsLowSurrogate(next)) {
            character = 0x10000 + ((character - 0xD800) << 10) + (next - 0xDC00);
            ++path;
        }
        AppendUtf8(text, character);
    }
    return text;
}

} // namespace

TZoPath::TZoPath(const TZoPath&) = default;
TZoPath::TZoPath(TZoPath&&) noexcept = default;
TZoPath& TZoPath::operator=(const TZoPath&) = default;
TZoPath& TZoPath::operator=(TZoPath&&) noexcept = default;
TZoPath::~TZoPath() = default;

void TZoPath::Set(const char* path) {
    if (path == nullptr) path = "";
    text = WholeText({path});
    utf8 = WholeText({Platform::PathFromText(path)});
}

void TZoPath::Set(const wchar_t* path) { *this = FromUtf8(Utf8Of(path).c_str()); }

TZoPath TZoPath::FromUtf8(const char* path) {
    TZoPath made;
    made.utf8 = WholeText({path});
    made.text = WholeText({Platform::TextOfPath(path)});
    return made;
}

TZoPath TZoPath::With(const char* suffix) const {
    TZoPath longer;
    longer.utf8 = WholeText({utf8.c_str(), suffix});
    longer.text = WholeText({text.c_str(), suffix});
    return longer;
}

} // namespace ZoPrimitives
