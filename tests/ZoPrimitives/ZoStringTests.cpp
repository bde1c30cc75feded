#include "ZoPrimitives/ZoString.h"

#include "ZoPrimitives/ZoUtf8.h"
#include "support/Assertions.h"
#include "support/CommaLocale.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>

using namespace ZoPrimitives;

namespace ZoPrimitives {
void PrintTo(const ZoString& text, std::ostream* out) { *out << '"' << ZoToUtf8(text) << '"'; }
} // namespace ZoPrimitives

namespace {

constexpr unsigned LAST = 0xFFFFFFFFu;

std::string Text(const ZoString& text) { return text.c_str(); }

/// What a call gives for each of several strings.
template <class Result, class Expected>
struct Calls {
    const char* name;
    Result (*call)(const ZoString& s);
    std::vector<std::pair<const char*, Expected>> cases;

    void Check() const {
        for (const auto& [text, expected] : cases)
            EXPECT_EQ(call(text), expected) << name << " of \"" << text << '"';
    }
};
#define CALL(Result, Expected, expression, ...)                                                              \
    Calls<Result, Expected> {                                                                                \
#expression, [](const ZoString& s) -> Result { return expression; }, { __VA_ARGS__ }                 \
    }
#define FOUND(expression, ...) CALL(int, int, expression, __VA_ARGS__)
#define EDITED(expression, ...) CALL(ZoString, const char*, expression, __VA_ARGS__)

TEST(ZoStringTest, Construction) {
    using S = ZoString;
    const unsigned char bytes[] = {0xE7, 'z', 'c'};
    const unsigned char* noBytes = nullptr;
    const char* null = nullptr;
    const S made[] = {S(),          S("abc"),        S(null),     S(null, 5),   S(nullptr, 5), S(noBytes, 5),
                      S("abcd", 3), S("ab\0cd", 5),  S(bytes, 2), S('x', 4),    S('x', 0),     S('a'),
                      S(0),         S(INT_MIN),      S(UINT_MAX), S(short{-3}), S(SIZE_MAX),   S(LLONG_MIN),
                      S(-7L),       S(7UL),          S(1.5),      S(-0.25f),    S(0.0000005),  S(-0.0),
                      S(-HUGE_VAL), S(-std::nan(""))};
    std::string texts;
    for (const S& s : made) {
        texts += Text(s) + '|';
        EXPECT_EQ(s.length(), std::strlen(s.c_str()));
    }
    EXPECT_EQ(texts, "|abc|||||abc|ab|\xE7z|xxxx||a|0|-2147483648|4294967295|-3|18446744073709551615|-"
                     "9223372036854775808|-7|7|"
                     "1.500000|-0.250000|0.000000|-0.000000|-inf|nan|");
    EXPECT_EQ(S(DBL_MAX).length(), 316u);
}

static_assert(!std::is_constructible_v<ZoString, wchar_t> && !std::is_constructible_v<ZoString, char32_t>);
static_assert(!std::is_constructible_v<ZoString, char8_t>);
static_assert(!std::is_constructible_v<ZoString, int*> && !std::is_constructible_v<ZoString, const wchar_t*>);
// A number beside a text is no text, least of all a null one: it does not compile, on either side.
// clang-format off
#define REFUSED(Operator) && !requires(S s) { s Operator 0; } && !requires(S s) { 0 Operator s; } && !requires(S s) { s Operator 'a'; }
template <class S>
constexpr bool REFUSES_NUMBERS = requires(S s) { s < "a"; "a" + s; } && !requires(S s) { 0 + s; }
    REFUSED(==) REFUSED(!=) REFUSED(<) REFUSED(<=) REFUSED(>) REFUSED(>=);
// clang-format on
struct Name : ZoString {};
static_assert(REFUSES_NUMBERS<ZoString> && REFUSES_NUMBERS<Name>);
static_assert(std::is_nothrow_move_constructible_v<ZoString> && std::is_nothrow_move_assignable_v<ZoString>);

TEST(ZoStringTest, CopyAndMove) {
    ZoString a("abc");
    ZoString b(a);
    b[0] = 'x';
    ZoString c(std::move(a));
    EXPECT_EQ(c, "abc");
    EXPECT_EQ(a, ""); // NOLINT: reading a moved-from string is safe
    a = b;
    ZoString& same = a;
    a = same;
    a = std::move(same);
    EXPECT_EQ(a, "xbc");
    b = std::move(a);
    a = std::move(c);
    EXPECT_EQ(a, "abc");
    EXPECT_EQ(b, "xbc");

    EXPECT_EQ(c.substr(0), ""); // NOLINT
    EXPECT_EQ(c.Trim().RemoveAccents().Remove('a').RemoveTrailingBreaklines(), "");
    EXPECT_EQ(c.Inverter() + c.Uppercase().Lowercase() + c.ChangeBreakLine('\n'), "");
    c.AddBreakLines(1);
    EXPECT_TRUE(c.find('a', 0) == -1 && c.rfind('a') == -1 && c.length() == 0);
    EXPECT_EQ(c.Compare(""), 0);
    EXPECT_EQ(ZoString(c), "");
    c += "x";
    EXPECT_EQ(c, "x");
}

TEST(ZoStringTest, Assigns) {
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

    ZoString copy;
    for (unsigned i = 0; i < 500; ++i) { // shorter and longer by turns
        const std::string text(i * 7919 % (i % 10 == 0 ? 3000 : 13), static_cast<char>('a' + i % 3));
        s.Assign((text + "rest").c_str(), static_cast<unsigned>(text.size()));
        ASSERT_EQ(Text(s), text);
        copy = s;
        ASSERT_EQ(copy, s);
        copy = text.c_str();
        ASSERT_EQ(copy, s);
    }
    s.Assign("ab\0cd", 5);
    EXPECT_EQ(s, "ab");
    s.Assign(nullptr, 7);
    EXPECT_EQ(s, "");
    copy = static_cast<const char*>(nullptr);
    EXPECT_EQ(copy, "");
}

TEST(ZoStringTest, Joining) {
    EXPECT_EQ("x:" + ZoString("s") + 'a' + -5 + 0 + 5u + 0.5 + 5ull + sizeof(char), "x:sa-5050.50000051");
    EXPECT_EQ("t" + ZoString() + ZoString("u") + static_cast<const char*>(nullptr), "tu");
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
    for (const char* const& left : sorted) {
        for (const char* const& right : sorted) {
            const ZoString a(left), b(right);
            const bool same = &left == &right, less = &left < &right;
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
            EXPECT_EQ(a == static_cast<const ZoObject&>(b), same);
            EXPECT_EQ(static_cast<const ZoObject&>(a) != b, !same);
        }
    }
    EXPECT_TRUE(ZoString() == static_cast<const char*>(nullptr));
    struct Other : ZoObject {
    } other;
    EXPECT_TRUE(ZoString() != other && !(ZoString() == other));
}

TEST(ZoStringTest, CaseIsThatOfTheCodePage) {
    EXPECT_TRUE(ZoString("A\xC7\xC3O").Equal("a\xE7\xE3o", false));
    EXPECT_FALSE(ZoString("A\xC7\xC3O").Equal("a\xE7\xE3o", true));
    EXPECT_FALSE(ZoString("abc").Equal("ABCD", false));
    EXPECT_TRUE(ZoString("B").Less("a", true) && ZoString("a").Less("B", false));
    EXPECT_FALSE(ZoString("B").Less("a", false) || ZoString("B").Less("b", false));
    for (int i = 1; i < 256; ++i) {
        int upper = i;
        int lower = i;
        if ((i >= 'a' && i <= 'z') || (i >= 0xE0 && i <= 0xFE && i != 0xF7)) upper = i - 0x20;
        if ((i >= 'A' && i <= 'Z') || (i >= 0xC0 && i <= 0xDE && i != 0xD7)) lower = i + 0x20;
        if (i == 0x9A || i == 0x9C || i == 0x9E) upper = i - 0x10;
        if (i == 0x8A || i == 0x8C || i == 0x8E) lower = i + 0x10;
        if (i == 0xFF) upper = 0x9F;
        if (i == 0x9F) lower = 0xFF;
        EXPECT_EQ(ZoString(static_cast<char>(i)).Uppercase(), ZoString(static_cast<char>(upper))) << i;
        EXPECT_EQ(ZoString(static_cast<char>(i)).Lowercase(), ZoString(static_cast<char>(lower))) << i;
    }
}

TEST(ZoStringTest, NaturalOrder) {
    const std::tuple<const char*, const char*, int> rows[] = {
        {"a9", "a10", -1},      {"a10", "a9", 1},    {"a9", "a9", 0},     {"", "", 0},
        {"", "a", -1},          {"9", "10", 1},      {"a", "aa", -1},     {"a\xB0", "a", 1},
        {"a\xB0z", "a\xB0", 1}, {"a\xB0", "ab", -1}, {"a99", "a100", -1}, {"a123", "a122", 1},
        {"a:", "a9", 1},        {"a/", "a0", 1}};
    for (const auto& [left, right, order] : rows)
        EXPECT_EQ(ZoString(left).Compare(right), order) << left << " and " << right;
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
        const bool same = value == expected && std::signbit(value) == std::signbit(expected);
        EXPECT_TRUE(same || (std::isnan(value) && std::isnan(expected))) << row << ": " << value;
    }
    // Where C leaves the result open.
    EXPECT_EQ(ZoString("2147483648").ToInt(), INT_MAX);
    EXPECT_EQ(ZoString("-99999999999999999999999999").ToInt(), INT_MIN);
}

