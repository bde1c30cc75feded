#include "ZoPrimitives/ColorScale.h"

#include <gtest/gtest.h>

#include <climits>

namespace ZoPrimitives {
static void PrintTo(const TZoColor& color, std::ostream* out) { *out << color.ToString().c_str(); }
} // namespace ZoPrimitives

using namespace ZoPrimitives;

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

TEST(TZoColorTests, ReadsTexts) {
    const TZoColor kept(1, 2, 3, 4);
    const std::tuple<const char*, bool, TZoColor> cases[] = {
        {"10,20,30,40", true, {10, 20, 30, 40}},
        {"10,20,30", false, kept},
        {"", false, kept},
        {"300,0,0,0", true, {44, 0, 0, 0}},
        {"-1, 20,x,4y,50", true, {255, 20, 0, 4}},
        {",,,", true, {0, 0, 0, 0}},
        {"99999999999999999999,0,0,0", true, {255, 0, 0, 0}},
    };
    for (const auto& [text, read, expected] : cases) {
        TZoColor color(kept);
        EXPECT_EQ(color.FromString(text), read) << text;
        EXPECT_EQ(color, expected) << text;
    }
    EXPECT_STREQ(TZoColor(0, 5, 255, 7).ToRGBString().c_str(), "0,5,255");
    EXPECT_STREQ(TZoColor(0, 5, 255, 7).ToString().c_str(), "0,5,255,7");
}

TEST(TZoColorTests, ComparesAndChangesComponents) {
    TZoColor color(250, 5, 100, 9);
    EXPECT_NE(color, TZoColor(250, 5, 100, 8));
    EXPECT_TRUE(color.AreRgbEqual(TZoColor(250, 5, 100, 8)));
    color.AddBrightDelta(10);
    EXPECT_EQ(color, TZoColor(255, 15, 110, 9));
    color.AddDarkDelta(20);
    EXPECT_EQ(color, TZoColor(235, 0, 90, 9));
    color.AddDarkDelta(INT_MIN);
    EXPECT_EQ(color, TZoColor(255, 255, 255, 9));
    EXPECT_TRUE(color.IsWhite() && !color.IsBlack());
    color.AddBrightDelta(INT_MIN);
    EXPECT_TRUE(color.IsBlack() && !color.IsWhite());
    color.SetRGB(51, 102, 204);
    EXPECT_EQ(color, TZoColor(51, 102, 204, 9));
    EXPECT_TRUE(color.GetRedAsFloat() == 0.2F && color.GetGreenAsFloat() == 0.4F &&
                color.GetBlueAsFloat() == 0.8F && TZoColor(1, 1, 1, 255).GetAlphaAsFloat() == 1);
    EXPECT_EQ(static_cast<unsigned long>(TZoColor(255, 102, 51, 9)), 0x3366FFu);
    for (const TZoColor& other : {TZoColor(0, 102, 204, 9), {51, 0, 204, 9}, {51, 102, 0, 9}})
        EXPECT_FALSE(color.AreRgbEqual(other));
    for (const TZoColor& one : {TZoColor(255, 0, 0, 0), {0, 255, 0, 0}, {0, 0, 255, 0}})
        EXPECT_FALSE(one.IsBlack() || one.IsWhite());
}

TEST(TColorScaleTests, BlendsThreeColours) {
    const TZoColor blue(0, 0, 255, 0), red(255, 0, 0, 0), black(0, 0, 0, 0);
    TColorScale reversed(100, 0), nan(NOT_A_NUMBER, 100), infinite(0, INF), farApart(-1.7e308, 1.7e308);
    TColorScale shared(0, 100), odd(-1, 0.5);
    shared.SetColorLimits({255, 200, 10, 3}, {255, 100, 10, 4});
    odd.SetColorLimits({200, 0, 0, 0}, {0, 90, 0, 0}); // middle colour 55, 165, 255
    const std::tuple<const char*, TColorScale, double, TZoColor> cases[] = {
        {"below", {0, 100}, -5, blue},
        {"first quarter", {0, 100}, 12.5, {0, 127, 255, 0}},
        {"second quarter", {0, 100}, 40, {0, 255, 102, 0}},
        {"middle", {0, 100}, 50, {0, 255, 0, 0}},
        {"third quarter", {0, 100}, 60, {102, 255, 0, 0}},
        {"fourth quarter", {0, 100}, 99, {255, 10, 0, 0}},
        {"upper limit", {0, 100}, 100, red},
        {"above", {0, 100}, INF, red},
        {"no limits", {}, -0.0, blue},
        {"no limits, above", {}, 5e-324, red},
        {"end colours keep their alpha", shared, 0, {255, 200, 10, 3}},
        {"middle colour of sums", shared, 50, {1, 211, 235, 0}},
        {"sums wrap", shared, 25, {0, 155, 245, 0}},
        {"other colours, first quarter", odd, -0.875, {218, 55, 85, 0}},
        {"other colours, third quarter", odd, 0, {55, 225, 255, 0}},
        {"reversed limits", reversed, 50, blue},
        {"above reversed limits", reversed, 101, red},
        {"NaN", {0, 100}, NOT_A_NUMBER, black},
        {"lower limit NaN", nan, 50, black},
        {"upper limit infinite", infinite, 50, black},
        {"limits too far apart", farApart, 50, black},
    };
    for (const auto& [name, scale, value, color] : cases) EXPECT_EQ(scale.GetColor(value), color) << name;
}

TEST(TColorScaleTests, DerivesTheMiddleColour) {
    TColorScale scale(0, 100);
    scale.SetColorLimits({255, 255, 255, 1}, {0, 0, 0, 2});
    EXPECT_EQ(scale.GetColor(50), TZoColor(0, 0, 0, 0));
    scale.SetColorLimits(scale.GetColorMax(), scale.GetColorMin());
    EXPECT_EQ(scale.GetColorMin(), TZoColor(0, 0, 0, 2));
    EXPECT_EQ(scale.GetColorMax(), TZoColor(255, 255, 255, 1));
    const TColorScale copy(scale);
    scale.SetScaleLimits(1, 2);
    EXPECT_EQ(copy.GetLimitMax(), 100);
    EXPECT_EQ(scale.GetLimitMin(), 1);
}

} // namespace
