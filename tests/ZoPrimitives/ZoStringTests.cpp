#include "ZoPrimitives/ZoString.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/ZoUtf8.h"
#include "support/Assertions.h"
#include "support/CommaLocale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

using namespace ZoPrimitives;

namespace ZoPrimitives {
void PrintTo(const ZoString& text, std::ostream* out) { *out << '"' << ZoToUtf8(text) << '"'; }
} // namespace ZoPrimitives

namespace {

constexpr unsigned LAST = 0xFFFFFFFFu;

std::string Text(const ZoString& text) { return text.c_str(); }

/// Strings over a small alphabet, so that coincidences are frequent.
std::string Random(std::mt19937& random, const char* alphabet, std::size_t longest) {
    const std::string letters(alphabet);
    std::string text(random() % (longest + 1), ' ');
    for (char& c : text) c = letters[random() % letters.size()];
    return text;
}

TEST(ZoStringTest, Construction) {
    const unsigned char bytes[] = {0xE7, 'z', 'c'};
    const char* null = nullptr;
    const struct {
        const char* name;
        ZoString made;
        const char* expected;
    } rows[] = {
        {"default", ZoString(), ""},
        {"text", ZoString("abc"), "abc"},
        {"null", ZoString(null), ""},
        {"null with a count", ZoString(null, 5), ""},
        {"literal null with a count", ZoString(nullptr, 5), ""},
        {"null bytes", ZoString(static_cast<const unsigned char*>(nullptr), 5), ""},
        {"count", ZoString("abcdef", 3), "abc"},
        {"embedded zero ends it", ZoString("ab\0cd", 5), "ab"},
        {"bytes", ZoString(bytes, 2), "\xE7z"},
        {"repeated", ZoString('x', 4), "xxxx"},
        {"never", ZoString('x', 0), ""},
        {"character", ZoString('a'), "a"},
        {"zero", ZoString(0), "0"},
        {"smallest int", ZoString(INT_MIN), "-2147483648"},
        {"unsigned", ZoString(UINT_MAX), "4294967295"},
        {"short", ZoString(static_cast<short>(-3)), "-3"},
        {"size", ZoString(std::size_t{18446744073709551615u}), "18446744073709551615"},
        {"64 bits", ZoString(ULLONG_MAX), "18446744073709551615"},
        {"64 bits signed", ZoString(LLONG_MIN), "-9223372036854775808"},
        {"long", ZoString(-7L), "-7"},
        {"double", ZoString(1.5), "1.500000"},
        {"float", ZoString(-0.25f), "-0.250000"},
        {"rounds half to even of the exact value", ZoString(0.0000005), "0.000000"},
        {"minus zero", ZoString(-0.0), "-0.000000"},
        {"infinite", ZoString(-HUGE_VAL), "-inf"},
        {"not a number", ZoString(-std::nan("")), "nan"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.made, row.expected) << row.name;
        EXPECT_EQ(row.made.length(), std::strlen(row.expected)) << row.name;
    }
    EXPECT_EQ(ZoString(DBL_MAX).length(), 316u);
}

static_assert(!std::is_constructible_v<ZoString, wchar_t> && !std::is_constructible_v<ZoString, char32_t>);
static_assert(!std::is_constructible_v<ZoString, char8_t>);
static_assert(!std::is_constructible_v<ZoString, int*> && !std::is_constructible_v<ZoString, const wchar_t*>);
// A 0 beside a text is a number, not a null text: it does not compile, on either side.
template <class S>
constexpr bool ZERO_IS_REFUSED = !requires(S s) {
    s == 0;
}
&&!requires(S s) { s != 0; }
&&!requires(S s) { s < 0; }
&&!requires(S s) { s <= 0; }
&&!requires(S s) { s > 0; }
&&!requires(S s) { s >= 0; }
&&!requires(S s) { 0 == s; }
&&!requires(S s) { 0 != s; }
&&!requires(S s) { 0 < s; }
&&!requires(S s) { 0 <= s; }
&&!requires(S s) { 0 > s; }
&&!requires(S s) { 0 >= s; }
&&!requires(S s) { 0 + s; };
struct Name : ZoString {};
static_assert(ZERO_IS_REFUSED<ZoString> && ZERO_IS_REFUSED<Name>);
static_assert(std::is_nothrow_move_constructible_v<ZoString> && std::is_nothrow_move_assignable_v<ZoString>);

TEST(ZoStringTest, DoublesAreWrittenAsPrintfWrites) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        char expected[400];
        std::snprintf(expected, sizeof expected, "%f", value);
        ASSERT_EQ(ZoString(value), expected);
    }
}