TEST(ZoStringTest, Finds) {
    for (const auto& row : {
             FOUND(s.find('b', 0), {"a b,a b", 2}, {"b", 0}, {"a", -1}, {"", -1}),
             FOUND(s.find('b', 2), {"a b,a b", 2}, {"a,b,a b", 2}, {"abca b", 5}, {"abc", -1}, {"", -1}),
             FOUND(s.find('\0', 0), {"a", -1}),
             FOUND(s.hasChar('b', 3), {"aaab", 3}, {"abb", -1}, {"bbb,b", 4}, {"", -1}),
             FOUND(s.hasChar('b', LAST), {"b", -1}),
             FOUND(s.rfind('a', LAST), {"a b,a b", 4}, {"a", 0}, {"b", -1}, {"", -1}),
             FOUND(s.rfind('a', 3), {"a b,a b", 0}, {"a baa b", 3}, {"", -1}),
             FOUND(s.findLast('b', 0), {"a b,a b", 6}, {"b", 0}, {" ", -1}, {"", -1}),
             FOUND(s.findLast('b', 1), {"a b,a b", 2}, {"bb", 0}, {"b", -1}),
             FOUND(s.findLast(' ', 0), {"  ", -1}, {" a", 0}),
             FOUND(s.findLast('b', LAST), {"b", -1}),
             FOUND(s.FirstNumericChar(), {"ab7c8", 2}, {"0", 0}, {"9", 0}, {"a/:", -1}, {"", -1}),
             FOUND(s.find("bc", 0, true), {"abcABCabc", 1}, {"cb", -1}, {"b", -1}, {"bc", 0}),
             FOUND(s.find("bc", 2, true), {"abcABCabc", 7}, {"abbc", 2}),
             FOUND(s.find("bc", 2, false), {"abcABCabc", 4}, {"aBCx", -1}),
             FOUND(s.find("a", LAST, false), {"aaa", -1}),
             FOUND(s.find("", 4, true), {"abcd", 4}, {"abcde", 4}, {"abc", -1}),
             FOUND(s.hasText("abc", 1), {"abcABCabc", 6}, {"xabc", 1}, {"abc", -1}),
             FOUND(s.hasText("", 1), {"ab", 1}, {"a", -1}),
             FOUND(s.textRFind("abc", -1, true), {"abcABCabc", 6}, {"abc", 0}, {"bc", -1}, {"ABC", -1}),
             FOUND(s.textRFind("ABC", -1, false), {"abcABCabc", 6}),
             FOUND(s.textRFind("ABC", 5, true), {"abcABCabc", 3}, {"abcABC", 3}, {"ABCABc", 0}, {"", -1}),
             FOUND(s.textRFind("ABC", 4, false), {"abcABCabc", 0}, {"xxabcx", 2}, {"xxxabc", -1}),
             FOUND(s.textRFind("abc", 1, true), {"abc", -1}),
             FOUND(s.textRFind("a", -5, true), {"a", -1}),
             FOUND(s.textRFind("", -1, true), {"abc", 3}, {"", -1}),
             FOUND(s.textRFind("", 1, true), {"abc", 2}),
             FOUND(s.textRFind("", -5, true), {"abc", -1}),
         })
        row.Check();
}

