#include "Values/UnitText.h"

#include "Values/UnitName.h"
#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/NumberText.h"
#include "ZoPrimitives/UserText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace ZoPrimitives {

namespace {

constexpr int MOST_WORDS = 6; // in a unit's name: "lb / cu . ft"

using Expected = TLeituraDeGrandeza::TEsperado;

bool IsSign(char c) { return c == '+' || c == '-'; }
bool IsSmall(char c) {
    return (c >= 'a' && c <= 'z') || (static_cast<unsigned char>(c) >= 0xDF && c != '\xF7');
}
bool IsSeparator(char c) {
    return std::string_view("!\"#$%&'()*,./:;<=>?@[\\]^_`{|}~").find(c) != std::string_view::npos;
}

/// Parses a number and a unit from left to right; on an error remembers the position and what was expected
/// there.
class QuantityParser {
public:
    QuantityParser(const ZoString& source, char decimalSeparator, UnitTable units)
        : text(source.c_str()), separator(decimalSeparator), table(units) {}

    bool Number(double& value) {
        SkipBlanks();
        start = at;
        std::string digits; // with a point, as from_chars expects
        if (At(IsSign)) {
            if (text[at] == '-') digits += '-';
            ++at;
        }
        if (!At(IsDigit) && Here() != separator) {
            if (OtherMark() && IsDigit(Here(1))) return Miss(Expected::Separador);
            return Miss(at == start ? Expected::Numero : Expected::Algarismo);
        }
        TakeDigits(digits);
        const bool pointed = Here() == separator;
        if (pointed) {
            ++at;
            if (!IsDigit(digits.empty() ? '\0' : digits.back()) && !At(IsDigit))
                return Miss(Expected::Algarismo);
            digits += '.';
            TakeDigits(digits);
        }
        if (GroupFollows(pointed)) return Miss(Expected::MilharesJuntos);
        if (!pointed && OtherMark()) return Miss(Expected::Separador);
        if ((Here() | 0x20) == 'e' && IsDigit(Here(IsSign(Here(1)) ? 2 : 1))) {
            digits += 'e';
            ++at;
            if (At(IsSign)) {
                if (text[at] == '-') digits += '-';
                ++at;
            }
            TakeDigits(digits);
        }
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        return read.ec == std::errc() || OutOfRange();
    }

    /// Parses the unit, to the end of the text. If none is written, assumes `unitWhenNone` if that is a unit.
    const UnitRow* Unit(int unitWhenNone) {
        SkipBlanks();
        std::size_t end = text.size();
        while (end > at && IsBlank(text[end - 1])) --end;
        const UnitRow* row = at == end ? FindUnit(table, unitWhenNone) : FindNamed(text.substr(at, end - at));
        if (row != nullptr) return row;
        // If a unit is followed by something else, report what follows.
        std::size_t named = at;
        std::size_t word = at;
        for (int words = 0; words < MOST_WORDS && word < end; ++words) {
            while (IsBlank(text[word])) ++word;
            while (word < end && !IsBlank(text[word])) ++word;
            if (FindNamed(text.substr(at, word - at)) != nullptr) named = word;
        }
        if (named > at) {
            at = named;
            SkipBlanks();
            Miss(Expected::Fim);
            return nullptr;
        }
        Miss(Expected::Unidade);
        return nullptr;
    }

    bool OutOfRange() {
        at = start;
        return Miss(Expected::Representavel);
    }

    TLeituraDeGrandeza Refused() const {
        TLeituraDeGrandeza reading;
        reading.esperado = missing;
        reading.posicao = static_cast<unsigned>(at);
        reading.descricao = Description();
        return reading;
    }

private:
    char Here(std::size_t ahead = 0) const { return at + ahead < text.size() ? text[at + ahead] : '\0'; }
    bool At(bool (*is)(char)) const { return is(Here()); }
    bool OtherMark() const { return Here() == '.' || Here() == ','; }
    void SkipBlanks() {
        while (at < text.size() && IsBlank(text[at])) ++at;
    }
    void TakeDigits(std::string& digits) {
        while (At(IsDigit)) digits += text[at++];
    }
    bool Miss(Expected what) {
        missing = what;
        return false;
    }

