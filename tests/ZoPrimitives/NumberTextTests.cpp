#include "ZoPrimitives/NumberText.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace ZoPrimitives {
namespace {

constexpr double INF = std::numeric_limits<double>::infinity();

std::string Written(double value) { return std::string(RealText(value).Text()); }

// Rounded up to the next power of ten across the switch-over too, and to where doubles end.
TEST(RealTextTest, IsFixedFromATenthToFifteenDigits) {
    std::istringstream rows(
        "0=0. -0=-0. -1.5=-1.5 1000000=1000000. 0.1=0.1 0.33333333333333331=0.333333333333333 "
        "0.66666666666666663=0.666666666666667 100000000000000=100000000000000. "
        "-123456789012345=-123456789012345. 1e15=1.e+015 1.23456789012346e15=1.23456789012346e+015 "
        "1.23456789012346e17=1.23456789012346e+017 1e100=1.e+100 0.05=5.e-002 -0.012=-1.2e-002 "
        "0.0999999999999999=9.99999999999999e-002 1.5e-7=1.5e-007 1e-100=1.e-100 "
        "0.09999999999999999=0.1 0.9999999999999999=1. 9.999999999999999=10. "
        "99999999999999.99=100000000000000. 999999999999999.9=1.e+015 9.999999999999999e99=1.e+100 "
        "9.999999999999999e-101=1.e-100 1.7976931348623157e308=1.79769313486232e+308 "
        "-2.2250738585072014e-308=-2.2250738585072e-308 4.9e-324=4.94065645841247e-324 "
        "-inf=-inf inf=inf nan=nan -nan=nan 0.10000000149011612=0.100000001490116");
    for (std::string row; rows >> row;)
        EXPECT_EQ(Written(std::strtod(row.c_str(), nullptr)), row.substr(row.find('=') + 1)) << row;
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

// What was written before in a shorter form, and what only begins as a number. What is out of range is too
// large or too small by its first digit and its exponent together.
TEST(NumberTextTest, ReadsRealNumbersAsAtof) {
    const std::string zeros(400, '0'), ones(400, '1');
    std::istringstream rows(
        "1.e+006=1e6 0.00001=1e-5 1234567890123450.=1234567890123450 0x1p+-1=1 0x1p--1=1 0x1p+=1 "
        "0x1.8p-1=0.75 "
        "0x1P+1x=2 1e+-1=1 1e=1 -1.5E+1e=-15 e5=0 0xap+-1=10 \x0e\x31=0 0xAp1024=inf 0xFp1024=inf "
        "0xap1024=inf 0xfp1024=inf " +
        zeros + "1e-350=0 1." + ones + "e350=inf 1" + zeros + "=inf 1" + zeros + "e-800=0 0." + zeros +
        "1=0 0." + zeros + "1e401=1 0." + zeros + "1e+800=inf 0." + zeros + "1e800=inf 0x1" + zeros +
        "p-500=inf 0x1" + zeros + "p-1600=1 0x" + zeros + ".1p4=1");
    for (std::string row; rows >> row;) {
        const std::size_t equals = row.find('=');
        EXPECT_EQ(RealOf(row.substr(0, equals)), std::strtod(row.c_str() + equals + 1, nullptr)) << row;
    }
}

TEST(NumberTextTest, ReadsNoFurtherThanTheText) {
    using namespace std::string_view_literals;
    for (const std::string_view text :
         {" 12\r\n34"sv, "0x1p+12"sv, "-1.5e+12"sv, "+1\0002"sv, "1:2"sv, "-inf"sv}) {
        for (std::size_t length = 0; length <= text.size(); ++length) {
            const std::string alone(text.substr(0, length)); // as C's functions take it
            EXPECT_EQ(IntOf(text.substr(0, length)), std::atoi(alone.c_str())) << alone;
            EXPECT_EQ(RealOf(text.substr(0, length)), std::strtod(alone.c_str(), nullptr)) << alone;
        }
    }
}

TEST(NumberTextTest, KnowsAWholeInt) {
    const std::pair<const char*, int> whole[] = {
        {"7", 7}, {"+7", 7}, {"-7", -7}, {"007", 7}, {"2147483647", INT_MAX}, {"-2147483648", INT_MIN}};
    int value = 0;
    for (const auto& [text, expected] : whole)
        EXPECT_TRUE(WholeInt(text, value) && value == expected) << text;
    value = 0;
    for (const char* text :
         {"2147483648", "99999999999999999999999", "", "-", " 7", "7 ", "7.", "0x7", "--7"})
        EXPECT_TRUE(!WholeInt(text, value) && value == 0) << text;
}

} // namespace
} // namespace ZoPrimitives