TEST(ZoStringTest, AssertionsOfPositions) {
    using S = ZoString;
    S s("abc");
    const S constant("abc"), empty;
    const FailedAssertion none, index{"pos < length()", "public/include/ZoPrimitives/ZoString", 524};
    FailedAssertion writing = index;
    writing.line = 514;
    const std::string body = "cpp/ZoPrimitives/ZoString";
    const std::pair<FailedAssertion, FailedAssertion> rows[] = {
        {AssertionOf([&] { s[3] = 'x'; }), writing},
        {AssertionOf([&] { S::FirstCharToUppercase(empty); }), writing},
        {AssertionOf([&] { (void)constant[3]; }), index},
        {AssertionOf([&] { (void)constant[LAST]; }), index},
        {AssertionOf([&] { (void)empty[0]; }), index},
        {AssertionOf([&] { s[2] = constant[2]; }), none},
        {AssertionOf([&] { s.find('a', 3); }), {"initPos < stringLength", body, 645}},
        {AssertionOf([&] { s.rfind('a', 10); }), {"initPos < thisLength", body, 693}},
        {AssertionOf([&] { s.rfind('a', 3); }), {"initPos < thisLength", body, 693}},
        {AssertionOf([&] { s.textRFind("a", 3); }), {"initPos < (int)thisLength", body, 723}},
        {AssertionOf([&] { empty.find('a', 3), s.find("a", 99), s.rfind('a', 2), s.textRFind("a", 2); }),
         none}};
    for (const auto& [failed, expected] : rows) EXPECT_EQ(failed, expected);
    EXPECT_EQ(s, "abc");
}

