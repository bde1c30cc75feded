#include "ZoPrimitives/grandeza.h"

#include "support/Assertions.h"
#include "support/Quantities.h"
#include "support/Streaming.h"
#include "support/TemporaryFolder.h"

#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <type_traits>
#include <utility>

using namespace ZoPrimitives;

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double PI = 3.141592653589793;

std::string Bits(double value) {
    char text[17];
    std::snprintf(text, sizeof text, "%016llx",
                  static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(value)));
    return text;
}

double OfBits(const std::string& text) { return std::bit_cast<double>(std::stoull(text, nullptr, 16)); }

/// As quantities.py escapes names.
std::string Escaped(const std::string& name) {
    std::ostringstream out;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            out << c;
        } else {
            out << "\\x" << std::hex << unsigned{byte};
        }
    }
    return out.str();
}

std::vector<std::string> Columns(const std::string& line) {
    std::istringstream in(line);
    std::vector<std::string> columns;
    for (std::string column; std::getline(in, column, '\t');) columns.push_back(column);
    return columns;
}

TEST(GrandezaTests, EveryUnitConvertsToTheLastBit) {
    std::ifstream file(ZO_TEST_DATA "/quantities.txt");
    std::vector<double> values;
    std::size_t quantity = 0;
    int unit = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> columns = Columns(line);
        if (columns[0] == "values") {
            for (std::size_t i = 1; i < columns.size(); ++i) values.push_back(OfBits(columns[i]));
            continue;
        }
        if (unit == AllQuantities().at(quantity).units) {
            ++quantity;
            unit = 0;
        }
        const Quantity& of = AllQuantities().at(quantity);
        SCOPED_TRACE(columns[0] + ' ' + columns[2]);
        ASSERT_EQ(columns[0], of.name);
        ASSERT_EQ(columns[1], std::to_string(unit));
        ASSERT_EQ(columns.size(), 3 + 2 * values.size());
        EXPECT_EQ(Escaped(of.unitName(unit)), columns[2]);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::string& stored = columns[3 + 2 * i];
            const std::string& read = columns[4 + 2 * i];
            EXPECT_EQ(Bits(of.constructed(values[i], unit)), stored) << values[i];
            EXPECT_EQ(Bits(of.stored(-1, values[i], unit)), stored) << values[i];
            EXPECT_EQ(Bits(of.read(values[i], unit)), read) << values[i];
            EXPECT_EQ(Bits(of.accessor(values[i], unit)), read) << values[i];
        }
        ++unit;
    }
    EXPECT_EQ(quantity + 1, AllQuantities().size());
    EXPECT_EQ(unit, AllQuantities().back().units);
}

TEST(GrandezaTests, UnitsThatThereAreNot) {
    for (const Quantity& of : AllQuantities()) {
        for (const int unit :
             {-1, of.units, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
            SCOPED_TRACE(of.name + ' ' + std::to_string(unit));
            EXPECT_EQ(of.constructed(5, unit), 0);
            EXPECT_EQ(of.stored(3, 2, unit), 3);
            EXPECT_EQ(Bits(of.read(3, unit)), Bits(0.0));
            EXPECT_EQ(of.unitName(unit), "");
        }
    }
}

TEST(GrandezaTests, Integers) {
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    const std::pair<double, int> rows[] = {{2.5, 3},
                                           {-2.5, -3},
                                           {0.4999, 0},
                                           {0, 0},
                                           {1e-21, 0},
                                           {1e-22, 0},
                                           {NO_NUMBER, 0},
                                           {2147483646.4, highest - 1},
                                           {1e300, highest},
                                           {-INFINITE, lowest},
                                           {2147483646.5, highest},
                                           {-2147483648.4, lowest},
                                           {-2147483647.4, lowest + 1}};
    for (const auto& [value, expected] : rows) EXPECT_EQ(Grandeza(value).Int(), expected) << value;
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
    const GComprimento other(2.0);
    EXPECT_EQ(&(*held = other), held.get());
    EXPECT_EQ(ZoReferenceCount::Count(held.get()), 1u);
    GComprimento copy(*held);
    EXPECT_EQ(copy.valor, 2);
    EXPECT_EQ(ZoReferenceCount::Count(&copy), 0u);
    EXPECT_EQ(GComprimento(std::move(copy)).valor, 2);
    EXPECT_EQ((copy = GComprimento(7.0)).valor, 7);
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

    const struct {
        double radians;
        double degrees; // within one turn
        bool orthogonal;
    } rows[] = {
        {0, 0, true},
        {-PI / 2, 270, true},
        {PI / 2, 90, true},
        {PI, 180, true},
        {-PI, 180, true},
        {5 * PI, 180, true},
        {0.1, 5.729577951308232, false},
        {PI / 2 + 1e-7, 90.00000572957795, true},
        {PI / 2 + 2e-7, 90.0000114591559, false},
        {-1e-9, 359.99999994270422, true},
        {-1e-20, 360, true} // a turn itself, by rounding
    };
    for (const auto& row : rows) {
        EXPECT_NEAR(GAngulo(row.radians).ValorAjustado(TAngulo::Graus), row.degrees, 1e-12) << row.radians;
        EXPECT_NEAR(GAngulo(row.radians).ValorAjustado(TAngulo::Radianos), row.degrees * PI / 180, 1e-14);
        EXPECT_EQ(GAngulo(row.radians).Ortogonal(), row.orthogonal) << row.radians;
    }
    EXPECT_EQ(GAngulo(1.0).ValorAjustado(static_cast<TAngulo>(2)), 0);
    EXPECT_FALSE(GAngulo(INFINITE).Ortogonal() || GAngulo(NO_NUMBER).Ortogonal());
}

class Wall : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Wall)
    DECLARE_ZO_FIELD_CHILD_VALUE(GComprimento, height)
    DECLARE_ZO_FIELD_CHILD(GForcaArea, load)
    DECLARE_ZO_FIELD_CHILD_LIST(Grandeza, measures)
    REGISTER_ZO_END
};

