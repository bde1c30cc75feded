#include "plan.h"

#include "public/frame/FailureOf.h"
#include "public/frame/XmlFault.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <map>
#include <sstream>

namespace {

using namespace Frame;
using namespace ZoPrimitives;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Units METRIC = Units::Named("metric", ".");

Plan Drawn(const std::string& rows) {
    const ZoPrimitives::Testing::TemporaryFolder folder;
    folder.Write("plan.csv", "kind,name,x1_m,y1_m,x2_m,y2_m,bulge\n" + rows);
    return Frame::ReadPlan(folder.Path("plan.csv"));
}

std::vector<std::string> SlipsOf(const Plan& plan) {
    std::vector<std::string> texts;
    for (const Slip& slip : plan.slips) texts.push_back(slip.Text(METRIC));
    return texts;
}

/// The floor areas that bearers carry, in m2.
std::map<std::string, double> AreasOf(const std::vector<Bearer>& bearers, const Plan& plan) {
    std::map<std::string, double> areas;
    for (const Bearer& bearer : bearers)
        areas[bearer.line->name] +=
            bearer.load.Valor(TForcaConcentrada::kN) / plan.floorLoad.Valor(TForcaArea::kN_m2);
    return areas;
}

const std::string BAY =
    "girder,south,0,0,6,0,0\ngirder,east,6,0,6,4,0\ngirder,north,6,4,0,4,0\ngirder,west,0,4,0,0,0\n";

TEST(PlanTests, LoadsReachTheGirders) {
    const std::string skew =
        "girder,south,0,0,6,0,0\ngirder,east,6,0,3,4,0\ngirder,north,3,4,0,4,0\ngirder,west,0,4,0,0,0\n";
    const std::string hole =
        "opening,lift,2,1,4,1,0\nopening,lift,4,1,4,3,0\nopening,lift,4,3,2,3,0\nopening,lift,2,3,2,1,0\n";
    const std::string edge = "slab,edge,0,0,-1,0,0\nslab,edge,-1,0,-1,4,0\nslab,edge,-1,4,0,4,0\n";
    const std::string trimmers = "beam,S,3,1,3,4,0\nbeam,A,1,0,1,4,0\nbeam,T,1,1,5,1,0\nbeam,B,5,0,5,4,0\n";
    const std::tuple<const char*, std::string, std::vector<double>, std::size_t> cases[] = {
        // m2 on south, east, north, west
        {"a bay", BAY, {0, 12, 0, 12}, 1},
        {"a beam in its middle", BAY + "beam,B,3,0,3,4,0\n", {6, 6, 6, 6}, 2},
        {"a beam near one side", BAY + "beam,B,2,4,2,0,0\n", {6, 8, 6, 4}, 2},
        {"beams that rest on beams", BAY + trimmers, {10, 2, 10, 2}, 5},
        {"a slanting girder", skew, {0, 9, 0, 9}, 1},
        {"a beam beside it, loaded at one end", skew + "beam,B,2,0,2,4,0\n", {5, 5, 4, 4}, 2},
        {"a slab that reaches out", BAY + edge, {0, 12, 0, 16}, 2},
        {"an opening without trimmers", BAY + hole, {0, 10, 0, 10}, 1},
        {"drawn twice", BAY + BAY + "beam,B,3,0,3,4,0\nbeam,B,3,4,3,0,0\n", {6, 6, 6, 6}, 2},
    };
    for (const auto& [name, rows, areas, panels] : cases) {
        const Plan plan = Drawn(rows);
        const auto found = AreasOf(plan.girders, plan);
        EXPECT_NEAR(found.at("south"), areas[0], 1e-9) << name;
        EXPECT_NEAR(found.at("east"), areas[1], 1e-9) << name;
        EXPECT_NEAR(found.at("north"), areas[2], 1e-9) << name;
        EXPECT_NEAR(found.at("west"), areas[3], 1e-9) << name;
        EXPECT_EQ(std::count_if(plan.panels.begin(), plan.panels.end(),
                                [](const Panel& p) { return !p.isOpening; }),
                  static_cast<std::ptrdiff_t>(panels))
            << name;
        EXPECT_THAT(SlipsOf(plan), IsEmpty()) << name;
        EXPECT_NEAR(plan.carried.Valor(TForcaConcentrada::kN), plan.load.Valor(TForcaConcentrada::kN), 1e-9)
            << name;
    }
}

TEST(PlanTests, SlipsAreFoundAndTold) {
    const std::tuple<const char*, std::string, std::string, bool> cases[] = {
        {"a gap at a corner",
         "girder,south,0.004,0,6,0,0\ngirder,east,6,0,6,4,0\ngirder,north,6,4,0,4,0\ngirder,west,0,4,0,0,0\n",
         "gap of 4 mm closed: south", true},
        {"a gap at a girder", BAY + "beam,B,3,0.006,3,4,0\n", "gap of 6 mm closed: B", true},
        {"an overshoot", BAY + "beam,B,3,0,3,4.03,0\n", "30 mm too long: B", true},
        {"a doubled beam", BAY + "beam,B,3,0,3,4,0\nbeam,C,3,4,3,0,0\n", "4.00 m drawn twice: B, C", true},
        {"a doubled part", BAY + "girder,more,2,0,4,0,0\n", "2.00 m drawn twice: more, south", true},
        {"a beam that ends in the deck", BAY + "beam,B,3,0,3,2,0\n", "ends on nothing: B", true},
        {"a beam that touches nothing", BAY + "beam,B,9,0,9,2,0\n", "ends on nothing: B", true},
        {"a beam from an opening to a girder",
         BAY + "opening,lift,2,1,4,1,0\nopening,lift,4,1,4,3,0\nopening,lift,4,3,2,3,0\nopening,lift,2,3,2,1,"
               "0\nbeam,B,3,0,3,1,0\n",
         "borders no panel: B", true},
        {"nothing bears", "slab,a,0,0,6,0,0\nslab,a,6,0,6,4,0\nslab,a,6,4,0,0,0\n", "", false},
        {"a beam in a slab without girders",
         "slab,a,0,0,6,0,0\nslab,a,6,0,6,4,0\nslab,a,6,4,0,4,0\nslab,a,0,4,0,0,0\nbeam,B,3,0,3,4,0\n",
         "ends on nothing: B|ends on nothing: B", false},
    };
    for (const auto& [name, rows, slips, carried] : cases) {
        const Plan plan = Drawn(rows);
        std::string found;
        for (const std::string& text : SlipsOf(plan)) found += (found.empty() ? "" : "|") + text;
        EXPECT_EQ(found, slips) << name;
        std::ostringstream out;
        Print(plan, METRIC, out);
        EXPECT_EQ(out.str().find("rest on nothing") == std::string::npos, carried) << name << out.str();
        EXPECT_EQ(XmlFault(DrawPlan(plan, METRIC)), "") << name;
    }
    const std::pair<std::string, const char*> refused[] = {
        {"column,C,0,0,1,1,0\n",
         "plan.csv, line 2: \"column\" is not drawn here: use slab, girder, beam or opening."},
        {"beam,B,0,0,1,1m,0\n", "plan.csv, line 2: \"1m\" is not a number."},
        {"beam,B,0,0,1,inf,0\n", "plan.csv, line 2: \"inf\" is not a number."},
        {"beam,B,0,0,1,1,1\n", "plan.csv, line 2: girders and beams are straight, and longer than nothing."},
        {"beam,B,1,1,1,1,0\n", "plan.csv, line 2: girders and beams are straight, and longer than nothing."},
        {"beam,B,0,0,1,1,0\n", "The plan plan.csv holds no closed region."},
        {"beam,B,0,0,1\n", "plan.csv, line 2: 7 fields are expected, 5 are there."},
        {"slab,s,0,0,9,0,0\nslab,s,9,0,9,9,0\nslab,s,9,9,0,9,0\nslab,s,0,9,0,0,0\n"
         "beam,A,0,3,6,3,0\nbeam,B,6,0,6,6,0\nbeam,C,9,6,3,6,0\nbeam,D,3,9,3,3,0\n",
         "The plan plan.csv cannot be computed: beam A rests on beams that rest on it."},
    };
    for (const auto& [rows, sentence] : refused)
        EXPECT_EQ(FailureOf([&, &r = rows] { Drawn(r); }), sentence) << rows;
}

TEST(PlanTests, DrawsTheFloorOfTheFrame) {
    const Plan plan = Frame::ReadPlan(std::string(FRAME_TABLES) + "/frame9-plan.csv");
    EXPECT_THAT(SlipsOf(plan),
                ElementsAre("gap of 6 mm closed: north edge", "gap of 4 mm closed: B2",
                            "gap of 7 mm closed: G14", "25 mm too long: T1", "30 mm too long: B9",
                            "41 mm too long: B12", "9.14 m drawn twice: B10, B10 again"));
    // The slab by its corners, without lift and shaft, whose chords leave it by less than 1 %.
    const double slab = 28.632 * 18.288 - 4.432 * 6.288 / 2 - 1.708 * 3.2, shaft = 3.14159265 * 0.16;
    EXPECT_NEAR(plan.load.Valor(TForcaConcentrada::kN), 7 * (slab - shaft), 0.04);
    EXPECT_NEAR(plan.carried.Valor(TForcaConcentrada::kN), plan.load.Valor(TForcaConcentrada::kN), 1e-9);
    const auto areas = AreasOf(plan.girders, plan);
    EXPECT_NEAR(areas.at("G1"), 9.144 * 3.048, 1e-6) << "half of each of two beams";
    EXPECT_NEAR(areas.at("G16"), 9.144 * 1.524, 1e-6) << "the deck beside it";
    EXPECT_EQ(plan.panels.size(), 23u);
    std::ostringstream out;
    Print(plan, Units::Named("imperial", "."), out);
    EXPECT_THAT(out.str(), HasSubstr("Panel  Area ft²  Load kip"));
    const std::string picture = DrawPlan(plan, METRIC);
    EXPECT_EQ(XmlFault(picture), "");
    for (const char* fact :
         {"<title>P2, 27.87 m², 195.1 kN</title>", "<title>girder G4, 389.3 kN</title>", ">G4 · 389.3<",
          ">gap of 4 mm closed: B2<", "stroke=\"#ff0000\"><title>girder G4", "<title>opening</title>",
          "the girders carry 3526.1 kN of 3526.1 kN"})
        EXPECT_THAT(picture, HasSubstr(fact));
    const std::string named = DrawPlan(Drawn(BAY + "beam,<&>\"\x01,3,0,3,5,0\n"), METRIC);
    EXPECT_EQ(XmlFault(named), "");
}

} // namespace