TEST(ZoStringTest, Delimiters) {
    using Found = std::pair<const char*, int>;
    const Found none("", -1);
    const std::pair<const char*, std::vector<Found>> rows[] = {
        // by the count asked for, from 0
        {"ab;c;def;", {none, {"ab", 2}, {"abc", 1}, {"abcdef", 3}, none}},
        {"a;;b", {none, {"a", 1}, none}},
        {"abc", {none, none}},
        {";abc", {none, none}},
        {"", {none, none}},
    };
    for (const auto& [text, counts] : rows) {
        for (int count = 0; const auto& [before, length] : counts) {
            ZoString out("x");
            EXPECT_EQ(ZoString(text).findDelimiter(out, ';', count++), length) << text << count;
            EXPECT_EQ(out, before) << text << count;
        }
    }
}

TEST(ZoStringTest, Editing) {
    using S = ZoString;
    for (const auto& row : {
             EDITED(s.substr(2, LAST), {"hello", "llo"}, {"abc", "c"}, {"ab", ""}, {"a", ""}, {"", ""}),
             EDITED(s.substr(1, 3), {"hello", "ell"}, {"abc", "bc"}, {"a", ""}),
             EDITED(s.substr(4, 4), {"hello", "o"}, {"hell", ""}),
             EDITED(s.substr(3, 1), {"hello", ""}),
             EDITED(s.LastChar(), {"ab", "b"}, {"", ""}),
             EDITED(s.TrimLeft(), {"  a b ", "a b "}, {" ", " "}, {"   ", "   "}, {"\ta", "\ta"}),
             EDITED(s.TrimRight(), {"  a b ", "  a b"}, {" ", " "}, {"a\n", "a\n"}, {"", ""}),
             EDITED(s.Trim(), {"  a ", "a"}, {"   ", "   "}, {"\ta\n", "\ta\n"}),
             EDITED(s.RemoveSpace(), {" a b ", "ab"}, {"a\tb", "a\tb"}),
             EDITED(s.Remove('a'), {"banana", "bnn"}, {"aa", ""}),
             EDITED(s.Remove("ab", false), {"ababab", "abab"}, {"xab", "x"}),
             EDITED(s.Remove("ab", true), {"xabyabz", "xyz"}, {"abab", ""}, {"aabb", "ab"}, {"ba", "ba"}),
             EDITED(s.Remove("", true), {"abc", "abc"}),
             EDITED(s.ReplaceString("a", "bb", false), {"a-a-a", "bb-a-a"}),
             EDITED(s.ReplaceString("a", "aab", true), {"a-a-a", "aab-aab-aab"}, {"aa", "aabaab"}),
             EDITED(s.ReplaceString("aa", "b", true), {"aaaaa", "bba"}, {"a", "a"}),
             EDITED(s.ReplaceString("ab", "", true), {"a-ab", "a-"}, {"ab", "ab"}, {"abab", "abab"}),
             EDITED(s.ReplaceString("", "x", true), {"abc", "abc"}),
             EDITED(s.ReplaceLastOccurrence("ab", "bcd"), {"ab-ab-ab", "ab-ab-bcd"}, {"abx", "bcdx"},
                    {"b", "b"}),
             EDITED(s.ReplaceLastOccurrence("abc", ""), {"abc", ""}),
             EDITED(s.ReplaceLastOccurrence("", "y"), {"abc", "abc"}),
             EDITED(s.RemoveLetters(), {"@Az[\\]^_`{1", "@{1"}, {"a\xE7z", "\xE7"}),
             EDITED(s.RemoveTrailingBreaklines(), {"a\n\nb\n\n", "a\n\nb"}, {"\n\n", ""}, {"a\r\n", "a\r"}),
             EDITED(S::FirstCharToUppercase(s), {"ab c\xE7 \xE7x e", "Ab C\xE7 \xC7x e"}, {"\xE7", "\xC7"},
                    {" a", " a"}, {" ab", " Ab"}, {"a b", "A b"}),
             EDITED(s.ExtractFileName(), {"c:\\dir/name.ext", "name"}, {"/dir\\name.ext", "name"},
                    {"name.tar.gz", "name.tar"}, {"dir/name", "dir/name"}, {"dir.x/name", "name"},
                    {"dir/.x", ""}),
             EDITED(s.GetFileExtension(), {"a.tar.gz", "gz"}, {"name", ""}, {"name.", ""}),
             EDITED(s.RemoveInvalidChars(), {"a\\/<>?:*|\"b", "ab"}),
             EDITED(s.RemoveInvalidChars("ac"), {"abcabc", "bb"}),
             EDITED(s.ReplaceInvalidChars('_'), {"a\\/<>?:*|\"b", "a_________b"}),
             EDITED(s.ReplaceInvalidChars('*'), {"a:b/", "a*b*"}),
             EDITED(s.ReplaceInvalidChars('\0'), {"::", "::"}),
         })
        row.Check();
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
    const std::tuple<const char*, unsigned, const char*> rows[] = {
        {"aaa bbb ccc ddd", 5, "aaa\nbbb\nccc\nddd"},
        {"aaa bbb", 3, "aaa\nbbb"},
        {"aaaaaaaaaa bb cc", 4, "aaaaaaaaaa\nbb\ncc"},
        {"a bb\ncc dd ee", 6, "a bb\ncc\ndd ee"},
        {"aaa bb", 10, "aaa bb"},
        {"aaa", 3, "aaa"},
        {"a b", 0, "a b"},
        {"a b c", 1, "a\nb\nc"},
        {"a b", LAST, "a b"}};
    for (const auto& [text, width, wrapped] : rows) {
        ZoString s(text);
        s.AddBreakLines(width);
        EXPECT_EQ(s, wrapped) << text << width;
    }
}

