#include "ZoPrimitives/grandeza.h"

#include "support/Assertions.h"
#include "support/Quantities.h"
#include "support/RoundTrip.h"

#include <bit>
#include <climits>
#include <cmath>
#include <fstream>

using namespace ZoPrimitives;

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double PI = 3.141592653589793;

std::uint64_t Bits(double value) { return std::bit_cast<std::uint64_t>(value); }

/// As quantities.py escapes names.
ZoString Escaped(const std::string& name) {
    ZoString escaped;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        escaped += ZoString::FormatString(byte < 0x80 ? "%c" : "\\x%x", byte);
    }
    return escaped;
}

TEST(GrandezaTests, EveryUnitConvertsToTheLastBit) {
    std::ifstream file(ZO_TEST_DATA "/quantities.txt");
    std::vector<std::uint64_t> values; // as bits, as what becomes of them
    std::size_t quantity = 0;
    int unit = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        SCOPED_TRACE(line.substr(0, 40));
        std::istringstream in(line);
        std::vector<std::string> columns;
        for (std::string column; std::getline(in, column, '\t');) columns.push_back(column);
        const auto bits = [&](std::size_t column) { return std::stoull(columns[column], nullptr, 16); };
        if (columns[0] == "values") {
            for (std::size_t i = 1; i < columns.size(); ++i) values.push_back(bits(i));
            continue;
        }
        if (unit == AllQuantities().at(quantity).units) {
            ++quantity;
            unit = 0;
        }
        const Quantity& of = AllQuantities().at(quantity);
        ASSERT_EQ(columns.size(), 3 + 2 * values.size());
        ASSERT_TRUE(columns[0] == of.name && columns[1] == std::to_string(unit));
        ASSERT_EQ(Escaped(of.unitName(unit)), columns[2].c_str());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const auto value = std::bit_cast<double>(values[i]);
            const std::uint64_t stored = bits(3 + 2 * i), read = bits(4 + 2 * i);
            EXPECT_EQ(Bits(of.constructed(value, unit)), stored) << value;
            EXPECT_EQ(Bits(of.stored(-1, value, unit)), stored) << value;
            EXPECT_EQ(Bits(of.read(value, unit)), read) << value;
            EXPECT_EQ(Bits(of.accessor(value, unit)), read) << value;
        }
        ++unit;
    }
    EXPECT_EQ(quantity + 1, AllQuantities().size());
    EXPECT_EQ(unit, AllQuantities().back().units);
}

TEST(GrandezaTests, UnitsThatThereAreNot) {
    for (const Quantity& of : AllQuantities()) {
        for (const int unit : {-1, of.units, INT_MAX, INT_MIN}) {
            SCOPED_TRACE(of.name + ' ' + std::to_string(unit));
            EXPECT_EQ(of.constructed(5, unit), 0);
            EXPECT_EQ(of.stored(3, 2, unit), 3);
            EXPECT_EQ(Bits(of.read(3, unit)), Bits(0.0));
            EXPECT_EQ(of.unitName(unit), "");
        }
    }
}

TEST(GrandezaTests, Integers) {
    std::istringstream rows(
        "2.5=3 -2.5=-3 0.4999=0 0=0 1e-21=0 1e-22=0 nan=0 1e300=2147483647 -inf=-2147483648 "
        "2147483646.4=2147483646 2147483646.5=2147483647 -2147483647.4=-2147483647 "
        "-2147483648.4=-2147483648");
    for (std::string row; rows >> row;) {
        const int expected = std::stoi(row.substr(row.find('=') + 1));
        EXPECT_EQ(Grandeza(std::strtod(row.c_str(), nullptr)).Int(), expected) << row;
    }
}

TEST(GrandezaTests, ComputesWithTheStoredNumbers) {
    GComprimento length(10.0);
    EXPECT_EQ(&(length += GArea(5.0)), &length);
    EXPECT_EQ(length.valor, 15);
    EXPECT_EQ((length -= GComprimento(1, TComprimento::m)).valor, -85);
    EXPECT_EQ((length *= 2).valor, -170);
    EXPECT_EQ((length /= GForcaLinear(10.0)).valor, -17);
    for (const double zero : {0.0, -0.0}) {
        GComprimento divided(-10.0);
        EXPECT_EQ((divided /= Grandeza(zero)).valor, 1.797693e+308);
    }
    EXPECT_EQ(length + 1, -16) << "a plain number in other arithmetic";
    EXPECT_EQ(GComprimento(250.0).EmEscala(0.02), 5);
}

TEST(GrandezaTests, ComparesExactly) {
    const GComprimento a(0.1 + 0.2), b(0.3);
    const GForcaLinear c(0.3);
    const GAngulo angle(0.3);
    const Grandeza none(NO_NUMBER);
    const ZoString text("0.3");
    EXPECT_TRUE(a != b && b == c && b < a && none != none);
    EXPECT_FALSE(a == b || b != c || none == none);
    EXPECT_TRUE(b == 0.3 && 0.3 == b && b != 1 && 1 != b);
    EXPECT_TRUE(angle == 0.3 && angle == b && b == angle && angle == angle);
    EXPECT_FALSE(0.3 != angle || angle == 0.4);
    const ZoObject &object = b, &other = c;
    EXPECT_TRUE(object == other && object == c) << "by value, whichever the static type";
    EXPECT_FALSE(object != other || object == text || object == static_cast<const ZoObject&>(a));
}

