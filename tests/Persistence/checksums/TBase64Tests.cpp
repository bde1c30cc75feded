#include "ZoPrimitives/TBase64.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

using namespace ZoPrimitives;

namespace {

std::string Encoded(std::string bytes) {
    return TBase64::EncodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                static_cast<unsigned long>(bytes.size()))
        .c_str();
}

/// Nothing when refused. Decodes from an allocation of the very size.
std::optional<std::string> Decoded(const std::string& text) {
    const std::unique_ptr<unsigned char[]> exact(new unsigned char[text.size()]);
    std::copy(text.begin(), text.end(), exact.get());
    unsigned long size = 77;
    unsigned char* const block =
        TBase64::DecodeBlock(exact.get(), static_cast<unsigned long>(text.size()), size);
    if (block == nullptr) {
        EXPECT_EQ(size, 0u);
        return std::nullopt;
    }
    EXPECT_EQ(block[size], 0);
    std::string bytes(reinterpret_cast<const char*>(block), size);
    std::free(block);
    return bytes;
}

TEST(TBase64Tests, EveryByteValueSurvives) {
    std::string bytes;
    for (int length = 0; length <= 600; ++length) {
        EXPECT_EQ(Decoded(Encoded(bytes)), bytes) << length;
        bytes += static_cast<char>(length * 7 + length / 256);
    }
}

TEST(TBase64Tests, WhatIsAcceptedAndWhatIsRefused) {
    const std::tuple<const char*, std::string, std::optional<std::string>> cases[] = {
        {"published: none", "", ""},
        {"published: one", "Zg==", "f"},
        {"published: two", "Zm8=", "fo"},
        {"published: three", "Zm9v", "foo"},
        {"published: four", "Zm9vYg==", "foob"},
        {"published: five", "Zm9vYmE=", "fooba"},
        {"published: six", "Zm9vYmFy", "foobar"},
        {"published: the last signs", "+/+/", "\xFB\xFF\xBF"},
        {"line breaks and blanks", " Zm9v\r\nYm\tF\v\fy \n", "foobar"},
        {"blanks within padding", "Zg = =\n", "f"},
        {"blanks only", " \n", ""},
        {"foreign character", "Zm9v*mFy", {}},
        {"URL alphabet", "-_-_", {}},
        {"zero byte", std::string("Zm\0v", 4), {}},
        {"byte above 127", "Zm9\xE7", {}},
        {"one character", "Z", {}},
        {"padding missing", "Zg", {}},
        {"padding alone", "====", {}},
        {"padding inside a group", "Zg=v", {}},
        {"text after the padding", "Zg==Zm9v", {}},
        {"more padding after the padding", "Zg===", {}},
        {"bits hidden by one pad", "Zm9=", {}},
        {"the higher bit", "Zm+=", {}},
        {"bits hidden by two pads", "Zh==", {}},
    };
    for (const auto& [name, text, expected] : cases) {
        EXPECT_EQ(Decoded(text), expected) << name;
        if (std::string(name).rfind("published", 0) != 0) continue;
        EXPECT_EQ(Encoded(*expected), text);
    }
}

TEST(TBase64Tests, NullPointers) {
    EXPECT_EQ(TBase64::EncodeBlock(nullptr, 3), "");
    EXPECT_THROW(TBase64::EncodeBlock(nullptr, 0xFFFFFFFF), XZoAssert) << "beyond a string";
    unsigned long size = 77;
    EXPECT_EQ(TBase64::DecodeBlock(nullptr, 4, size), nullptr);
    EXPECT_EQ(size, 0u);
    const std::unique_ptr<unsigned char, decltype(&std::free)> empty(TBase64::DecodeBlock(nullptr, 0, size),
                                                                     &std::free);
    EXPECT_NE(empty, nullptr);
}

TEST(TBase64Tests, SingleGroups) {
    const struct {
        int count;
        const char* text;
        int decoded;
    } cases[] = {{1, "TQ==", 1}, {2, "TWE=", 2}, {3, "TWFu", 3},
                 {4, "TWFu", 3}, {0, "....", 0}, {-1, "....", 0}};
    for (const auto& row : cases) {
        unsigned char in[] = {'M', 'a', 'n'}, group[] = {'.', '.', '.', '.'}, out[] = {'?', '?', '?', 0};
        TBase64::Encode(in, group, row.count);
        EXPECT_EQ(std::string(group, group + 4), row.text);
        int count = 77;
        TBase64::Decode(group, out, count);
        EXPECT_EQ(count, row.decoded);
        const auto decoded = static_cast<std::size_t>(row.decoded);
        EXPECT_EQ(std::string(out, out + 3),
                  std::string("Man").substr(0, decoded) + std::string(3 - decoded, '?'));
    }
}

} // namespace