TEST(ZoStringTest, CopyAndMove) {
    ZoString a("abc");
    ZoString b(a);
    b[0] = 'x';
    EXPECT_EQ(a, "abc");
    ZoString c(std::move(a));
    EXPECT_EQ(c, "abc");
    EXPECT_EQ(a.length(), 0u); // NOLINT: reading a moved-from string is safe
    EXPECT_EQ(a, "");
    a = b;
    EXPECT_EQ(a, "xbc");
    ZoString& same = a;
    a = same;
    a = std::move(same);
    EXPECT_EQ(a, "xbc");
    b = std::move(a);
    a = std::move(c);
    EXPECT_EQ(a, "abc");
    EXPECT_EQ(b, "xbc");
}

TEST(ZoStringTest, MovedFromIsHarmless) {
    ZoString gone("abc");
    const ZoString taken(std::move(gone));
    EXPECT_EQ(gone.substr(0), ""); // NOLINT
    EXPECT_EQ(gone.Trim().RemoveAccents().Remove('a').RemoveTrailingBreaklines(), "");
    EXPECT_EQ(gone.Inverter(), "");
    EXPECT_EQ(gone.Uppercase().Lowercase(), "");
    EXPECT_EQ(gone.ChangeBreakLine('\n'), "");
    gone.AddBreakLines(1);
    EXPECT_EQ(gone.find('a', 0), -1);
    EXPECT_EQ(gone.rfind('a'), -1);
    EXPECT_EQ(gone.Compare(""), 0);
    EXPECT_EQ(ZoString(gone), "");
    gone += "x";
    EXPECT_EQ(gone, "x");
}

TEST(ZoStringTest, AssignsFromItself) {
    ZoString s("abcdef");
    s = s.c_str() + 1;
    EXPECT_EQ(s, "bcdef");
    s.Assign(s.c_str() + 2, 2);
    EXPECT_EQ(s, "de");
    s += s;
    s += s.c_str() + 1;
    EXPECT_EQ(s, "dedeede");
    s = s + s;
    EXPECT_EQ(s, "dedeedededeede");
    EXPECT_EQ(s.findDelimiter(s, 'e', 2), 1);
    EXPECT_EQ(s, "dd");
}

TEST(ZoStringTest, AssignsGrowingAndShrinking) {
    std::mt19937 random(2);
    ZoString scratch;
    ZoString copy;
    for (int i = 0; i < 500; ++i) {
        const std::string text = Random(random, "abc", i % 10 == 0 ? 3000 : 12);
        scratch.Assign((text + "rest").c_str(), static_cast<unsigned>(text.size()));
        ASSERT_EQ(Text(scratch), text);
        copy = scratch;
        ASSERT_EQ(copy, scratch);
        copy = text.c_str();
        ASSERT_EQ(copy, scratch);
    }
    scratch.Assign("ab\0cd", 5);
    EXPECT_EQ(scratch, "ab");
    scratch.Assign(nullptr, 7);
    EXPECT_EQ(scratch, "");
    scratch = static_cast<const char*>(nullptr);
    EXPECT_EQ(scratch, "");
}

