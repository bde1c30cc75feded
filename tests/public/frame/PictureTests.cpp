#include "options.h"
#include "picture.h"
#include "pictures.h"
#include "report.h"
#include "tables.h"

#include "public/frame/FailureOf.h"
#include "public/frame/XmlFault.h"

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

namespace {

using namespace Frame;
using namespace ZoPrimitives;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(PictureTests, UnitsWriteEachQuantity) {
    const GComprimento length(30, TComprimento::ft);
    const GForcaConcentrada steel(2'000'000, TForcaConcentrada::kgf);
    const GInercia inertia(9760, TInercia::in4);
    const GArea area(300, TArea::cm2);
    const GForcaLinear load(34.5, TForcaLinear::kN_m);
    const GPeso density(7850, TPeso::kgf_m3);
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"metric", ".", "9.14 m|9144 mm|300.0 cm²|406211 cm⁴|20000.0 kN|34.50 kN/m|2000.00 t|7850 kg/m³"},
        {"technical", ",",
         "914 cm|914,4 cm|300,0 cm²|406211 cm⁴|2000,00 tf|3,450 tf/m|2000,00 tf|7850 kgf/m³"},
        {"imperial", ".",
         "30.00 ft|360.0 in|46.5 in²|9760 in⁴|4409.2 kip|2.319 kip/ft|4409171 lb|490 lb/cu ft"},
    };
    for (const auto& [system, separator, texts] : rows) {
        const Units units = Units::Named(system, separator);
        EXPECT_EQ(units.Text(units.length, length) + "|" + units.Text(units.depth, length) + "|" +
                      units.Text(units.area, area) + "|" + units.Text(units.inertia, inertia) + "|" +
                      units.Text(units.load, steel) + "|" + units.Text(units.lineLoad, load) + "|" +
                      units.Text(units.steel, steel) + "|" + units.Text(units.density, density),
                  texts);
        EXPECT_EQ(units.Number(units.depth, length) + " " + units.Name(units.depth),
                  units.Text(units.depth, length));
    }
}

TEST(PictureTests, OptionsStandAnywhereAndAreRefusedWithASentence) {
    const Options options = ReadOptions({"--by", "area", "picture", "--separator", ",", "a.zo", "a.svg"});
    EXPECT_THAT(options.words, testing::ElementsAre("picture", "a.zo", "a.svg"));
    EXPECT_THAT(options.given, testing::ElementsAre("--by", "area", "--separator", ","));
    EXPECT_EQ(options.property, Property::Area);
    EXPECT_EQ(options.units.separator, ',');
    EXPECT_EQ(options.units.length.unit, TComprimento::m);

    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"a.zo", "--unit", "metric"},
         "There is no option --unit: use --units, --separator, --by or --language."},
        {{"a.zo", "--units"}, "--units needs a value: metric, technical or imperial."},
        {{"a.zo", "--units", "Metric"}, "There are no units \"Metric\": use metric, technical or imperial."},
        {{"--separator", ";"}, "\";\" does not separate decimals here: use a point or a comma."},
        {{"--separator", ""}, "\"\" does not separate decimals here: use a point or a comma."},
        {{"--by", "mass"}, "Members cannot be coloured by \"mass\": use load or area."},
    };
    for (const auto& row : rows) EXPECT_EQ(FailureOf([&] { ReadOptions(row.first); }), row.second);
}

