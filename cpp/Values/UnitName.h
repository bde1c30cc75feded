#pragma once

#include "Values/UnitTable.h"

#include <cstddef>
#include <string_view>

namespace ZoPrimitives {

/// A capital M is mega, never milli or metre, unless the whole name is in capitals.
enum class UnitLetters { AnyCaseButM, AnyCase };

constexpr bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r') || c == '\xA0'; }

/// Reads a unit's name in its normal form: exponents as plain digits, with or without a circumflex, the
/// degree sign as the ordinal º, the underscore of accessors as a slash.
class UnitNameReader {
public:
    struct Character {
        unsigned char code; // 0 at the end
        bool joined;        // a mark or blanks separate it from the previous one
    };

    constexpr UnitNameReader(std::string_view name, UnitLetters letters) : text(name), compared(letters) {}

    constexpr Character Next() {
        const std::size_t start = at;
        const char mark = SkipJoint();
        const bool joined = at != start;
        if (at == text.size()) return {0, joined && text.substr(start) != "."};
        if (text[at] == '/' || text[at] == '_') {
            ++at;
            SkipBlanks();
            return {'/', mark != '\0' && mark != '.'};
        }
        if (text[at] == '^' && at + 1 < text.size() && Plain(text[at + 1]) >= '2' &&
            Plain(text[at + 1]) <= '4')
            ++at;
        return {Plain(text[at++]), joined};
    }

private:
    constexpr void SkipBlanks() {
        while (at < text.size() && IsBlank(text[at])) ++at;
    }
    /// Skips blanks with at most one mark among them; returns the mark.
    constexpr char SkipJoint() {
        SkipBlanks();
        const char mark = at < text.size() ? text[at] : '\0';
        if (mark != '.' && mark != '\xB7' && mark != '-' && mark != '*') return '\0';
        ++at;
        SkipBlanks();
        return mark;
    }
    constexpr unsigned char Plain(char c) const {
        const auto byte = static_cast<unsigned char>(c);
        switch (byte) {
        case 0xB2:
            return '2';
        case 0xB3:
            return '3';
        case 0xB0:
            return 0xBA;
        default:
            break;
        }
        const bool capital = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7);
        const bool folded = compared == UnitLetters::AnyCase || c != 'M';
        return capital && folded ? static_cast<unsigned char>(byte + 0x20) : byte;
    }

    std::string_view text;
    std::size_t at = 0;
    UnitLetters compared;
};

/// Whether `text` is the unit's name. Where the parts of `name` are joined, those of `text` may be joined or
/// adjacent; with `anywhere`, joints are ignored.
constexpr bool IsUnitName(std::string_view text, std::string_view name, UnitLetters letters,
                          bool anywhere = false) {
    UnitNameReader typed(text, letters);
    UnitNameReader wanted(name, letters);
    for (;;) {
        const UnitNameReader::Character a = typed.Next();
        const UnitNameReader::Character b = wanted.Next();
        if (a.code != b.code || (a.joined && !b.joined && !anywhere)) return false;
        if (a.code == 0) return true;
    }
}

/// Whether `is` returns true for one of the unit's names, in any language.
template <class Is>
constexpr bool HasName(const UnitRow& row, Is is) {
    const std::string_view name(row.name);
    if (is(std::string_view(row.accessor)) || (!name.empty() && is(name))) return true;
    for (const Language language : {Language::Portuguese, Language::English, Language::Spanish}) {
        const std::string_view translated(row.NameIn(language));
        if (translated != name && is(translated)) return true;
    }
    const std::string_view others(row.others);
    for (std::size_t begin = 0, end = 0; begin < others.size(); begin = end + 1) {
        // Not `find`, which sanitizers make unusable in constant expressions here.
        for (end = begin; end < others.size() && others[end] != '|';) ++end;
        if (is(others.substr(begin, end - begin))) return true;
    }
    return false;
}

/// Whether no two units of a table have names that read alike, even in capitals.
constexpr bool UnitNamesReadApart(UnitTable table) {
    for (const UnitRow& one : table) {
        for (const UnitRow& other : table) {
            if (&one == &other) break;
            const bool alike = HasName(one, [&](std::string_view a) {
                return HasName(
                    other, [&](std::string_view b) { return IsUnitName(a, b, UnitLetters::AnyCase, true); });
            });
            if (alike) return false;
        }
    }
    return true;
}

} // namespace ZoPrimitives
