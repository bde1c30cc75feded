#include "ZoPrimitives/UnitText.h"

#include "support/Assertions.h"
#include "support/CommaLocale.h"
#include "support/Quantities.h"

#include "ZoPrimitives/AnsiLiteral.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace ZoPrimitives;

namespace {

using Expected = TLeituraDeGrandeza::TEsperado;

constexpr double UNTOUCHED = -77; // what `ofText` reads over

TEST(UnitTextTest, Writes) {
    const struct {
        const char* quantity;
        double valor;
        int unit;
        unsigned decimals;
        bool keepZeros;
        char separator;
        const char* text;
    } rows[] = {
        {"GForcaLinear", 3.5, 2, 2, false, ',', "3,5 kN/m"},
        {"GForcaLinear", 3.5, 2, 2, true, '.', "3.50 kN/m"},
        {"GForcaLinear", 3.5, 0, 0, true, ',', "350 kgf/m"},
        {"GComprimento", -0.0001, 0, 2, false, ',', "0 cm"},
        {"GComprimento", -1234567.891, 1, 3, false, ',', "-12345,679 m"},
        {"GArea", 1, 0, 1, true, '.', "100.0 mm²"_ansi},
        {"GTemperatura", 101.25, 1, 1, false, ',', "212 ºF"_ansi},
        {"GVelocidade", 1, 3, 1, true, ',', "600,0"},
        {"GComprimento", 1, 5, 1, true, ',', ""},
        {"GComprimento", 1e300, 0, 0, false, ',', nullptr},
    };
    for (const auto& row : rows) {
        const std::string text =
            QuantityNamed(row.quantity).text(row.valor, row.unit, row.decimals, row.keepZeros, row.separator);
        if (row.text != nullptr) {
            EXPECT_EQ(text, row.text);
        } else {
            EXPECT_EQ(text.size(), 301 + std::string(" cm").size());
        }
    }
}

TEST(UnitTextTest, Reads) {
    const struct {
        const char* quantity;
        const char* text;
        char separator;
        int unitWhenNone;
        double value; // in the unit
        int unit;
    } rows[] = {
        {"GForcaLinear", "3,5 kN/m", ',', 0, 3.5, 2},
        {"GForcaLinear", "3.5kN/m", '.', 0, 3.5, 2},
        {"GForcaLinear", "350 kgf/m", ',', 2, 350, 0},
        {"GForcaLinear", "350", ',', 2, 350, 2},
        {"GComprimento", "1e-3 m", ',', 0, 1e-3, 1},
        {"GComprimento", "1e-3m", '.', 0, 1e-3, 1},
        {"GComprimento", "-2,5E+2cm", ',', 1, -250, 0},
        {"GComprimento", "+7", ',', 4, 7, 4},
        {"GComprimento", "\t  ,5 \xA0m\r\n", ',', 0, 0.5, 1},
        {"GComprimento", "1e3", '.', 1, 1000, 1},
        {"GComprimento", "1.000 m", '.', 0, 1, 1},
        {"GComprimento", "007 in", '.', 0, 7, 2},
        {"GComprimento", "12 IN", '.', 0, 12, 2},
        {"GMomento", "2 kgf.cm", '.', 0, 2, 6},
        {"GMomento", "2 kgf·cm"_ansi, ',', 0, 2, 6},
        {"GMomento", "0.1 tf.kip", '.', 0, 0.1, 4},
        {"GPressaoTensao", "40 kgf/cm²"_ansi, '.', 3, 40, 0},
        {"GPressaoTensao", "40 kgf/cm2", '.', 3, 40, 0},
        {"GPressaoTensao", "40 kgf/cm^2", '.', 3, 40, 0},
        {"GPressaoTensao", "25 MPa", '.', 0, 25, 3},
        {"GPressaoTensao", "25 Mpa", '.', 0, 25, 3},
        {"GPressaoHidraulica", "10 m.c.a.", '.', 0, 10, 1},
        {"GPressaoHidraulica", "10 kpa", '.', 0, 10, 3},
        {"GForcaConcentrada", "10 KN", '.', 0, 10, 2},
        {"GPeso", "150 lb/cu  ft", '.', 0, 150, 4},
        {"GPeso", "25 KN/m3", '.', 0, 25, 2},
        {"GTemperatura", "20°C"_ansi, '.', 2, 20, 0},
        {"GTemperatura", "-40 ºf"_ansi, '.', 2, -40, 1},
        {"GTemperatura", "32 ºF"_ansi, '.', 2, 32, 1},
        {"GComprimento", "4e-324", '.', 0, 5e-324, 0},
        {"GComprimento", "-0 mm", '.', 0, -0.0, 4},
        {"GVazao", "2 L/s", '.', 0, 2, 4},
        {"GInercia", "3 cm^4", '.', 1, 3, 0},
        {"GVelocidade", "5", '.', 3, 5, 3},
    };
    for (const auto& row : rows) {
        const Quantity& of = QuantityNamed(row.quantity);
        const auto [valor, reading] = of.ofText(row.text, row.separator, row.unitWhenNone);
        EXPECT_TRUE(reading) << row.text << ": " << reading.posicao << ' ' << reading.descricao.c_str();
        EXPECT_EQ(reading.unidade, row.unit) << row.text;
        EXPECT_EQ(valor, of.constructed(row.value, row.unit)) << row.text;
        EXPECT_EQ(reading.descricao, "") << row.text;
    }
}

TEST(UnitTextTest, RefusesWithoutGuessing) {
    constexpr const char* LENGTHS = "uma unidade: cm, m, in, ft, mm";
    constexpr const char* NUMBER = "um número"_ansi;
    constexpr const char* DIGIT = "um algarismo";
    constexpr const char* COMMA = "o separador decimal ,";
    constexpr const char* POINT = "o separador decimal .";
    constexpr const char* RANGE = "um número nem grande nem pequeno demais"_ansi;
    constexpr const char* END = "o fim do texto";
    const std::string long_ = "1" + std::string(400, '0');
    const struct {
        const char* text;
        char separator;
        unsigned position;
        Expected expected;
        const char* description;
    } rows[] = {
        {"", ',', 0, Expected::Numero, NUMBER},
        {"  ", ',', 2, Expected::Numero, NUMBER},
        {"m", ',', 0, Expected::Numero, NUMBER},
        {"nan m", ',', 0, Expected::Numero, NUMBER},
        {"inf", ',', 0, Expected::Numero, NUMBER},
        {"-", ',', 1, Expected::Algarismo, DIGIT},
        {"-inf", ',', 1, Expected::Algarismo, DIGIT},
        {"- 3 m", ',', 1, Expected::Algarismo, DIGIT},
        {"--3 m", ',', 1, Expected::Algarismo, DIGIT},
        {"3, m", ',', 2, Expected::Algarismo, DIGIT},
        {",", ',', 1, Expected::Algarismo, DIGIT},
        {",m", ',', 1, Expected::Algarismo, DIGIT},
        {"3.5", ',', 1, Expected::Separador, COMMA},
        {"3.5 m", ',', 1, Expected::Separador, COMMA},
        {"3,5 m", '.', 1, Expected::Separador, POINT},
        {".5 m", ',', 0, Expected::Separador, COMMA},
        {"1.000,5", ',', 1, Expected::Separador, COMMA},
        {"1.000,5", '.', 5, Expected::Unidade, LENGTHS},
        {"1,000,000 m", ',', 5, Expected::Unidade, LENGTHS},
        {"1 000 m", ',', 2, Expected::Unidade, LENGTHS},
        {"1'000 m", ',', 1, Expected::Unidade, LENGTHS},
        {"12 im", ',', 3, Expected::Unidade, LENGTHS},
        {"12 mx", ',', 3, Expected::Unidade, LENGTHS},
        {"12 M", ',', 3, Expected::Unidade, LENGTHS},
        {"12 Mm", ',', 3, Expected::Unidade, LENGTHS},
        {"12 MM", ',', 3, Expected::Unidade, LENGTHS},
        {"12 m m", ',', 5, Expected::Fim, END},
        {"12 cm , 3", ',', 6, Expected::Fim, END},
        {"12 km", ',', 3, Expected::Unidade, LENGTHS},
        {"12 m2", ',', 3, Expected::Unidade, LENGTHS},
        {"12e m", ',', 2, Expected::Unidade, LENGTHS},
        {"12e+ m", ',', 2, Expected::Unidade, LENGTHS},
        {"1e2,5 m", ',', 3, Expected::Unidade, LENGTHS},
        {"0x10 m", ',', 1, Expected::Unidade, LENGTHS},
        {"12 kgf", ',', 3, Expected::Unidade, LENGTHS},
        {" 1e999 m", ',', 1, Expected::Representavel, RANGE},
        {"1e308 m", ',', 0, Expected::Representavel, RANGE},
        {"-1e-999", ',', 0, Expected::Representavel, RANGE},
        {"4e-324 mm", ',', 0, Expected::Representavel, RANGE}, // but not in cm
        {long_.c_str(), ',', 0, Expected::Representavel, RANGE},
    };
    for (const auto& row : rows) {
        const auto [valor, reading] = QuantityNamed("GComprimento").ofText(row.text, row.separator, 0);
        EXPECT_FALSE(reading) << row.text;
        EXPECT_EQ(reading.posicao, row.position) << row.text;
        EXPECT_EQ(reading.esperado, row.expected) << row.text;
        EXPECT_EQ(reading.descricao, row.description) << row.text;
        EXPECT_EQ(reading.unidade, -1) << row.text;
        EXPECT_EQ(valor, UNTOUCHED) << row.text;
    }
    const auto [valor, unitless] = QuantityNamed("GComprimento").ofText("12,5 ", ',', -1);
    EXPECT_EQ(unitless.esperado, Expected::Unidade) << "where no unit counts, one must be written";
    EXPECT_EQ(unitless.posicao, 5u);
    EXPECT_EQ(valor, UNTOUCHED);
}

/// A language in which feet and pounds are named alike, and inches as metres are elsewhere.
ZoString OtherLanguage(const char* name) {
    const std::string plain(name);
    if (plain == "ft" || plain == "lb") return "x";
    if (plain == "in") return "m";
    if (plain == "m") return "Espaço"_ansi;
    return name;
}

TEST(UnitTextTest, ReadsTheLanguageInUse) {
    static constexpr UnitRow rows[] = {{0, "m", AsIs, AsIs},
                                       {1, "in", AsIs, AsIs},
                                       {2, "ft", AsIs, AsIs},
                                       {3, "lb", AsIs, AsIs},
                                       {4, "cm", AsIs, AsIs}};
    const std::pair<const char*, int> texts[] = {
        {"1 m", 1},  // the language's name comes before the library's own
        {"1 in", 1}, // which are read too
        {"1 espaço"_ansi, 0}, {"1 ESPAÇO"_ansi, 0}, {"1 x", -1}, // two units
        {"1 X", -1},          {"1 lb", 3},          {"1 CM", -1},
    };
    for (const auto& [text, unit] : texts) {
        double valor = UNTOUCHED;
        const TLeituraDeGrandeza reading = ReadQuantity(rows, text, ',', 4, valor, OtherLanguage);
        EXPECT_EQ(reading.unidade, unit) << text;
        EXPECT_EQ(valor, unit < 0 ? UNTOUCHED : 1) << text;
        EXPECT_EQ(reading.descricao, unit < 0 ? "uma unidade: Espaço, m, x, x, cm"_ansi : "") << text;
    }
}

TEST(UnitTextTest, WhatIsWrittenReadsBack) {
    const CommaLocale locale; // of no consequence
    for (const Quantity& of : AllQuantities()) {
        for (int unit = 0; unit < of.units; ++unit) {
            for (const double value : {0.0, 1.0, -1234.5678, 0.001, 98765.4321, 250000.0}) {
                for (const unsigned decimals : {0u, 3u, 9u}) {
                    for (const char separator : {',', '.'}) {
                        const bool keepZeros = separator == ',';
                        const auto written = [&](double valor) {
                            return of.text(valor, unit, decimals, keepZeros, separator);
                        };
                        const std::string text = written(of.constructed(value, unit));
                        const bool named = !of.unitName(unit).empty();
                        const auto [valor, reading] =
                            of.ofText(text.c_str(), separator, named ? (unit + 1) % of.units : unit);
                        ASSERT_TRUE(reading) << of.name << ": " << text;
                        EXPECT_EQ(reading.unidade, unit) << of.name << ": " << text;
                        if (of.name == "GPotencia" && unit >= 4) continue;
                        const double off = std::abs(of.read(valor, unit) - value);
                        EXPECT_LE(off, 0.5 * std::pow(10, -static_cast<int>(decimals)) * (1 + 1e-6) +
                                           1e-15 * std::abs(value))
                            << of.name << ": " << text;
                        EXPECT_EQ(written(valor), text) << of.name;
                    }
                }
            }
        }
    }
    // These two are written as they read, not as they were set.
    EXPECT_EQ(QuantityNamed("GPotencia").text(GPotencia(1, TPotencia::watt), 4, 4, true, ','), "1,0002 W");
    EXPECT_EQ(QuantityNamed("GPotencia").text(GPotencia(1, TPotencia::kwatt), 5, 8, true, ','),
              "0,99999981 kW");
}

TEST(UnitTextTest, LongTextsTakeNoLongTime) {
    const std::string blanks(1 << 20, ' ');
    std::string words = "12 ft";
    for (int i = 0; i < 1 << 18; ++i) words += " ft";
    const std::pair<std::string, unsigned> rows[] = {
        {"12 ft" + blanks + "x", (1u << 20) + 5},
        {"12 " + blanks + "sq" + blanks + "in x", (1u << 20) + 3},
        {words, 6 + 9}, // after the words that a name may have
    };
    for (const auto& [text, position] : rows) {
        const auto [valor, reading] = QuantityNamed("GComprimento").ofText(text.c_str(), ',', 0);
        EXPECT_FALSE(reading);
        EXPECT_LE(reading.posicao, position);
    }
    const std::string digits = "0," + std::string(1 << 20, '3');
    EXPECT_EQ(QuantityNamed("GComprimento").ofText(digits.c_str(), ',', 0).first, 1.0 / 3);
}

TEST(UnitTextTest, SeparatorsAreMarks) {
    for (const char separator : {'1', '-', '+', 'e', ' ', '\0', '\xB2'}) {
        GComprimento length(1.0);
        const FailedAssertion read =
            AssertionOf([&] { static_cast<void>(length.LeTexto("1", separator, TComprimento::m)); });
        const FailedAssertion written =
            AssertionOf([&] { length.Texto(TComprimento::m, 1, true, separator); });
        EXPECT_EQ(read.expression, "IsSeparator(separator)");
        EXPECT_EQ(written.expression, read.expression);
    }
}

} // namespace