TEST(ZoStringTest, Joining) {
    const ZoString s("s");
    const struct {
        const char* name;
        ZoString joined;
        const char* expected;
    } rows[] = {
        {"string", s + ZoString("t"), "st"},
        {"text", s + "t", "st"},
        {"on the left", "t" + s, "ts"},
        {"null", s + static_cast<const char*>(nullptr), "s"},
        {"character", s + 'a', "sa"},
        {"int", s + -5, "s-5"},
        {"zero", s + 0, "s0"},
        {"unsigned", s + 5u, "s5"},
        {"double", s + 0.5, "s0.500000"},
        {"64 bits", s + 5ull, "s5"},
        {"size", s + sizeof(char), "s1"},
        {"chain", "x:" + s + " | y:" + 2, "x:s | y:2"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.joined, row.expected) << row.name;
    ZoString t;
    t += 0;
    t += 'a';
    t += "b";
    t += 1.5;
    EXPECT_EQ(t, "0ab1.500000");
    t = 0;
    EXPECT_EQ(t, "0");
}

TEST(ZoStringTest, ComparesBytesAsUnsigned) {
    const char* const sorted[] = {"", "A", "AB", "B", "a", "a ", "ab", "\x80", "\xE7", "\xFF"};
    for (const char* left : sorted) {
        for (const char* right : sorted) {
            const ZoString a(left);
            const ZoString b(right);
            const bool same = left == right;
            const bool less = std::find(std::begin(sorted), std::end(sorted), left) <
                              std::find(std::begin(sorted), std::end(sorted), right);
            const auto check = [&](const auto& x, const auto& y) {
                EXPECT_EQ(x == y, same);
                EXPECT_EQ(x != y, !same);
                EXPECT_EQ(x < y, less);
                EXPECT_EQ(x <= y, less || same);
                EXPECT_EQ(x > y, !less && !same);
                EXPECT_EQ(x >= y, !less);
            };
            check(a, b);
            check(a, right);
            check(left, b);
        }
    }
    EXPECT_TRUE(ZoString() == static_cast<const char*>(nullptr));
}

TEST(ZoStringTest, ComparesAsAnObject) {
    struct Other : ZoObject {};
    const ZoString a("abc");
    const ZoObject& object = a;
    EXPECT_TRUE(object == ZoString("abc"));
    EXPECT_TRUE(object != ZoString("abd"));
    EXPECT_FALSE(a == Other());
    EXPECT_TRUE(a != Other());
    EXPECT_TRUE(a == object);
}

TEST(ZoStringTest, CaseIsThatOfTheCodePage) {
    EXPECT_TRUE(ZoString("A\xC7\xC3O").Equal("a\xE7\xE3o", false));
    EXPECT_FALSE(ZoString("A\xC7\xC3O").Equal("a\xE7\xE3o", true));
    EXPECT_FALSE(ZoString("abc").Equal("ABCD", false));
    EXPECT_TRUE(ZoString("B").Less("a", true));
    EXPECT_FALSE(ZoString("B").Less("a", false));
    EXPECT_TRUE(ZoString("a").Less("B", false));
    for (int i = 1; i < 256; ++i) {
        const char c = static_cast<char>(i);
        ZoString upper(c);
        ZoString lower(c);
        upper.Uppercase();
        lower.Lowercase();
        int expectedUpper = i;
        int expectedLower = i;
        if ((i >= 'a' && i <= 'z') || (i >= 0xE0 && i <= 0xFE && i != 0xF7)) expectedUpper = i - 0x20;
        if ((i >= 'A' && i <= 'Z') || (i >= 0xC0 && i <= 0xDE && i != 0xD7)) expectedLower = i + 0x20;
        if (i == 0x9A || i == 0x9C || i == 0x9E) expectedUpper = i - 0x10;
        if (i == 0x8A || i == 0x8C || i == 0x8E) expectedLower = i + 0x10;
        if (i == 0xFF) expectedUpper = 0x9F;
        if (i == 0x9F) expectedLower = 0xFF;
        EXPECT_EQ(upper, ZoString(static_cast<char>(expectedUpper))) << i;
        EXPECT_EQ(lower, ZoString(static_cast<char>(expectedLower))) << i;
    }
}

/// The key of the natural order, built as it is defined.
std::string Key(std::string key) {
    unsigned k = 0;
    for (std::size_t i = key.size(); i-- > 1;) {
        const bool digit = key[i] >= '0' && key[i] <= '9';
        key[i] = static_cast<char>(static_cast<unsigned char>(key[i]) + (digit ? k : 80u));
        if (digit) k += 10;
    }
    return key;
}

TEST(ZoStringTest, NaturalOrder) {
    const struct {
        const char* left;
        const char* right;
        int order;
    } rows[] = {{"a9", "a10", -1},      {"a10", "a9", 1},   {"a9", "a9", 0}, {"", "", 0},
                {"", "a", -1},          {"9", "10", 1},     {"a", "aa", -1}, {"a\xB0", "a", 1},
                {"a\xB0z", "a\xB0", 1}, {"a\xB0", "ab", -1}};
    for (const auto& row : rows) {
        EXPECT_EQ(ZoString(row.left).Compare(row.right), row.order) << row.left << " and " << row.right;
    }
    std::mt19937 random(3);
    for (int i = 0; i < 5000; ++i) {
        const std::string a = Random(random, "01289a\xB0\xAF\xFF", i % 50 == 0 ? 60 : 5);
        const std::string b = Random(random, "01289a\xB0\xAF\xFF", i % 50 == 0 ? 60 : 5);
        const int order = Key(a).compare(Key(b));
        ASSERT_EQ(ZoString(a.c_str()).Compare(b.c_str()), (order > 0) - (order < 0)) << a << " and " << b;
    }
}

TEST(ZoStringTest, NumbersAreReadAsCDoes) {
    std::istringstream rows(
        "| |12| \t\n\v\f\r-7x|+8|+-8|--8|abc|1.5| +.5e1|1.|.|-.e3|-|-0x|1e|1e+|1e5x|0x1.8p3|"
        "-0X.8|0x|0xg|0x.p1|0x-1|0x+1|0xinf|0xnan|inf|-INF|infinityx|infinit|nan|NaN(12)|1e308|"
        "1e309|-1e309|1e-320|1e-400|-1e-400|0e999999999999999999999|1e999999999999999999999|"
        "1e-999999999999999999999|0x1p1024|0x1p-1080|0x1p99999999999999999999|"
        "0x0.00000000000000000001p1100|00012|1,5|\xA0 1|2.2250738585072011e-308|"
        ".9007199254740993e16|1e23|0.1|4.9e-324|2.4e-324|1.7976931348623159e308|");

    for (std::string line; std::getline(rows, line, '|');) {
        const char* row = line.c_str();
        const ZoString text(row);
        EXPECT_EQ(text.ToInt(), std::atoi(row)) << row;
        char* end = nullptr;
        double expected = std::strtod(row, &end);
        if (end == row) expected = 0; // some give it a sign
        const double value = text.ToDouble();
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(value)) << row;
        } else {
            EXPECT_EQ(value, expected) << row;
            EXPECT_EQ(std::signbit(value), std::signbit(expected)) << row;
        }
    }
    // Where C leaves the result open.
    EXPECT_EQ(ZoString("2147483648").ToInt(), INT_MAX);
    EXPECT_EQ(ZoString("-99999999999999999999999999").ToInt(), INT_MIN);

    const std::string zeros(400, '0');
    EXPECT_EQ(ZoString(("1" + zeros).c_str()).ToDouble(), HUGE_VAL);
    EXPECT_EQ(ZoString(("0." + zeros + "1").c_str()).ToDouble(), 0);
    EXPECT_EQ(ZoString(("0." + zeros + "1e401").c_str()).ToDouble(), 1);
    EXPECT_EQ(ZoString(("0x1" + zeros + "p-1600").c_str()).ToDouble(), 1);
    EXPECT_EQ(ZoString(("0x" + zeros + ".1p4").c_str()).ToDouble(), 1);
}

