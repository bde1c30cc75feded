#pragma once

#include "ZoPrimitives/UnitTable.h"
#include "ZoPrimitives/grandeza.h"

namespace ZoPrimitives {

/// A unit's name, from the table, in the language in use.
using ShownName = ZoString (*)(const char* name);
ZoString TranslatedName(const char* name);

/// "" for a unit that is not in the table.
ZoString WriteQuantity(UnitTable table, int unit, double valor, unsigned decimals, bool keepZeros,
                       char separator);
/// `valor` gets the value in the storage unit; it is left as it is when the text is refused.
TLeituraDeGrandeza ReadQuantity(UnitTable table, const ZoString& text, char separator, int unitWhenNone,
                                double& valor, ShownName shown = TranslatedName);

/// The characters of a unit's name as they count when units are read: blanks as one space, exponents as plain
/// digits with or without a circumflex, the degree sign as the ordinal º, the middle dot as a point.
class UnitNameReader {
public:
    constexpr UnitNameReader(std::string_view name, bool anyCase) : text(name), caseless(anyCase) {}

    /// 0 at the end.
    constexpr unsigned char Next() {
        if (at < text.size() && text[at] == '^' && at + 1 < text.size() && Plain(text[at + 1]) >= '2' &&
            Plain(text[at + 1]) <= '4') {
            ++at;
        }
        if (at == text.size()) return 0;
        if (!IsBlank(text[at])) return Plain(text[at++]);
        while (at < text.size() && IsBlank(text[at])) ++at;
        return ' ';
    }

    static constexpr bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r') || c == '\xA0'; }

private:
    constexpr unsigned char Plain(char c) const {
        const auto byte = static_cast<unsigned char>(c);
        switch (byte) {
        case 0xB2:
            return '2';
        case 0xB3:
            return '3';
        case 0xB0:
            return 0xBA;
        case 0xB7:
            return '.';
        case 'M':
            return byte; // mega is not milli, nor metre
        default:
            break;
        }
        const bool upper = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7);
        return caseless && upper ? static_cast<unsigned char>(byte + 0x20) : byte;
    }

    std::string_view text;
    std::size_t at = 0;
    bool caseless;
};

constexpr bool IsSameUnitName(std::string_view a, std::string_view b, bool anyCase) {
    UnitNameReader left(a, anyCase);
    UnitNameReader right(b, anyCase);
    for (;;) {
        const unsigned char c = left.Next();
        if (c != right.Next()) return false;
        if (c == 0) return true;
    }
}

/// No two units of a table read alike.
constexpr bool UnitNamesReadApart(UnitTable table) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (IsSameUnitName(table[i].name, table[j].name, true)) return false;
        }
    }
    return true;
}

} // namespace ZoPrimitives