    /// Whether thousands are grouped here. A single mark with three digits may also be decimals after the
    /// wrong mark.
    bool GroupFollows(bool pointed) const {
        std::size_t digits = 0;
        while (digits < 4 && IsDigit(Here(1 + digits))) ++digits;
        if (IsBlank(Here()) || Here() == '\'') return digits == 3;
        if (!OtherMark() && Here() != separator) return false;
        const char next = Here(1 + digits);
        return pointed ? digits > 0 : digits == 3 && (next == '.' || next == ',' || next == separator);
    }

    /// Null if no unit has the name. No two have the same, not even in capitals (`UnitNamesReadApart`).
    const UnitRow* FindNamed(std::string_view typed) const {
        const bool capitals = std::none_of(typed.begin(), typed.end(), IsSmall);
        const UnitLetters letters = capitals ? UnitLetters::AnyCase : UnitLetters::AnyCaseButM;
        const auto isTyped = [&](std::string_view name) { return IsUnitName(typed, name, letters); };
        const auto found = std::find_if(table.begin(), table.end(),
                                        [&](const UnitRow& row) { return HasName(row, isTyped); });
        return found != table.end() ? &*found : nullptr;
    }

    ZoString Description() const {
        const auto words = [this](UserText what) { return ZoString(Translated(what, language)); };
        switch (missing) {
        case Expected::Nada:
            break;
        case Expected::Numero:
            return words(UserText("um número"));
        case Expected::Algarismo:
            return words(UserText("um algarismo"));
        case Expected::Separador:
            return words(UserText("o separador decimal")) + " " + separator;
        case Expected::Representavel:
            return words(UserText("um número nem grande nem pequeno demais"));
        case Expected::Unidade:
            return words(UserText("uma unidade")) + Names();
        case Expected::Fim:
            return words(UserText("o fim do texto"));
        case Expected::MilharesJuntos:
            return words(UserText("os milhares juntos, sem separador"));
        }
        return ZoString();
    }
    ZoString Names() const {
        ZoString list;
        for (const UnitRow& row : table) {
            const char* const name = row.NameIn(language);
            if (*name != '\0') list += ZoString(list.length() == 0 ? ": " : ", ") + name;
        }
        return list;
    }

    std::string_view text;
    char separator;
    UnitTable table;
    const Language language = CurrentLanguage();
    std::size_t at = 0;
    std::size_t start = 0; // where the number starts
    Expected missing = Expected::Nada;
};

} // namespace

ZoString WriteQuantity(UnitTable table, int unit, double valor, unsigned decimals, bool keepZeros,
                       char separator) {
    ZO_ASSERT(IsSeparator(separator), "IsSeparator(separator)", ZoSources::UNIT_TEXT);
    const UnitRow* row = FindUnit(table, unit);
    if (row == nullptr) return ZoString();
    ZoString text = FormatFloat(row->reading(valor), decimals, keepZeros, separator);
    if (*row->name != '\0') {
        text += " ";
        text += row->NameIn(CurrentLanguage());
    }
    return text;
}

TLeituraDeGrandeza ReadQuantity(UnitTable table, const ZoString& text, char separator, int unitWhenNone,
                                double& valor) {
    ZO_ASSERT(IsSeparator(separator), "IsSeparator(separator)", ZoSources::UNIT_TEXT);
    QuantityParser parser(text, separator, table);
    double value = 0;
    if (!parser.Number(value)) return parser.Refused();
    const UnitRow* row = parser.Unit(unitWhenNone);
    if (row == nullptr) return parser.Refused();
    const double stored = row->stored(value);
    const bool vanished = stored == 0 && value != 0 && row->stored(0) == 0; // 32 ºF is 0 ºC
    if (!std::isfinite(stored) || vanished) {
        parser.OutOfRange();
        return parser.Refused();
    }
    valor = stored;
    TLeituraDeGrandeza reading;
    reading.unidade = row->unit;
    return reading;
}

} // namespace ZoPrimitives