TEST(ZoStringTest, LocaleChangesNothing) {
    const CommaLocale locale;
    if (!locale.Active()) GTEST_SKIP() << "no locale with a comma can be had here";
    char check[16];
    std::snprintf(check, sizeof check, "%.1f", 1.5);
    ASSERT_STREQ(check, "1,5");
    EXPECT_EQ(ZoString(1234567.5), "1234567.500000");
    EXPECT_EQ(ZoString("") + 0.25, "0.250000");
    EXPECT_EQ(ZoString("1.5").ToDouble(), 1.5);
    EXPECT_EQ(ZoString("1,5").ToDouble(), 1);
    EXPECT_EQ(ZoString("0x1.8").ToDouble(), 1.5);
    EXPECT_EQ(ZoString::FormatString("%.2f %d", 1.5, 1000000), "1.50 1000000");
    std::snprintf(check, sizeof check, "%.1f", 1.5);
    EXPECT_STREQ(check, "1,5") << "the process keeps its locale";
}

TEST(ZoStringTest, FindsCharacters) {
    const ZoString s("a b,a b");
    const struct {
        const char* name;
        int found;
        int expected;
    } rows[] = {
        {"first", s.find('b', 0), 2},
        {"from itself", s.find('b', 2), 2},
        {"from after it", s.find('b', 3), 6},
        {"absent", s.find('z', 0), -1},
        {"terminator is no character", s.find('\0', 0), -1},
        {"in nothing", ZoString().find('a', 5), -1},
        {"guarded", s.hasChar('b', 6), 6},
        {"guarded at the end", s.hasChar('b', 7), -1},
        {"guarded far off", s.hasChar('b', LAST), -1},
        {"last", s.rfind('a', LAST), 4},
        {"last from before it", s.rfind('a', 3), 0},
        {"last from itself", s.rfind('a', 4), 4},
        {"last in nothing", ZoString().rfind('a', 3), -1},
        {"last but none", s.findLast('b', 0), 6},
        {"last but one", s.findLast('b', 1), 2},
        {"last but all but one", s.findLast('a', 6), 0},
        {"last but all", s.findLast('a', 7), -1},
        {"last but more than all", s.findLast('a', LAST), -1},
        {"last among blanks", ZoString("  ").findLast(' ', 0), -1},
        {"digit", ZoString("ab7c8").FirstNumericChar(), 2},
        {"no digit", s.FirstNumericChar(), -1},
        {"no digit in nothing", ZoString().FirstNumericChar(), -1},
    };
    for (const auto& row : rows) EXPECT_EQ(row.found, row.expected) << row.name;
}

