#include "Values/UnitText.h"

#include "support/Assertions.h"
#include "support/CommaLocale.h"
#include "support/InLanguage.h"
#include "support/Quantities.h"

#include "ZoPrimitives/AnsiLiteral.h"

#include <algorithm>
#include <bit>
#include <cmath>

using namespace ZoPrimitives;
using namespace ZoPrimitives::Testing;

namespace {

constexpr double UNTOUCHED = -77; // what `ofText` reads over

std::uint64_t Bits(double value) { return std::bit_cast<std::uint64_t>(value); }

TEST(UnitTextTest, Writes) {
    const std::tuple<const char*, double, int, unsigned, bool, char, const char*> rows[] = {
        {"GForcaLinear", 3.5, 2, 2, false, ',', "3,5 kN/m"},
        {"GForcaLinear", 3.5, 2, 2, true, '.', "3.50 kN/m"},
        {"GForcaLinear", 3.5, 0, 0, true, ',', "350 kgf/m"},
        {"GComprimento", -0.0001, 0, 2, false, ',', "0 cm"},
        {"GComprimento", -1234567.891, 1, 3, false, ',', "-12345,679 m"},
        {"GArea", 1, 0, 1, true, '.', "100.0 mm²"_ansi},
        {"GTemperatura", 101.25, 1, 1, false, ',', "212 ºF"_ansi},
        {"GVelocidade", 1, 3, 1, true, ',', "600,0"},
        {"GComprimento", 1, 5, 1, true, ',', ""}};
    for (const auto& [quantity, valor, unit, decimals, keepZeros, separator, text] : rows)
        EXPECT_EQ(QuantityNamed(quantity).text(valor, unit, decimals, keepZeros, separator), text);
}

TEST(UnitTextTest, Reads) {
    // Another unit counts where none is written. The texts have ',' before decimals.
    const std::tuple<const char*, int, double, std::vector<const char*>> rows[] = {
        {"GForcaLinear", 2, 3.5, {"3,5 kN/m", "3,5 KN/M", "3,5kN / m", "3,5 kN_m", "+35e-1 kN /m"}},
        {"GForcaLinear", 4, 2, {"2 lb/ft", "2 lbs./ft", "2 LBS. / FT."}},
        {"GComprimento", 0, -250, {"-2,5E+2cm", "-250", "-250 ", "-250, Cm"}},
        {"GComprimento", 1, 0.5, {"\t  ,5 \xA0m\r\n", "0,500m", "5e-1 M", "0005,e-01m."}},
        {"GComprimento", 2, 12, {"12 in", "12 in.", "12 IN"}},
        {"GComprimento", 3, 3, {"3, ft", "3,ft", "3,e0ft"}},
        {"GComprimento", 4, 12, {"12 mm", "12 MM", "12,"}},
        {"GComprimento", 4, -0.0, {"-0 mm", "-,0"}},
        {"GComprimento", 0, 5e-324, {"4e-324", "0,0004e-320"}},
        {"GMomento", 6, 2, {"2 kgf.cm", "2 kgf·cm"_ansi, "2 KGF . CM", "2 kgfcm."}},
        {"GMomento", 2, 2, {"2 kNm", "2 kN m", "2 kN*m", "2 KN.m", "2 kN-m"}},
        {"GMomento", 5, 2, {"2 ft.lb", "2 ft-lbs"}},
        {"GMomento", 4, 0.1, {",1 tf.kip", ",1 ftkip", ",1 ft.kips"}},
        {"GPressaoTensao", 0, 40, {"40 kgf/cm²"_ansi, "40 kgf/cm2", "40 kgf/cm^2", "40 KGF/CM2"}},
        {"GPressaoTensao", 3, 25, {"25 MPa", "25 Mpa", "25 MPA"}},
        {"GPressaoHidraulica", 1, 10, {"10 m.c.a.", "10 m.c.a", "10 mca"}},
        {"GForcaConcentrada", 5, 10, {"10 kip", "10 kips."}},
        {"GArea", 3, 3, {"3 sq in", "3 sqin", "3 sq. in.", "3 in²"_ansi}},
        {"GVolume", 3, 3, {"3 ft³"_ansi, "3 cu.ft"}},
        {"GPeso", 4, 150, {"150 lb/cu  ft", "150 lb / cu . ft", "150 lb/ft^3"}},
        {"GRecalque", 4, 150, {"150 lb/cu in", "150 lbs/in3"}},
        {"GAngulo", 1, 45, {"45°"_ansi, "45 º"_ansi, "45 deg", "45 graus"}},
        {"GAngulo", 0, 1.57, {"1,57 rad"}},
        {"GTemperatura", 0, 20, {"20°C"_ansi, "20 ºc"_ansi, "20 C"}},
        {"GTemperatura", 1, 32, {"32 ºF"_ansi, "32F"}},
        {"GVelocidade", 3, 5, {"5", "5 mm/min", "5 MM/MIN"}},
        {"GInercia", 0, 3, {"3 cm4", "3 cm^4"}},
        {"GTempo", 3, 2, {"2 dias", "2 dia"}}};
    for (const auto& [quantity, unit, value, texts] : rows) {
        const Quantity& of = QuantityNamed(quantity);
        for (std::string text : texts) {
            for (const char separator : {',', '.'}) {
                std::replace(text.begin(), text.end(), ',', separator);
                const bool named = text.find_first_not_of("+-0123456789,.e ") != std::string::npos;
                const int unitWhenNone = (unit + (named ? 1 : 0)) % of.units;
                const auto [valor, reading] = of.ofText(text.c_str(), separator, unitWhenNone);
                EXPECT_TRUE(reading) << text << ": " << reading.posicao << ' ' << reading.descricao.c_str();
                EXPECT_EQ(reading.unidade, unit) << text;
                EXPECT_EQ(Bits(valor), Bits(of.constructed(value, unit))) << text;
                EXPECT_EQ(reading.descricao, "") << text;
            }
        }
    }
}

TEST(UnitTextTest, EveryUnitIsReadByEachOfItsNames) {
    for (const Quantity& of : AllQuantities()) {
        for (int unit = 0; unit < of.units; ++unit) {
            const std::string& accessor = of.accessorNames[static_cast<std::size_t>(unit)];
            for (ZoString name : {ZoString(of.unitName(unit).c_str()), ZoString(accessor.c_str())}) {
                for (int capitals = 0; capitals < 2 && name.length() > 0; ++capitals, name.Uppercase()) {
                    const auto [valor, reading] = of.ofText((" 2 " + name).c_str(), ',', -1);
                    EXPECT_EQ(reading.unidade, unit) << of.name << ' ' << name.c_str();
                    EXPECT_EQ(valor, of.constructed(2, unit)) << of.name << ' ' << name.c_str();
                }
            }
        }
    }
}

// "|" marks where the reading ends.
TEST(UnitTextTest, RefusesWithoutGuessing) {
    using enum TLeituraDeGrandeza::TEsperado;
    using Texts = std::vector<std::string>;
    constexpr const char* JOINED = "os milhares juntos, sem separador";
    const std::tuple<TLeituraDeGrandeza::TEsperado, const char*, char, Texts> rows[] = {
        {Numero, "um número"_ansi, ',', {"|", "|nan m", "|inf", "|m", "|. m", "  |"}},
        {Algarismo, "um algarismo", ',', {"-|inf", "-| 3 m", "-|-3 m", ",|", ",|m", ",|,5", "-,|m"}},
        {Separador,
         "o separador decimal ,",
         ',',
         {"|.5 m", "3|.5 m", "3|. m", "1|.000 m", "1|.0000,5 m", "1|.00,5"}}, // 1.000: 1 or 1000
        {Separador, "o separador decimal .", '.', {"3|,5 m"}},
        {MilharesJuntos,
         JOINED,
         ',',
         {"1| 234,5 m", "1|\xA0\x30\x30\x30 m", "1|'000 m", "1|.000,5", "1|.000.000", "1,000|,000 m",
          "1,000|.5"}},
        {MilharesJuntos, JOINED, '.', {"1.000|,5"}},
        {MilharesJuntos, JOINED, ';', {"1;000|;000 m", "1|.000;5 m", "1|.000,5 m"}},
        {Unidade,
         "uma unidade: cm, m, in, ft, mm",
         ',',
         {"0|x10 m",   "1|'00 m", "1|d5 m",   "12|e m",  "12|e+ m",  "12|-m",  "12|: m",  "12|\x0em",
          "1 |2345 m", "1 |23 m", "1 |x23 m", "3, |5 m", "3,5|, m",  "12 |im", "12 |Mm",  "12 |cM",
          "12 |.m",    "12 |m..", "12 |m^",   "12 |cm/", "12 |cm^.", "12 |km", "1e2|,5 m"}},
        {Fim, "o fim do texto", ',', {"12 m |m", "12 cm |, 3", "12 m  |/ 2", "12 m. |m"}},
        {Representavel,
         "um número nem grande nem pequeno demais"_ansi,
         ',',
         {"|1e308 m", "|-1e-999", "|4e-324 mm", " |1e999 m", "|1" + std::string(400, '0')}}}; // mm: not in cm
    for (const auto& [expected, description, separator, texts] : rows) {
        for (std::string text : texts) {
            SCOPED_TRACE(text);
            const std::size_t position = text.find('|');
            text.erase(position, 1);
            const auto [valor, reading] = QuantityNamed("GComprimento").ofText(text.c_str(), separator, 0);
            EXPECT_EQ(reading.esperado, expected);
            EXPECT_EQ(reading.posicao, position);
            EXPECT_EQ(reading.descricao, description);
            EXPECT_TRUE(reading.unidade == -1 && valor == UNTOUCHED);
        }
    }
    // Behind a name of two words, and where no unit counts, so that one must be written, too.
    const std::tuple<const char*, std::string, int, TLeituraDeGrandeza::TEsperado> others[] = {
        {"GPressaoTensao", "1 |mPa", 0, Unidade}, {"GForcaLinear", "1 |kN-/m", 0, Unidade},
        {"GForcaLinear", "1 |kN/.m", 0, Unidade}, {"GVelocidade", "1 |.", 0, Unidade},
        {"GArea", "3 sq  in |x", 0, Fim},         {"GComprimento", "12,5 |", -1, Unidade}};
    for (auto [quantity, text, unitWhenNone, expected] : others) {
        const std::size_t position = text.find('|');
        text.erase(position, 1);
        const auto reading = QuantityNamed(quantity).ofText(text.c_str(), ',', unitWhenNone).second;
        EXPECT_TRUE(reading.esperado == expected && reading.posicao == position) << text;
    }
}

TEST(UnitTextTest, CapitalsAloneMayMeanAnyLetterButNotAMega) {
    static constexpr UnitRow rows[] = {{0, "ma", "ma", AsIs, AsIs},
                                       {1, "lb", "lb", AsIs, AsIs, "lbs|#"},
                                       {2, "zàøþ"_ansi, "Zàøþ"_ansi, AsIs, AsIs},
                                       {3, "mß"_ansi, "mß"_ansi, AsIs, AsIs},
                                       {4, "m÷"_ansi, "m÷"_ansi, AsIs, AsIs}};
    const std::pair<const char*, int> texts[] = {
        {"1 #", 1},       {"1 MA", 0},      {"1 Ma", -1},       {"1 mA", 0},        {"1 Mß"_ansi, -1},
        {"1 mß"_ansi, 3}, {"1 M÷"_ansi, 4}, {"1 zÀøþ"_ansi, 2}, {"1 ZÀØÞ"_ansi, 2}, {"1 x", -1}};
    for (const auto& [text, unit] : texts) {
        double valor = UNTOUCHED;
        const TLeituraDeGrandeza reading = ReadQuantity(rows, text, ',', 4, valor);
        EXPECT_EQ(reading.unidade, unit) << text;
        EXPECT_EQ(valor, unit < 0 ? UNTOUCHED : 1) << text;
        EXPECT_EQ(reading.descricao, unit < 0 ? "uma unidade: ma, lb, Zàøþ, mß, m÷"_ansi : "") << text;
    }
}

TEST(UnitTextTest, AUnitWrittenInOneLanguageIsReadInAnother) {
    for (const Quantity& of : AllQuantities()) {
        for (int unit = 0; unit < of.units; ++unit) {
            if (of.unitName(unit).empty()) continue;
            for (const char* writing : LANGUAGES) {
                const std::string text = (InLanguage(writing), "2 " + of.unitName(unit));
                for (const char* reading : LANGUAGES) {
                    const InLanguage language(reading);
                    EXPECT_EQ(of.ofText(text.c_str(), '.', (unit + 1) % of.units).second.unidade, unit)
                        << of.name << ": " << text << " read in " << reading;
                }
            }
        }
    }
}

TEST(UnitTextTest, WhatIsWrittenReadsBack) {
    const CommaLocale locale; // of no consequence
    for (const Quantity& of : AllQuantities()) {
        for (int unit = 0; unit < of.units; ++unit) {
            const bool loose = of.name == "GPotencia" && unit >= 4; // written as they read, not as set
            const int unitWhenNone = of.unitName(unit).empty() ? unit : (unit + 1) % of.units;
            for (const double value : {0.0, -1234.5678, 0.001, 250000.0}) {
                for (const unsigned decimals : {0u, 3u, 9u}) {
                    const char separator = decimals == 3 ? '.' : ',';
                    const auto written = [&](double valor) {
                        return of.text(valor, unit, decimals, decimals != 9, separator);
                    };
                    const std::string text = written(of.constructed(value, unit));
                    const auto [valor, reading] = of.ofText(text.c_str(), separator, unitWhenNone);
                    EXPECT_EQ(reading.unidade, unit) << of.name << ": " << text;
                    const double rounding = 0.5 * std::pow(10, -static_cast<int>(decimals)) * (1 + 1e-6);
                    EXPECT_TRUE(loose ||
                                std::abs(of.read(valor, unit) - value) <= rounding + 1e-15 * std::abs(value))
                        << of.name << ": " << text;
                    EXPECT_TRUE(loose || written(valor) == text) << of.name << ": " << text;
                }
            }
        }
    }
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
    GComprimento length(1.0);
    for (const char separator : {'1', '-', '+', 'e', ' ', '\0', '\xB2'}) {
        const auto read = [&] { static_cast<void>(length.LeTexto("1", separator, TComprimento::m)); };
        const auto write = [&] { length.Texto(TComprimento::m, 1, true, separator); };
        EXPECT_EQ(AssertionOf(read).expression, "IsSeparator(separator)");
        EXPECT_EQ(AssertionOf(write).expression, "IsSeparator(separator)");
    }
}

} // namespace