TEST(ZoStringTest, Classification) {
    // Blank, has a digit, only digits, numeric, valid float, below the base line, invalid in names.
    const std::tuple<const char*, std::string> rows[] = {
        {"", "bo"},      {"  ", "b"},   {"\t", ""},   {"12", "donv"}, {"-12.5", "dnv"}, {"-1,5", "dn"},
        {"3.25", "dnv"}, {"1.", "dv"},  {".5", "dv"}, {"1.2.3", "d"}, {"1,2.3", "d"},   {"1,", "d"},
        {",5", "d"},     {"-.5", "dv"}, {"+1", "d"},  {"1-2", "d"},   {"-", "v"},       {"--1", "d"},
        {"1 ", "d"},     {"a1", "d"},   {"(", "u"},   {"\xC7", "u"},  {"Q\xE3,;", ""},  {"a:b", "i"}};
    for (const auto& [text, kinds] : rows) {
        const ZoString s(text);
        const bool is[] = {s.IsNull(),       s.HasNumericChar(),    s.HasOnlyNumbers(),     s.IsNumeric(),
                           s.IsValidFloat(), s.HasUnderlineChars(), s.HasInvalidNameChars()};
        std::string found;
        for (std::size_t i = 0; i < 7; ++i) found += is[i] ? std::string(1, "bdonvui"[i]) : "";
        EXPECT_EQ(found, kinds) << text;
        EXPECT_NE(s.HasNonWhitespaceChar(), s.IsNull()) << text;
    }
    for (const char c : std::string("()gjpqy\xC7\xE7")) EXPECT_TRUE(ZoString(c).HasUnderlineChars()) << c;
    for (const char c : std::string("\\/<>?:*|\"")) EXPECT_TRUE(ZoString(c).HasInvalidNameChars()) << c;
    EXPECT_TRUE(ZoString("abc").HasInvalidNameChars("xc"));
    EXPECT_FALSE(ZoString("abc").HasInvalidNameChars(""));
    EXPECT_FALSE(ZoString().HasInvalidNameChars("abc"));
    const ZoString longest = ZoString('7', 5'000'000) + ",5";
    EXPECT_TRUE(longest.IsNumeric() && !(longest + "x").IsNumeric());
}