TEST(GrandezaTests, EachIsSavedAndOpened) {
    TZoMetaData schema;
    ZoRegisterGrandezas(&schema);
    ASSERT_EQ(schema.GetClassCount(), static_cast<int>(AllQuantities().size()) + 1);
    for (const Quantity& of : AllQuantities()) {
        SCOPED_TRACE(of.name);
        const auto quantity = of.make(-1.25);
        const Grandeza& expected = *quantity;
        EXPECT_EQ(Text(quantity->StreamableClassName()), of.name);
        EXPECT_EQ(quantity->GetClass(), quantity->GetOriginalClass(&schema));
        const std::string file = Save(schema, quantity.get());
        const std::vector<ClassEntry> classes = {
            {.id = 1, .name = "Grandeza", .values = {{0, -3, "valor"}}},
            {.id = schema.FindClass(of.name.c_str())->GetClassId(), .name = of.name, .parents = {1}},
        };
        EXPECT_EQ(RowsOf(file), RowsOf(FileOf(classes, {{1, classes[1].id, Payload().Double(-1.25)}})));
        Opened opened(file, schema);
        const Grandeza& read = opened.Root<Grandeza>();
        EXPECT_EQ(typeid(read), typeid(expected));
        EXPECT_EQ(read, -1.25);
    }
}

TEST(GrandezaTests, FieldsOfAnObject) {
    TZoMetaData schema;
    ZoRegisterGrandezas(&schema);
    Wall::Register(&schema);
    Wall wall;
    wall.height = GComprimento(3, TComprimento::m);
    wall.load = new GForcaArea(2, TForcaArea::kN_m2);
    wall.measures.Add(new GVolume(1.5, TVolume::l));
    wall.measures.Add(new GAngulo(30, TAngulo::Graus));
    Opened opened(Save(schema, &wall), schema);
    const Wall& read = opened.Root<Wall>();
    EXPECT_EQ(read.height.m(), 3);
    EXPECT_EQ(read.load->kN_m2(), 2);
    EXPECT_EQ(dynamic_cast<GVolume&>(*read.measures[1]).l(), 1.5);
    EXPECT_EQ(dynamic_cast<GAngulo&>(*read.measures[2]), *wall.measures[2]);
}

/// Reads objects, each written as a pointer and a code 7.
class TextReader : public InputStreamer {
public:
    using InputStreamer::InputStreamer;
    ZoStreamableBase* ReadObject() {
        int code = -1;
        ZoString name;
        *this >> code >> name;
        ZoStreamableBase* object = CreateObject(name);
        if (object != nullptr) object->Read(*this);
        return object;
    }
};

TEST(GrandezaTests, EachIsWrittenAsTextAndRead) {
    const Testing::TemporaryFolder folder;
    const std::string path = folder.Path("text");
    std::string expected;
    {
        OutputStreamer streamer(new FileOutputStream(path.c_str(), false));
        std::vector<std::unique_ptr<Grandeza>> quantities;
        for (const Quantity& of : AllQuantities()) {
            quantities.push_back(of.make(-1.25));
            streamer << quantities.back().get() << 7;
            expected += "0\r\n" + of.name + "\r\n3\r\n" + std::to_string(quantities.size()) +
                        "\r\n40\r\n-1.25\r\n7\r\n";
        }
    }
    EXPECT_EQ(folder.Read("text") + "\r\n", expected);

    TZoMetaData schema;
    ZoRegisterGrandezas(&schema);
    TextReader reader(new FileInputStream(path.c_str()), new StreamableFactory(&schema));
    for (const Quantity& of : AllQuantities()) {
        auto* read = dynamic_cast<Grandeza*>(reader.ReadObject());
        ASSERT_NE(read, nullptr) << of.name;
        EXPECT_EQ(Text(read->StreamableClassName()), of.name);
        EXPECT_EQ(*read, -1.25) << of.name;
    }
}

TEST(GrandezaTests, OtherCodesOfATextAreLeftOut) {
    const Testing::TemporaryFolder folder;
    folder.Write("text", "GArea\n41\nx\n40\n1e-7\n3\n9\n0\n");
    const pointer<InputStream> stream(new FileInputStream(folder.Path("text").c_str()));
    TextReader reader(stream.get(), nullptr);
    GArea area(5.0);
    reader >> area;
    EXPECT_EQ(area, 1e-7);
    EXPECT_EQ(reader.GetHandle(&area), 9);
}

TEST(GrandezaTests, FactoriesMakeEmptyQuantities) {
    TZoMetaData schema;
    ZoRegisterGrandezas(&schema);
    TZoMetaData later;
    ZoRegisterGrandezas(&later);
    for (const Quantity& of : AllQuantities()) {
        TZoClass* entry = schema.FindClass(of.name.c_str());
        const std::unique_ptr<ZoStreamableBase> made(of.create(&schema, &schema, entry));
        EXPECT_EQ(made->GetClass(), entry) << of.name;
        EXPECT_EQ(dynamic_cast<Grandeza&>(*made), 0) << of.name;
        const std::unique_ptr<ZoStreamableBase> ofNone(of.create(nullptr, nullptr, nullptr));
        EXPECT_EQ(ofNone->GetClass(), later.FindClass(of.name.c_str())) << "the latest";
    }
    GComprimento::Unregister(&schema);
    EXPECT_EQ(GComprimento(1.0).GetOriginalClass(&schema), nullptr);
    EXPECT_NE(Grandeza(1.0).GetOriginalClass(&schema), nullptr);
}

} // namespace
