#include "ZoPrimitives/Math2.h"

#include "ZoPrimitives/Point3D.h"
#include "ZoPrimitives/grandeza.h"

#include "support/Assertions.h"
#include "support/CommaLocale.h"

#include <climits>
#include <cmath>
#include <initializer_list>

using namespace ZoPrimitives;

namespace {

constexpr double PI = 3.141592653589793;
constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

struct Row {
    const char* name;
    double actual, expected;
};

/// Each has the bits expected, or both are NaN.
void Expect(std::initializer_list<Row> rows) {
    for (const auto& [name, actual, expected] : rows) {
        const bool same = actual == expected && std::signbit(actual) == std::signbit(expected);
        EXPECT_TRUE(same || (std::isnan(actual) && std::isnan(expected))) << name << ": " << actual;
    }
}

double PowerOfTen(int exponent) { return std::stod("1e" + std::to_string(exponent)); }

TEST(Math2Tests, ComparesWithinTheTolerance) {
    const std::tuple<const char*, double, double, unsigned, const char*> cases[] = {
        {"within", 1.0, 1.00005, 4, "Equal LessEqual GreaterEqual"},
        {"the tolerance itself", 0.0, 0.0001, 4, "Different Less LessEqual"},
        {"outside", 1.0, 1.0002, 4, "Different Less LessEqual"},
        {"greater", 1.0002, 1.0, 4, "Different Greater GreaterEqual"},
        {"precision 22, the same", 3.0, 3.0, 22, "Different Greater GreaterEqual"},
        {"precision 22, less", 3.0, 4.0, 22, "Different Less LessEqual"},
        {"NaN", NOT_A_NUMBER, 1.0, 4, "Different Greater GreaterEqual"},
        {"infinity and itself", INF, INF, 4, "Different Greater GreaterEqual"},
        {"infinity", -INF, INF, 4, "Different Less LessEqual"},
    };
    for (const auto& [name, a, b, precision, held] : cases) {
        const auto all =
            std::string(Equal(a, b, precision) ? "Equal" : "") +
            (Different(a, b, precision) ? "Different" : "") + (Less(a, b, precision) ? " Less" : "") +
            (LessEqual(a, b, precision) ? " LessEqual" : "") + (Greater(a, b, precision) ? " Greater" : "") +
            (GreaterEqual(a, b, precision) ? " GreaterEqual" : "");
        EXPECT_EQ(all, held) << name;
    }
    for (unsigned precision = 0; precision <= 20; ++precision) {
        const double tolerance = PowerOfTen(-static_cast<int>(precision));
        EXPECT_FALSE(Equal(0, tolerance, precision)) << precision;
        EXPECT_TRUE(Equal(std::nextafter(tolerance, 0), 0, precision)) << precision;
    }
    for (const unsigned precision : {23u, UINT_MAX}) {
        EXPECT_EQ(AssertionOf([&] { Equal(1, 1, precision); }).expression, "precision <= 22");
        EXPECT_EQ(AssertionOf([&] { Less(1, 2, precision); }).source, "cpp/ZoPrimitives/Math2");
        EXPECT_EQ(AssertionOf([&] { ExAdjustAngle(1, precision, true); }).expression, "precision <= 22");
    }
}

TEST(Math2Tests, FullTurnIsNoTurn) {
    const GAngulo none(0.00001), turn(2 * PI), turns(4 * PI), half(PI);
    EXPECT_TRUE(Equal(none, turn, 4) && Equal(turn, none, 4) && Equal(half, half, 4));
    EXPECT_FALSE(Equal(none, turns, 4) || Equal(turn, turns, 4) || Equal(half, turn, 4));
    EXPECT_FALSE(Equal(none, turn, 6));
    EXPECT_TRUE(Equal(half, PI, 4)) << "beside a number an angle is one";
}

TEST(Math2Tests, ChoosesAndBounds) {
    Expect({
        {"least, first", Min(1, 2, 4), 1},
        {"least, second", Min(2, 1, 4), 1},
        {"tie of the least", Min(1.0, 1.00001, 4), 1.00001},
        {"greatest, first", Max(2, 1, 4), 2},
        {"greatest, second", Max(1, 2, 4), 2},
        {"tie of the greatest", Max(1.00001, 1.0, 4), 1.0},
        {"clamped above", Clamp(15, 10, 0), 10},
        {"clamped below", Clamp(-3, 10, 0), 0},
        {"inside", Clamp(5, 10, 0), 5},
        {"equal to the upper bound", Clamp(10.00009, 10, 0), 10.00009},
        {"equal to the lower bound", Clamp(-0.00009, 10, 0), -0.00009},
        {"beyond its tolerance", Clamp(10.0002, 10, 0), 10},
        {"below its tolerance", Clamp(-0.0002, 10, 0), 0},
        {"bounds that cross: the lower one", Clamp(5, 0, 10), 10},
    });
    EXPECT_TRUE(Between(5, 0, 10, 3) && BetweenEqual(10.0005, 0, 10, 3) && BetweenEqual(-0.0005, 0, 10, 3));
    EXPECT_FALSE(Between(10, 0, 10, 3) || Between(0.0005, 0, 10, 3) || BetweenEqual(-0.001, 0, 10, 3) ||
                 BetweenEqual(10.002, 0, 10, 3) || BetweenEqual(NOT_A_NUMBER, 0, 10, 3));
}

// What the steps of binary arithmetic give, from a Python script.
TEST(Math2Tests, RoundsStepByStep) {
    const auto toInt = [](auto x) { return static_cast<double>(RoundUp(x)); };
    Expect({
        {"half", ExRound(2.5, 0), 3},
        {"negative half", ExRound(-2.5, 0), -3},
        {"half of a decimal", ExRound(1.25, 1), 1.3},
        {"below half in binary", ExRound(1.005, 2), 1.0},
        {"below half, but not once scaled", ExRound(0.615, 2), 0.62},
        {"below half, still so once scaled", ExRound(2.675, 2), 2.67},
        {"the double before a half", ExRound(0.49999999999999994, 0), 1},
        {"negative zero", ExRound(-0.0, 0), 0.0},
        {"last with a half", ExRound(4503599627370495.5, 0), 4503599627370496},
        {"huge", ExRound(-1e308, 20), -1e308},
        {"half a unit of 20 decimals", ExRound(6e-21, 20), 1e-20},
        {"308 decimals", ExRound(0.5, 308), 0.5},
        {"309 decimals", ExRound(0.5, 309), NOT_A_NUMBER},
        {"infinity", ExRound(INF, 2), NOT_A_NUMBER},
        {"NaN", ExRound(NOT_A_NUMBER, 2), NOT_A_NUMBER},
        {"twice: up", RobustRound(2.495, 0), 3},
        {"twice: down", RobustRound(2.4949, 0), 2},
        {"twice: decimals wrap", RobustRound(1.5, UINT_MAX), NOT_A_NUMBER},
        {"up, as it is", RoundUp(2.0, 2), 2.0},
        {"up", RoundUp(1.231, 2), 1.24},
        {"up, rounded before", RoundUp(1.2304, 2), 1.23},
        {"up, in spite of binary", RoundUp(1.1, 1), 1.1},
        {"up, negative", RoundUp(-1.239, 2), -1.23},
        {"up, overflow", RoundUp(1e308, 2), NOT_A_NUMBER},
        {"down", RoundDown(-1.234, 2), -1.24},
        {"down, not rounded before", RoundDown(0.29, 2), 0.28},
        {"down, overflow", RoundDown(1e308, 2), INF},
        {"whole part", IntPart(-2.7), -2},
        {"halves up", Round(2.5), 3},
        {"negative halves up", Round(-2.5), -2},
        {"halves down", RoundNearest(2.5), 2},
        {"negative halves down", RoundNearest(-2.5), -3},
        {"above half", RoundNearest(2.5000000000000004), 3},
        {"long double as double", Round(2.49999999999999999999L), 3},
        {"upwards to int", toInt(1.0000001), 2},
        {"of float", toInt(-1.5F), -1},
        {"the last int", toInt(2147483646.5), INT_MAX},
        {"far beyond int", toInt(1e300), INT_MAX},
        {"infinity to int", toInt(-INF), INT_MIN},
        {"NaN to int", toInt(NOT_A_NUMBER), 0},
    });
}

TEST(Math2Tests, BringsAnglesIntoOneTurn) {
    Expect({
        {"negative", AdjustAngle(-PI / 2), 3 * PI / 2},
        {"a turn", AdjustAngle(2 * PI), 0},
        {"many turns", AdjustAngle(1e10), 5.773954391479492},
        {"less than rounding below 0", AdjustAngle(-1e-20), 2 * PI},
        {"more turns than counted", AdjustAngle(-13.5e9), -6962289.19479626},
        {"infinity", AdjustAngle(INF), INF},
        {"NaN", AdjustAngle(NOT_A_NUMBER), NOT_A_NUMBER},
        {"degrees", ExAdjustAngle(-90, 2, false), 270},
        {"rounded to a turn", ExAdjustAngle(359.999, 2, false), 0},
        {"rounded without its turn", ExAdjustAngle(365.1, 1, false), 5.1},
        {"rounded radians", ExAdjustAngle(2 * PI + 1, 2, true), 1},
        {"negative radians", ExAdjustAngle(-1, 0, true), 5},
        {"turns that rounding counts one short", ExAdjustAngle(19 * 6.28, 2, true), 6.28},
        {"beyond 32 bits", ExAdjustAngle(1e300, 2, false), 1e300},
    });
}

TEST(Math2Tests, SolvesQuadratics) {
    const std::tuple<const char*, double, double, double, double, double> cases[] = {
        {"two roots", 2, -6, 4, 2, 1},
        {"in the other order", -1, 3, -2, 1, 2},
        {"one root", 1, -2, 1, 1, 1},
        {"no square", 0, 2, 1, NOT_A_NUMBER, -INF},
        {"NaN", NOT_A_NUMBER, 2, 1, NOT_A_NUMBER, NOT_A_NUMBER},
    };
    double x1 = 7, x2 = 8;
    EXPECT_FALSE(Bhaskara(x1, x2, 1, 0, 1));
    EXPECT_TRUE(x1 == 7 && x2 == 8);
    for (const auto& [name, a, b, c, first, second] : cases) {
        EXPECT_TRUE(Bhaskara(x1, x2, a, b, c)) << name;
        Expect({{name, x1, first}, {name, x2, second}});
    }
}

TEST(Math2Tests, InterpolatesInTheTypeOfItsArguments) {
    static_assert(std::is_same_v<decltype(Interpolacao(0.F, 1.F, 1.F, 0.F, 1.F)), float>);
    static_assert(std::is_same_v<decltype(Interpolacao(0, 1.F, 1.0, 0L, 1)), double>);
    EXPECT_EQ(Interpolacao(1.0, 5.0, 4.0, 10.0, 30.0), 25.0);
    EXPECT_EQ(Interpolacao(1.F, 5.F, 4.F, 10.F, 30.F), 25.F);
    EXPECT_EQ(Interpolacao(0, 2, 1, 0, 1), 0.5);
    EXPECT_EQ(Interpolacao(0.F, 3.F, 2.F, 0.F, 1.F), 1.F / 3.F * 2.F);
    EXPECT_EQ(Interpolacao(1.0, 1.0, 2.0, 10.0, 20.0), INF);
}

TEST(Math2Tests, CountsAndMeasures) {
    for (const auto& [n, product] :
         {std::pair(-3, 1), {12, 479001600}, {13, 1932053504}, {17, -288522240}, {33, INT_MIN}, {INT_MAX, 0}})
        EXPECT_EQ(Factorial(n), product) << n;
    EXPECT_EQ(Distance(1, 2, 3, 3, 5, 9), 7);
    EXPECT_EQ(Distance(0, 0, 0, 0.1L, 0, 0), 0.1);
    EXPECT_TRUE(IsNan(NOT_A_NUMBER));
    EXPECT_FALSE(IsNan(INF));
    EXPECT_EQ(SwapBytes(0x12345678), 0u);
}

TEST(Math2Tests, ReadsHexadecimalDigits) {
    const std::pair<const char*, int> cases[] = {
        {"0xff", 255},    {"0XFF", 255},    {"09af", 0x9AF},
        {"AF09", 0xAF09}, {"1G2", 1},       {"1g2", 1},
        {"aF:", 175},     {"aF/", 175},     {"aF@", 175},
        {"aF`", 175},     {"x1", 0},        {"0x", 0},
        {"0x0x1", 0},     {" 1", 0},        {"-1", 0},
        {"", 0},          {"ffffffff", -1}, {"1abcdef01", -1412567295},
        {nullptr, 0}};
    for (const auto& [text, value] : cases) EXPECT_EQ(HexStrToInt(text), value) << (text ? text : "null");
}

TEST(Math2Tests, ConvertsColourWords) {
    const std::pair<Point3D, unsigned long> words[] = {
        {{1, 0, 0}, 0xFF0000},
        {{0.5, 0.25, 0.999}, 0x7F3FFE},   // cut, not rounded
        {{0.9999999999, 0, 0}, 0xFF0000}, // but rounded to six decimals first
        {{2, 0, 0}, 0x1FE0000},           // overflowing
        {{0, 0, -0.1}, 0xFFFFFFE7},       // negative
        {{NOT_A_NUMBER, INF, -INF}, 0},
        {{0, 0, 1e300}, 0x7FFFFFFF},
    };
    for (const auto& [point, word] : words) {
        const double components[] = {point.X(), point.Y(), point.Z()};
        EXPECT_EQ(DoubleArrayToColor(components), word) << std::hex << word;
    }
    const std::pair<unsigned long, Point3D> components[] = {
        {0xFF0000, {0, 0, 1}}, {0x336699, {0.6, 0.4, 0.2}}, {0xFF, {1, 0, 0}}, {0x99663300, {0.2, 0.4, 0.6}}};
    for (const auto& [word, expected] : components) {
        double out[3] = {};
        ULongToDoubleArray(word, out);
        EXPECT_EQ(Point3D(out[0], out[1], out[2]), expected) << std::hex << word;
    }
}

TEST(Math2Tests, FormatsNumbers) {
    const std::string zeros(20, '0');
    const std::string huge = std::to_string(1e308).substr(0, 309); // before the point
    const std::tuple<const char*, double, unsigned, bool, char, std::string> cases[] = {
        {"comma", 1.5, 3, false, ',', "1,5"},
        {"kept zeros", 2.0, 2, true, ',', "2,00"},
        {"no negative zero", -0.0001, 2, false, '.', "0"},
        {"no negative zero, kept", -0.0, 1, true, '.', "0.0"},
        {"zeros on both sides", -1200.0, 2, false, '.', "-1200"},
        {"no grouping", 1234567.891, 1, true, ',', "1234567,9"},
        {"more decimals than digits", 1.0 / 3, 22, true, '.', "0.3333333333333333148296"},
        {"all digits", 0.1, 60, false, '.', "0.1000000000000000055511151231257827021181583404541015625"},
        {"largest", 1e308, 20, true, '.', huge + "." + zeros},
        {"largest, most decimals", -1e308, 308, false, '.', "-" + huge},
        {"308 decimals", 1e-308, 308, false, '.', "0." + std::string(307, '0') + "1"},
        {"309 decimals", 1, 309, false, '.', "nan"},
        {"infinity", -INF, 2, true, '.', "nan"},
    };
    const CommaLocale locale;
    for (const auto& [name, value, decimals, keepZeros, separator, text] : cases) {
        EXPECT_EQ(FormatFloat(value, decimals, keepZeros, separator), text.c_str()) << name;
    }
}

TEST(Math2Tests, FormatsWithExponents) {
    const std::tuple<const char*, double, unsigned, unsigned, const char*> free[] = {
        {"one digit", 12345, 1, 4, "1,2345x10^4"},
        {"negative", -12345, 1, 4, "-1,2345x10^4"},
        {"no digit", 12345, 0, 5, "0,12345x10^5"},
        {"small and negative", -0.00012345, 1, 4, "-1,2345x10^-4"},
        {"in range", 5, 1, 2, "5"},
        {"nearly in range", 0.95, 1, 2, "9,5x10^-1"},
        {"too short", 5, 2, 2, "50x10^-1"},
        {"rounded to the limit", 99999.99, 1, 1, "10x10^4"},
        {"multiplied by 0.1, not divided by 10", 1234, 1, 16, "1,2340000000000002x10^3"},
        {"zero", 0, 1, 2, "0"},
        {"least that is scaled", 1e-20, 1, 3, "1x10^-20"},
        {"below that", 9e-21, 1, 3, "0"},
        {"largest", 1e308, 1, 3, "1x10^308"},
        {"infinity", INF, 1, 3, "nan"},
        {"NaN", NOT_A_NUMBER, 1, 3, "nan"},
        {"more digits than there are", 2, 309, 1, "2"},
        {"more decimals than there are", 12345, 1, 309, "nan"},
    };
    for (const auto& [name, value, intDigits, decimals, text] : free)
        EXPECT_EQ(FormatFloatInScientificNotation(value, intDigits, decimals, false, ','), text) << name;
    for (int digits = 0; digits <= 308; ++digits) {
        const double limit = PowerOfTen(digits), beyond = std::nextafter(limit, INF);
        const auto text = [&](double value) {
            return FormatFloatInScientificNotation(value, static_cast<unsigned>(digits), 0, false, '.');
        };
        EXPECT_EQ(text(limit).find("x"), -1) << "the limit itself is not scaled: " << digits;
        EXPECT_NE(text(beyond).find("x10^1"), -1) << "beyond the limit: " << digits;
    }

    const std::string noMore = "0." + std::string(308, '0') + "x10^";
    const std::tuple<const char*, double, int, unsigned, std::string> fixed[] = {
        {"own exponent", 12345, 4, 1, "1.2x10^4"},
        {"ten", 10, 1, 2, "1.00x10^1"},
        {"ten and a leading zero", 10, 2, 2, "0.100x10^2"},
        {"leading zeros", -12345, 7, 2, "-0.00123x10^7"},
        {"ten or more", 12345, 2, 0, "123.45x10^2"},
        {"ten itself", 10, 0, 1, "10.00"},
        {"multiplied by 0.1, not divided by 10", 1234, 3, 16, "1.2340000000000002x10^3"},
        {"no exponent", 123.456, 0, 1, "123.46"},
        {"zero", 0, 3, 2, "0.00x10^3"},
        {"zero, negative exponent", 0, -3, 1, "0.0x10^-3"},
        {"least that is widened", 1e-20, -19, 1, "0.10x10^-19"},
        {"below comparing", 4e-21, -20, 1, "0.4x10^-20"},
        {"far too small", 1, 400, 306, noMore + "400"},
        {"steps end at 0", 1, INT_MAX, 0, noMore + "2147483647"},
        {"far too large", 1, INT_MIN, 2, "nan"},
        {"NaN", NOT_A_NUMBER, 3, 2, "nan"},
        {"decimals that wrap", 0.1, 5, UINT_MAX, "nan"},
    };
    for (const auto& [name, value, exponent, decimals, text] : fixed)
        EXPECT_EQ(FormatFloatInScientificNotationWithFixedExponent(value, exponent, decimals, true, '.'),
                  text.c_str())
            << name;
    for (int exponent = -307; exponent <= 308; ++exponent) {
        const ZoString own =
            FormatFloatInScientificNotationWithFixedExponent(PowerOfTen(exponent), exponent, 2, true, '.');
        const std::string suffix = exponent != 0 ? "x10^" + std::to_string(exponent) : "";
        EXPECT_EQ(own, ("1.00" + suffix).c_str());
    }
}

} // namespace