TEST(ZoStringTest, FindsTexts) {
    const ZoString s("abcABCabc");
    const struct {
        const char* name;
        int found;
        int expected;
    } rows[] = {
        {"first", s.find("bc", 0, true), 1},
        {"from there", s.find("bc", 2, true), 7},
        {"any case", s.find("bc", 2, false), 4},
        {"absent", s.find("cb", 0, true), -1},
        {"longer than the string", s.find("abcABCabcd", 0, true), -1},
        {"at the end", s.find("a", 9, true), -1},
        {"beyond the end", s.find("a", 1000, true), -1},
        {"beyond the end, any case", s.find("a", LAST, false), -1},
        {"nothing", s.find("", 4, true), 4},
        {"nothing at the end", s.find("", 9, true), 9},
        {"nothing beyond the end", s.find("", 10, true), -1},
        {"guarded", s.hasText("abc", 1), 6},
        {"guarded at the end", s.hasText("", 9), -1},
        {"last", s.textRFind("abc", -1, true), 6},
        {"last, any case", s.textRFind("ABC", -1, false), 6},
        {"ends there", s.textRFind("ABC", 5, true), 3},
        {"ends before", s.textRFind("ABC", 4, true), -1},
        {"ends before, any case", s.textRFind("ABC", 4, false), 0},
        {"no room", s.textRFind("abc", 1, true), -1},
        {"whole", s.textRFind("abcABCabc", -1, true), 0},
        {"longer", s.textRFind("abcABCabcd", -1, true), -1},
        {"in nothing", ZoString().textRFind("", 7, true), -1},
        {"negative end", s.textRFind("a", -5, true), -1},
        {"nothing, at its end", s.textRFind("", -1, true), 9},
        {"nothing, at a negative end", s.textRFind("", -5, true), -1},
    };
    for (const auto& row : rows) EXPECT_EQ(row.found, row.expected) << row.name;
}

TEST(ZoStringTest, AssertionsOfPositions) {
    using S = ZoString;
    S s("abc");
    const S constant("abc"), empty;
    const std::string header = "public/include/ZoPrimitives/ZoString";
    const std::string body = "cpp/ZoPrimitives/ZoString";
    const FailedAssertion none;
    const struct {
        const char* name;
        FailedAssertion failed;
        FailedAssertion expected;
    } rows[] = {
        {"index", AssertionOf([&] { s[3] = 'x'; }), {"pos < length()", header, 514}},
        {"const index", AssertionOf([&] { (void)constant[3]; }), {"pos < length()", header, 524}},
        {"largest index", AssertionOf([&] { (void)constant[LAST]; }), {"pos < length()", header, 524}},
        {"index of nothing", AssertionOf([&] { (void)empty[0]; }), {"pos < length()", header, 524}},
        {"last index", AssertionOf([&] { s[2] = 'c'; }), none},
        {"find at the end", AssertionOf([&] { s.find('a', 3); }), {"initPos < stringLength", body, 645}},
        {"rfind far off", AssertionOf([&] { s.rfind('a', 10); }), {"initPos < thisLength", body, 693}},
        {"rfind at the end", AssertionOf([&] { s.rfind('a', 3); }), {"initPos < thisLength", body, 693}},
        {"textRFind", AssertionOf([&] { s.textRFind("a", 3); }), {"initPos < (int)thisLength", body, 723}},
        {"capital", AssertionOf([&] { S::FirstCharToUppercase(empty); }), {"pos < length()", header, 514}},
        {"find in nothing", AssertionOf([&] { empty.find('a', 3); }), none},
        {"find text far off", AssertionOf([&] { s.find("a", 99); }), none},
    };
    for (const auto& row : rows) EXPECT_EQ(row.failed, row.expected) << row.name;
    EXPECT_EQ(s, "abc");
}

