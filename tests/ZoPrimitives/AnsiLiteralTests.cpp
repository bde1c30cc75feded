#include "ZoPrimitives/AnsiLiteral.h"

#include <gtest/gtest.h>

using namespace ZoPrimitives;

namespace {

// Whether a character may stand in a literal.
static_assert(Windows1252::FromUnicode(U'\u20AC') == 0x80 && Windows1252::FromUnicode(U'\u0178') == 0x9F);
static_assert(Windows1252::FromUnicode(U'\u2192') < 0 && Windows1252::FromUnicode(U'\u0080') < 0);

TEST(AnsiLiteralTest, Bytes) {
    EXPECT_STREQ(""_ansi, "");
    EXPECT_STREQ("Espaço em disco insuficiente."_ansi, "Espa\xE7o em disco insuficiente.");
    EXPECT_STREQ("ÁÿŸ€–ß"_ansi, "\xC1\xFF\x9F\x80\x96\xDF");
    constexpr const char* text = "é"_ansi;
    EXPECT_EQ(text, "é"_ansi) << "one text, one address";
}

TEST(ZoUtf8Test, EveryByteGoesThereAndBack) {
    for (int byte = 1; byte < 256; ++byte) {
        const ZoString text(static_cast<char>(byte));
        EXPECT_STREQ(ZoFromUtf8(ZoToUtf8(text).c_str()).c_str(), text.c_str()) << byte;
    }
}

TEST(ZoUtf8Test, PublishedCharacters) {
    const std::tuple<const char*, const char*> rows[] = {
        {"plain", "plain"},
        {"a\xE7\xE3o", "ação"},
        {"\x80", "€"},
        {"\x8A\x9A\x9F", "ŠšŸ"},
        {"\x93q\x94", "“q”"},
        {"\x81\x8D\x8F\x90\x9D", "\u0081\u008D\u008F\u0090\u009D"},
        {"\xA0\xB5\xFF", "\u00A0µÿ"}};
    for (const auto& [ansi, utf8] : rows) {
        EXPECT_EQ(ZoToUtf8(ansi), utf8);
        EXPECT_STREQ(ZoFromUtf8(utf8).c_str(), ansi) << utf8;
    }
}

TEST(ZoUtf8Test, StrangersBecomeQuestionMarks) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"null", nullptr, ""},
        {"arrow", "a→b", "a?b"},
        {"beyond the basic plane", "a😀b", "a?b"},
        {"control that is a letter in the code page", "\u0080", "?"},
        {"lone continuation", "a\x80z", "a?z"},
        {"cut at the end", "a\xC3", "a?"},
        {"cut in the middle", "\xE2\x82z", "??z"},
        {"overlong slash", "\xC0\xAF", "??"},
        {"overlong of three", "\xE0\x80\xAF", "???"},
        {"surrogate", "\xED\xA0\x80", "???"},
        {"too large", "\xF4\x90\x80\x80", "????"},
        {"no lead byte", "\xFF\xFEz", "??z"},
    };
    for (const auto& [name, utf8, ansi] : rows) {
        std::string lost, strangers = utf8 == nullptr ? "" : utf8;
        EXPECT_STREQ(ZoFromUtf8(utf8, lost).c_str(), ansi) << name;
        std::erase_if(strangers, [](char c) { return c == 'a' || c == 'b' || c == 'z'; });
        EXPECT_EQ(lost, strangers) << name;
    }
}

} // namespace