TEST(ZoStringTest, Formatting) {
    const CommaLocale locale;
    EXPECT_EQ(ZoString(1234567.5) + 0.25, "1234567.5000000.250000");
    EXPECT_EQ(ZoString("1.5").ToDouble() + ZoString("0x1.8").ToDouble() + ZoString("1,5").ToDouble(), 4);
    EXPECT_EQ(ZoString::FormatString("%s-%03d %.1f%%", "a", 7, 2.25), "a-007 2.2%");
    EXPECT_EQ(ZoString::FormatString("plain"), "plain");
    const ZoString format("[zoerror] invalid class (%s - %s). %llu %c");
    EXPECT_EQ(ZoString::FormatString(format, ZoString("A"), "B", 5ull, 'c'),
              "[zoerror] invalid class (A - B). 5 c");
    EXPECT_EQ(ZoString::FormatString(format.substr(0, 8)), "[zoerror]");
    EXPECT_EQ(ZoString::FormatString(ZoString("50%% a%n b%d %")), "50% a b%d %") << "without arguments";
    const ZoString text('x', 9'999);
    EXPECT_EQ(ZoString::FormatString("%s", text.c_str()), text);
    EXPECT_EQ(ZoString::FormatString("%sy", text.c_str()), text) << "cut, never written beyond";
}

} // namespace

TEST(ZoStringTest, IsMadeFromAndTurnedIntoStandardStrings) {
    const ZoString text = std::string("caf\xE9\0b", 6), view = std::string_view("cafe").substr(0, 3);
    EXPECT_EQ(static_cast<std::string>(text), "caf\xE9");
    EXPECT_EQ(std::string_view(view), "caf");
    EXPECT_EQ(std::string(ZoString()), "");
}