TEST(ZoStringTest, Delimiters) {
    const struct {
        const char* name;
        const char* text;
        int count;
        const char* out;
        int found;
    } rows[] = {
        {"one", "ab;c;def;", 1, "ab", 2},     {"two", "ab;c;def;", 2, "abc", 1},
        {"all", "ab;c;def;", 3, "abcdef", 3}, {"too many", "ab;c;def;", 4, "", -1},
        {"absent", "abc", 1, "", -1},         {"at the start", ";abc", 1, "", -1},
        {"empty field", "a;;b", 2, "", -1},   {"nothing", "", 1, "", -1},
        {"none asked for", "a;b", 0, "", -1},
    };
    for (const auto& row : rows) {
        ZoString out("before");
        EXPECT_EQ(ZoString(row.text).findDelimiter(out, ';', row.count), row.found) << row.name;
        EXPECT_EQ(out, row.out) << row.name;
    }
}

TEST(ZoStringTest, Editing) {
    using S = ZoString;
    const struct {
        const char* name;
        S result;
        const char* expected;
    } rows[] = {
        {"substr to the end", S("hello").substr(2, LAST), "llo"},
        {"substr inclusive", S("hello").substr(1, 3), "ell"},
        {"substr of one", S("hello").substr(4, 4), "o"},
        {"substr past the end", S("hello").substr(3, 99), "lo"},
        {"substr backwards", S("hello").substr(3, 1), ""},
        {"substr from the end", S("hello").substr(5, LAST), ""},
        {"substr beyond the end", S("hello").substr(7, 9), ""},
        {"substr of nothing", S().substr(0, LAST), ""},
        {"last character", S("ab").LastChar(), "b"},
        {"last of nothing", S().LastChar(), ""},
        {"trim left", S("  a b ").TrimLeft(), "a b "},
        {"trim right", S("  a b ").TrimRight(), "  a b"},
        {"trim", S("  a ").Trim(), "a"},
        {"one space left", S(" ").TrimLeft(), " "},
        {"one space right", S(" ").TrimRight(), " "},
        {"spaces only", S("   ").Trim(), "   "},
        {"tabs stay", S("\ta\n").Trim(), "\ta\n"},
        {"remove spaces", S(" a b ").RemoveSpace(), "ab"},
        {"remove character", S("banana").Remove('a'), "bnn"},
        {"remove first text", S("ababab").Remove("ab", false), "abab"},
        {"remove all texts", S("xabyabz").Remove("ab", true), "xyz"},
        {"remove everything", S("abab").Remove("ab", true), ""},
        {"remove in one pass", S("aabb").Remove("ab", true), "ab"},
        {"remove nothing", S("abc").Remove("", true), "abc"},
        {"replace first", S("a-a-a").ReplaceString("a", "bb", false), "bb-a-a"},
        {"replace all", S("a-a-a").ReplaceString("a", "bb", true), "bb-bb-bb"},
        {"replace by what it replaces", S("aa").ReplaceString("a", "aa", true), "aaaa"},
        {"replace without overlap", S("aaaaa").ReplaceString("aa", "b", true), "bba"},
        {"replace by nothing", S("a-b").ReplaceString("-", "", true), "ab"},
        {"replace everything by nothing", S("abc").ReplaceString("abc", "", true), "abc"},
        {"replace all of it by nothing", S("abab").ReplaceString("ab", "", true), "abab"},
        {"replace nothing", S("abc").ReplaceString("", "x", true), "abc"},
        {"replace absent", S("abc").ReplaceString("abcd", "x", true), "abc"},
        {"replace last", S("a-a-a").ReplaceLastOccurrence("a", "bcd"), "a-a-bcd"},
        {"replace last by nothing", S("abc").ReplaceLastOccurrence("abc", ""), ""},
        {"replace last absent", S("abc").ReplaceLastOccurrence("x", "y"), "abc"},
        {"replace last nothing", S("abc").ReplaceLastOccurrence("", "y"), "abc"},
        {"letters and marks between", S("@Az[\\]^_`{1").RemoveLetters(), "@{1"},
        {"letters keep accents", S("a\xE7z").RemoveLetters(), "\xE7"},
        {"line feeds", S("a\n\nb\n\n").RemoveTrailingBreaklines(), "a\n\nb"},
        {"line feeds only", S("\n\n").RemoveTrailingBreaklines(), ""},
        {"carriage return stays", S("a\r\n").RemoveTrailingBreaklines(), "a\r"},
        {"capitals", S::FirstCharToUppercase("ab c\xE7 \xE7x e"), "Ab C\xE7 \xC7x e"},
        {"capital of one", S::FirstCharToUppercase("\xE7"), "\xC7"},
        {"capital of two", S::FirstCharToUppercase(" a"), " a"},
        {"capital of three", S::FirstCharToUppercase(" ab"), " Ab"},
        {"name after a slash", S("c:\\dir/name.ext").ExtractFileName(), "name"},
        {"name after a backslash", S("/dir\\name.ext").ExtractFileName(), "name"},
        {"name with two points", S("name.tar.gz").ExtractFileName(), "name.tar"},
        {"bare name", S("name").ExtractFileName(), "name"},
        {"path without a point", S("dir/name").ExtractFileName(), "dir/name"},
        {"point of the directory", S("dir.x/name").ExtractFileName(), "name"},
        {"only an extension", S("dir/.ext").ExtractFileName(), ""},
        {"extension", S("a.tar.gz").GetFileExtension(), "gz"},
        {"no extension", S("name").GetFileExtension(), ""},
        {"extension after a final point", S("name.").GetFileExtension(), ""},
        {"remove invalid", S("a\\/<>?:*|\"b").RemoveInvalidChars(), "ab"},
        {"remove a set", S("abcabc").RemoveInvalidChars("ac"), "bb"},
        {"replace invalid", S("a\\/<>?:*|\"b").ReplaceInvalidChars('_'), "a_________b"},
        {"replace invalid by invalid", S("a:b/").ReplaceInvalidChars('*'), "a*b*"},
        {"replace invalid by nothing", S("::").ReplaceInvalidChars('\0'), "::"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.result, row.expected) << row.name;
}

TEST(ZoStringTest, AccentsAreRemovedByTable) {
    const std::string expected = "AAAAAAACEEEEIIIIDNOOOOO\xD7\xD8UUUUY\xDE\xDF"
                                 "aaaaaaaceeeeiiiidnooooo\xF7\xF8uuuuy\xFEy";
    for (unsigned i = 1; i < 256; ++i) {
        const char c = static_cast<char>(i);
        const char plain = i < 192 ? c : expected[i - 192];
        EXPECT_EQ(ZoString(c).RemoveAccents(), ZoString(plain)) << i;
    }
}

TEST(ZoStringTest, EditsInPlace) {
    ZoString s("abc");
    EXPECT_EQ(s.Inverter(), "cba");
    EXPECT_EQ(s, "cba");
    s = "1,5,";
    EXPECT_EQ(s.ChangeFloatSeparator(',', '.'), "1.5.");
    EXPECT_EQ(s, "1.5.");
    s = "a\rb\r";
    EXPECT_EQ(s.ChangeLineTerminator('\r', '\n'), "a\nb\n");
    EXPECT_EQ(s.ChangeBreakLine('\n'), "a b ");
    EXPECT_EQ(s, "a b ");
    s.ChangeLineTerminator('b', '\0');
    EXPECT_EQ(s, "a ");
    s += "z";
    EXPECT_EQ(s, "a z");
}

TEST(ZoStringTest, WordWrap) {
    const struct {
        const char* name;
        const char* text;
        unsigned width;
        const char* wrapped;
    } rows[] = {
        {"at or before", "aaa bbb ccc ddd", 5, "aaa\nbbb\nccc\nddd"},
        {"exactly there", "aaa bbb", 3, "aaa\nbbb"},
        {"long word", "aaaaaaaaaa bb cc", 4, "aaaaaaaaaa\nbb\ncc"},
        {"short rest", "aaa bb", 10, "aaa bb"},
        {"no space", "aaaaaaaa", 3, "aaaaaaaa"},
        {"line feed since the space", "a bb\ncc dd ee", 6, "a bb\ncc\ndd ee"},
        {"width 0", "a b", 0, "a b"},
        {"width 1", "a b c", 1, "a\nb\nc"},
        {"width beyond", "a b", LAST, "a b"},
        {"nothing", "", 3, ""},
    };
    for (const auto& row : rows) {
        ZoString s(row.text);
        s.AddBreakLines(row.width);
        EXPECT_EQ(s, row.wrapped) << row.name;
    }
}

TEST(ZoStringTest, Classification) {
    // Blank, has a digit, only digits, numeric, valid float, below the base line, invalid in names.
    const struct {
        const char* text;
        std::string kinds;
    } rows[] = {
        {"", "bo"},      {"  ", "b"},   {"\t", ""},   {"12", "donv"}, {"-12.5", "dnv"}, {"-1,5", "dn"},
        {"3.25", "dnv"}, {"1.", "dv"},  {".5", "dv"}, {"1.2.3", "d"}, {"1,2.3", "d"},   {"1,", "d"},
        {",5", "d"},     {"-.5", "dv"}, {"+1", "d"},  {"1-2", "d"},   {"-", "v"},       {"--1", "d"},
        {"1 ", "d"},     {"a1", "d"},   {"(", "u"},   {"\xC7", "u"},  {"Q\xE3,;", ""},  {"a:b", "i"},
    };
    for (const auto& row : rows) {
        const ZoString s(row.text);
        const bool is[] = {s.IsNull(),       s.HasNumericChar(),    s.HasOnlyNumbers(),     s.IsNumeric(),
                           s.IsValidFloat(), s.HasUnderlineChars(), s.HasInvalidNameChars()};
        std::string found;
        for (std::size_t i = 0; i < 7; ++i) found += is[i] ? std::string(1, "bdonvui"[i]) : "";
        EXPECT_EQ(found, row.kinds) << row.text;
        EXPECT_NE(s.HasNonWhitespaceChar(), s.IsNull()) << row.text;
    }
    for (const char c : std::string("()gjpqy\xC7\xE7")) EXPECT_TRUE(ZoString(c).HasUnderlineChars()) << c;
    for (const char c : std::string("\\/<>?:*|\"")) EXPECT_TRUE(ZoString(c).HasInvalidNameChars()) << c;
    EXPECT_TRUE(ZoString("abc").HasInvalidNameChars("xc"));
    EXPECT_FALSE(ZoString("abc").HasInvalidNameChars(""));
    EXPECT_FALSE(ZoString().HasInvalidNameChars("abc"));
}

TEST(ZoStringTest, NumericOfAnyLength) {
    ZoString text('7', 5'000'000);
    text += ",5";
    EXPECT_TRUE(text.IsNumeric());
    EXPECT_FALSE((text + "x").IsNumeric());
}

TEST(ZoStringTest, Formatting) {
    EXPECT_EQ(ZoString::FormatString("%s-%03d %.1f%%", "a", 7, 2.25), "a-007 2.2%");
    EXPECT_EQ(ZoString::FormatString("plain"), "plain");
    const ZoString format("[zoerror] invalid class (%s - %s). %llu %c");
    EXPECT_EQ(ZoString::FormatString(format, ZoString("A"), "B", 5ull, 'c'),
              "[zoerror] invalid class (A - B). 5 c");
    EXPECT_EQ(ZoString::FormatString(format.substr(0, 8)), "[zoerror]");
    const ZoString text('x', 9'999);
    EXPECT_EQ(ZoString::FormatString("%s", text.c_str()), text);
    EXPECT_EQ(ZoString::FormatString("%sy", text.c_str()), text) << "cut, never written beyond";
}

TEST(PlatformTextTest, TypeNames) {
    EXPECT_EQ(Platform::TypeName(typeid(ZoString)), "ZoPrimitives::ZoString");
    EXPECT_EQ(Platform::TypeName(typeid(int)), "int");
}

} // namespace
