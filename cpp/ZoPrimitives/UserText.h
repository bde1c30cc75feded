#pragma once

#include "ZoPrimitives/ZoLanguage.h"
#include "ZoPrimitives/ZoUtf8.h"

#include "messages/zoprimitives.h"

#include <cstddef>
#include <iterator>

namespace ZoPrimitives {

/// The columns of the tables.
enum class Language : int { Portuguese, English, Spanish };

Language CurrentLanguage() noexcept;

/// The row of a text in Windows-1252; the number of rows if there is none. With sanitizers the compiler
/// compares no addresses while it compiles.
constexpr std::size_t RowOfText(const char* ansi) {
    const auto same = [](const char* a, const char* b) {
        while (*a != '\0' && *a == *b) ++a, ++b;
        return *a == *b;
    };
    std::size_t row = 0;
    while (row != std::size(LIBRARY_TEXTS) && !same(LIBRARY_TEXTS[row].key, ansi)) ++row;
    return row;
}

/// A text of the library for the user, named by its Portuguese literal. It is looked up while compiling: what
/// po/ lacks does not compile.
class UserText {
public:
    constexpr UserText() = default;
    template <std::size_t N>
    consteval UserText(const char (&literal)[N]) : row(Find(literal)) {}

    constexpr explicit operator bool() const { return row != nullptr; }
    /// Windows-1252; "" for none.
    constexpr const char* In(Language language) const {
        return row != nullptr ? row->languages[static_cast<int>(language)] : "";
    }

private:
    template <std::size_t N>
    static consteval const TZoText* Find(const char (&literal)[N]) {
        char ansi[N] = {};
        char* to = ansi;
        for (const char* from = literal; *from != '\0'; ++to)
            *to = static_cast<char>(Windows1252::FromUnicode(Windows1252::Next(from)));
        const std::size_t found = RowOfText(ansi);
        if (found == std::size(LIBRARY_TEXTS)) throw "po/ lacks this text: ./dev messages puts it there";
        return &LIBRARY_TEXTS[found];
    }

    const TZoText* row = nullptr;
};

/// A sentence made of several parts takes the language once, so that none is in two.
inline const char* Translated(UserText text, Language language = CurrentLanguage()) noexcept {
    return text.In(language);
}

} // namespace ZoPrimitives