TEST(PictureTests, ShowsTheFrame) {
    const Model model = ReadTables(FRAME_TABLES);
    const std::string loads = DrawElevation(*model.building, Property::Load, Units::Named("metric", ","));
    EXPECT_EQ(XmlFault(loads), "");
    for (const char* fact :
         {"<title>Pórtico de aço de nove andares, elevation</title>", ">Los Angeles · elevation, loads",
          ">Load, kN/m<", ">Level, m<", ">+37,19<", ">-3,66<", ">9º andar<", ">9,14<", ">F</text>",
          ">W24x68<", "<title>column A1, W14x370</title>"})
        EXPECT_THAT(loads, HasSubstr(fact));
    EXPECT_EQ(CountOf(loads, "<title>girder "), 50u);
    EXPECT_EQ(CountOf(loads, "stroke=\"#a8a8a8\"><title>column "), 60u);
    // Those of least load and of most, at the ends of the scale.
    EXPECT_EQ(CountOf(loads, "stroke=\"#0000ff\"><title>girder "), 5u);
    EXPECT_EQ(CountOf(loads, "stroke=\"#ff0000\"><title>girder "), 15u);
    EXPECT_EQ(CountOf(loads, "<circle"), 6u);
    EXPECT_EQ(CountOf(loads, "l-8 13h16z"), 6u); // supports
    EXPECT_LT(loads.size(), 60'000u);

    const std::string areas = DrawElevation(*model.building, Property::Area, Units::Named("imperial", "."));
    EXPECT_EQ(XmlFault(areas), "");
    EXPECT_THAT(areas, AllOf(HasSubstr(">Area, in²<"), HasSubstr(">147.0<"), HasSubstr(">30.00<"),
                             HasSubstr("stroke=\"#ff0000\"><title>column B1, W14x500, 147.0 in²</title>"),
                             HasSubstr("stroke=\"#0000ff\"><title>girder AB9, W24x68, 20.1 in²</title>"),
                             Not(HasSubstr("#a8a8a8"))));
}

TEST(PictureTests, ThoseOfTheDocumentsAreMadeByTheProgram) {
    for (const auto& [file, svg] : DrawFamilies(Units::Named("metric", "."))) {
        std::ifstream kept(FRAME_DOCS "/" + file, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(kept), {}};
        EXPECT_TRUE(text == svg) << file << " is another one: make it anew with frame pictures docs";
        EXPECT_EQ(XmlFault(svg), "") << file;
        EXPECT_LT(svg.size(), 40'000u) << file;
    }
}

TEST(PictureTests, IsWellFormedWhateverTheBuildingIs) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::tuple<const char*, std::function<void(Building&)>, const char*> rows[] = {
        {"text that is markup",
         [](Building& b) { b.name = b.site.name = b.storeys[2]->name = b.lines[1] = "</text>&\"<"; },
         "&lt;/text&gt;&amp;&quot;&lt;"},
        {"control characters", [](Building& b) { b.name = b.sections[1]->name = "a\x01[\x1b\x7f\x9d"; },
         ">a?[?\?\?<"},
        {"long texts", [](Building& b) { b.name = b.sections[5]->name = ZoString('W', 5000); }, "W…<"},
        {"no texts", [](Building& b) { b.name = b.site.name = b.storeys[2]->name = b.lines[3] = ZoString(); },
         ">elevation, loads"},
        {"nodes very far apart",
         [](Building& b) { b.nodes[1]->place.X(-1.7e308), b.nodes[66]->place.X(1.7e308); },
         ">Girders, kN/m<"},
        {"load that is no number",
         [](Building& b) {
             dynamic_cast<Girder&>(*b.storeys[4]->members.Last()).loads.Add(new GForcaLinear(std::nan("")));
         },
         ", nan kN/m</title>"},
        {"node at no finite place", [&](Building& b) { b.nodes[3]->place.Y(infinity); },
         "The building cannot be drawn: it is of no finite size."},
        {"no members", [](Building& b) { b.storeys.RemoveAll(); },
         "The building cannot be drawn: it has no members."},
    };
    const Units units = Units::Named("metric", ".");
    std::string picture, failure;
    for (const auto& [name, change, fact] : rows) {
        SCOPED_TRACE(name);
        const Model model = ReadTables(FRAME_TABLES);
        change(*model.building);
        for (const Property property : {Property::Area, Property::Load}) {
            picture.clear();
            failure = FailureOf([&] { picture = DrawElevation(*model.building, property, units); });
            EXPECT_EQ(XmlFault(picture), failure.empty() ? "" : "not well-formed: ");
        }
        EXPECT_THAT(picture + failure, HasSubstr(fact));
    }
}

} // namespace
