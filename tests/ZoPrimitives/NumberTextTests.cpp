#include "ZoPrimitives/NumberText.h"

#include "support/CommaLocale.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

namespace ZoPrimitives {
namespace {

constexpr double INF = std::numeric_limits<double>::infinity();

std::string Written(double value) { return std::string(RealText(value).Text()); }

TEST(RealTextTest, IsFixedFromATenthToFifteenDigits) {
    const struct {
        double value;
        const char* text;
    } rows[] = {
        {0, "0."},
        {-0.0, "-0."},
        {1, "1."},
        {-1.5, "-1.5"},
        {100, "100."},
        {1000000, "1000000."},
        {0.5, "0.5"},
        {0.1, "0.1"},
        {1.0 / 3, "0.333333333333333"},
        {2.0 / 3, "0.666666666666667"},
        {100000000000000, "100000000000000."},
        {-123456789012345, "-123456789012345."},
        {1e15, "1.e+015"},
        {1.23456789012346e15, "1.23456789012346e+015"},
        {1.23456789012346e17, "1.23456789012346e+017"},
        {1e100, "1.e+100"},
        {0.05, "5.e-002"},
        {-0.012, "-1.2e-002"},
        {0.0999999999999999, "9.99999999999999e-002"},
        {1.5e-7, "1.5e-007"},
        {1e-100, "1.e-100"},
        // Rounded up to the next power of ten, across the switch-over too.
        {0.09999999999999999, "0.1"},
        {0.9999999999999999, "1."},
        {9.999999999999999, "10."},
        {99999999999999.99, "100000000000000."},
        {999999999999999.9, "1.e+015"},
        {9.999999999999999e99, "1.e+100"},
        {9.999999999999999e-101, "1.e-100"},
        // Where doubles end. The largest needs more digits than are written, and is rounded up.
        {DBL_MAX, "1.79769313486232e+308"},
        {-DBL_MIN, "-2.2250738585072e-308"},
        {DBL_TRUE_MIN, "4.94065645841247e-324"},
        {-INF, "-inf"},
        {INF, "inf"},
        {std::numeric_limits<double>::quiet_NaN(), "nan"},
        {-std::numeric_limits<double>::quiet_NaN(), "nan"},
        // A float has the digits of its double.
        {0.1f, "0.100000001490116"},
    };
    for (const auto& row : rows) EXPECT_EQ(Written(row.value), row.text);
}

TEST(RealTextTest, ReadsBackAtEveryPowerOfTen) {
    for (int power = -323; power <= 308; ++power) {
        for (const char* digits : {"1", "9", "9.5", "1.00000000000001", "1.79769313486231",
                                   "4.00000000000002", "1.23456789012345", "9.99999999999999"}) {
            if (power == 308 && digits[0] != '1') continue;
            const double value = RealOf(std::string(digits) + "e" + std::to_string(power));
            ASSERT_TRUE(std::isfinite(value) && value > 0) << digits << "e" << power;
            EXPECT_EQ(RealOf(Written(value)), value) << digits << "e" << power;
            EXPECT_EQ(RealOf(Written(-value)), -value) << digits << "e" << power;
        }
    }
    EXPECT_TRUE(std::signbit(RealOf(Written(-0.0))));
    EXPECT_EQ(RealOf(Written(-INF)), -INF);
    EXPECT_TRUE(std::isnan(RealOf(Written(std::nan("")))));
}

TEST(RealTextTest, HasTheDigitsOfPrintf) {
    // Powers of two, the smallest ones included, and their neighbours need up to 17 digits.
    for (int power = -1074; power <= 1023; ++power) {
        for (const double value : {std::ldexp(1.0, power), std::nextafter(std::ldexp(1.0, power), 0.0)}) {
            char expected[64];
            std::snprintf(expected, sizeof expected, "%.14e", value);
            EXPECT_EQ(RealOf(Written(value)), RealOf(expected)) << expected;
        }
    }
}

TEST(RealTextTest, IsTheSameInALocaleWithCommas) {
    const CommaLocale comma;
    if (!comma.Active()) GTEST_SKIP() << "no locale with a decimal comma";
    EXPECT_EQ(Written(1.5), "1.5");
    EXPECT_EQ(RealOf("1.5"), 1.5);
}

TEST(NumberTextTest, ReadsRealNumbersAsAtof) {
    const struct {
        const char* text;
        double value;
    } rows[] = {
        // What was written before in the shorter form.
        {"1.e+006", 1e6},   {"0.00001", 1e-5}, {"1234567890123450.", 1234567890123450},
        {"0x1p+-1", 1},     {"0x1p--1", 1},    {"0x1p+", 1},
        {"0x1.8p-1", 0.75}, {"0x1P+1x", 2},    {"1e+-1", 1},
        {"1e", 1},          {"-1.5E+1e", -15}, {"e5", 0},
    };
    for (const auto& row : rows) EXPECT_EQ(RealOf(row.text), row.value) << row.text;
}

TEST(NumberTextTest, ReadsNoFurtherThanTheText) {
    const std::string_view text = " 12\r\n34";
    EXPECT_EQ(IntOf(text.substr(0, 3)), 12);
    EXPECT_EQ(IntOf(text.substr(0, 2)), 1);
    EXPECT_EQ(IntOf(text.substr(0, 1)), 0);
    EXPECT_EQ(IntOf(""), 0);
    EXPECT_EQ(RealOf(text.substr(0, 2)), 1);
    EXPECT_EQ(RealOf(std::string_view("0x1", 2)), 0);
    EXPECT_EQ(RealOf(std::string_view("1e5", 2)), 1);
    EXPECT_EQ(RealOf("-"), 0);
    EXPECT_EQ(RealOf(""), 0);
    EXPECT_EQ(IntOf(std::string_view("1\0"
                                     "2",
                                     3)),
              1);
}

TEST(NumberTextTest, KnowsAWholeInt) {
    const struct {
        const char* text;
        bool whole;
        int value;
    } rows[] = {
        {"7", true, 7},
        {"+7", true, 7},
        {"-7", true, -7},
        {"007", true, 7},
        {"2147483647", true, INT_MAX},
        {"-2147483648", true, INT_MIN},
        {"2147483648", false, 0},
        {"99999999999999999999999", false, 0},
        {"", false, 0},
        {"-", false, 0},
        {" 7", false, 0},
        {"7 ", false, 0},
        {"7.", false, 0},
        {"0x7", false, 0},
        {"--7", false, 0},
    };
    for (const auto& row : rows) {
        int value = 0;
        EXPECT_EQ(WholeInt(row.text, value), row.whole) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

} // namespace
} // namespace ZoPrimitives