TEST(GrandezaTests, CopiesTakeTheValueOnly) {
    static_assert(
        std::is_same_v<decltype(std::declval<Grandeza&>() = std::declval<const Grandeza&>()), void>);
    static_assert(std::is_nothrow_move_constructible_v<GComprimento> &&
                  std::is_nothrow_move_assignable_v<GComprimento>);
    static_assert(sizeof(GComprimento) == sizeof(ZoObjectStreamable) + sizeof(double));
    static_assert(!std::is_convertible_v<double, GComprimento>, "a number is no length");
    const pointer<GComprimento> held = new GComprimento(1.0);
    *held = GComprimento(2.0);
    GComprimento copy(*held);
    EXPECT_EQ(copy.valor, 2);
    EXPECT_EQ(ZoReferenceCount::Count(held.get()) + ZoReferenceCount::Count(&copy), 1u);
    EXPECT_EQ(GComprimento(ZoStreamableBase::InitEmpty).valor, 0);
}

template <class Quantity, class Unit>
void ExpectUnitsByName(int units, bool refuses) {
    for (int i = 0; i < units; ++i) {
        const auto unit = static_cast<Unit>(i);
        EXPECT_EQ(Quantity::UnidadePorNome(Quantity::NomeDaUnidade(unit)), unit);
    }
    for (const char* name : {"km", "MM", " mm", "mm ", ""}) {
        if (!refuses) break;
        const FailedAssertion failed = AssertionOf([&] { Quantity::UnidadePorNome(name); });
        EXPECT_EQ(failed.expression, "false") << name;
        EXPECT_EQ(failed.message, "Nome da unidade incorreto.") << name;
        EXPECT_EQ(failed.source, "cpp/ZoPrimitives/grandeza") << name;
    }
}

TEST(GrandezaTests, UnitsByName) {
    ExpectUnitsByName<GComprimento, TComprimento>(5, true);
    ExpectUnitsByName<GPotencia, TPotencia>(6, true);
    ExpectUnitsByName<GVazao, TVazao>(7, true);
    ExpectUnitsByName<GPressaoHidraulica, TPressaoHidraulica>(5, false); // ends the process
}

TEST(GrandezaDeathTest, NoSuchUnitOfHydraulicPressureEndsTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(GPressaoHidraulica::UnidadePorNome("psi"), "");
}

TEST(GrandezaTests, Angles) {
    GAngulo angle(90, TAngulo::Graus);
    angle = PI;
    EXPECT_EQ(angle.Graus(), 180);
    EXPECT_EQ(&(angle += 2 * PI), &angle);
    EXPECT_EQ(angle.Radianos(), 3 * PI);
    angle += GAngulo(1.0);
    EXPECT_EQ(angle, 3 * PI + 1);

    // Degrees within one turn; the last is a turn itself, by rounding.
    const std::tuple<double, double, bool> rows[] = {{0, 0, true},
                                                     {-PI / 2, 270, true},
                                                     {PI / 2, 90, true},
                                                     {-PI, 180, true},
                                                     {5 * PI, 180, true},
                                                     {0.1, 5.729577951308232, false},
                                                     {PI / 2 + 1e-7, 90.00000572957795, true},
                                                     {PI / 2 + 2e-7, 90.0000114591559, false},
                                                     {-1e-9, 359.99999994270422, true},
                                                     {-1e-20, 360, true}};
    for (const auto& [radians, degrees, orthogonal] : rows) {
        EXPECT_NEAR(GAngulo(radians).ValorAjustado(TAngulo::Graus), degrees, 1e-12) << radians;
        EXPECT_NEAR(GAngulo(radians).ValorAjustado(TAngulo::Radianos), degrees * PI / 180, 1e-14);
        EXPECT_EQ(GAngulo(radians).Ortogonal(), orthogonal) << radians;
    }
    EXPECT_EQ(GAngulo(1.0).ValorAjustado(static_cast<TAngulo>(2)), 0);
    EXPECT_FALSE(GAngulo(INFINITE).Ortogonal() || GAngulo(NO_NUMBER).Ortogonal());
}

TEST(GrandezaTests, EachIsSavedWrittenAsTextAndRead) {
    TZoMetaData schema, later;
    ZoRegisterGrandezas(&schema);
    ZoRegisterGrandezas(&later);
    ASSERT_EQ(schema.GetClassCount(), static_cast<int>(AllQuantities().size()) + 1);
    for (const Quantity& of : AllQuantities()) {
        SCOPED_TRACE(of.name);
        TZoClass* entry = schema.FindClass(of.name.c_str());
        const auto quantity = of.make(-1.25);
        EXPECT_EQ(quantity->StreamableClassName(), of.name.c_str());
        const std::vector<ClassEntry> classes = {
            {.id = 1, .name = "Grandeza", .values = {{0, -3, "valor"}}},
            {.id = entry->GetClassId(), .name = of.name, .parents = {1}},
        };
        const std::string file = FileOf(classes, {{1, classes[1].id, Payload().Double(-1.25)}});
        EXPECT_EQ(RowsOf(ExpectOpened(later, *quantity)), RowsOf(file));
        EXPECT_EQ(ExpectReadAsText(later, *quantity), "40|-1.25|");

        const std::unique_ptr<ZoStreamableBase> made(of.create(&schema, &schema, entry));
        EXPECT_EQ(made->GetClass(), entry);
        EXPECT_EQ(dynamic_cast<Grandeza&>(*made), 0);
        const std::unique_ptr<ZoStreamableBase> ofNone(of.create(nullptr, nullptr, nullptr));
        EXPECT_EQ(ofNone->GetClass(), later.FindClass(of.name.c_str())) << "the latest";
    }
    GComprimento::Unregister(&schema);
    EXPECT_EQ(GComprimento(1.0).GetOriginalClass(&schema), nullptr);
    EXPECT_NE(Grandeza(1.0).GetOriginalClass(&schema), nullptr);
    Grandeza::Unregister(&schema);
    EXPECT_EQ(Grandeza(1.0).GetOriginalClass(&schema), nullptr);
}

} // namespace
