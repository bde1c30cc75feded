#include "Platform/Platform.h"
#include "support/CommaLocale.h"

#include <climits>
#include <clocale>
#include <cmath>
#include <cstdarg>
#include <gtest/gtest.h>

namespace {

using namespace ZoPrimitives;

/// "length:text", cut to what 40 bytes hold.
std::string Format(const char* format, ...) {
    char buffer[40];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = Platform::FormatText(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    return std::to_string(length) + ":" + buffer;
}

// C libraries differ in these: in digits of exponents, in what they know, in what they return.
TEST(FormatTextTests, GivesTheSameBytesOnEverySystem) {
    EXPECT_EQ(Format("%e %E", 1e5, -1.5e-7), "26:1.000000e+05 -1.500000E-07");
    EXPECT_EQ(Format("%g %g %g", 1e100, 1e-5, 100000.0), "19:1e+100 1e-05 100000");
    EXPECT_EQ(Format("%.17g", 0.1), "19:0.10000000000000001");
    EXPECT_EQ(Format("%.0f %.0f %.2f", 0.5, 1.5, 2.675), "8:0 2 2.67");
    EXPECT_EQ(Format("%.3f", 1e22), "27:10000000000000000000000.000");
    EXPECT_EQ(Format("%f %f %F", HUGE_VAL, -HUGE_VAL, HUGE_VAL), "12:inf -inf INF");
    EXPECT_EQ(Format("%lld %llu %llx", LLONG_MIN, ULLONG_MAX, 255ULL),
              "44:-9223372036854775808 184467440737095516");
    EXPECT_EQ(Format("%zu %hhd %hu", std::size_t{5'000'000'000}, 300, 65'537), "15:5000000000 44 1");
    EXPECT_EQ(Format("%-5d|%+5d|%05d|%5.3d|%x|%#o", 7, 7, 7, 7, 255, 8), "30:7    |   +7|00007|  007|ff|010");
    EXPECT_EQ(Format("%s|%.2s|%5s|%c|%%", "text", "text", "a", 'b'), "17:text|te|    a|b|%");
    EXPECT_EQ(Format("%a", 1.0), "6:0x1p+0");
    EXPECT_EQ(Format("\xE7%s", "\xE3\x80"), "3:\xE7\xE3\x80"); // bytes, not characters of the locale
    EXPECT_EQ(Format("%s", std::string(50, 'x').c_str()), "50:" + std::string(39, 'x'));
}

TEST(FormatTextTests, LocaleChangesNothingAndStays) {
    const CommaLocale locale;
    if (!locale.Active()) GTEST_SKIP() << "no locale with a comma can be had here";
    EXPECT_EQ(Format("%.2f", 1234.5), "7:1234.50");
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}

} // namespace
