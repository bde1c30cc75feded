#include "ZoPrimitives/Checksum.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

using namespace ZoPrimitives;

namespace {

TEST(ChecksumTests, IsFnv1aOfTheBytes) {
    const std::tuple<const char*, TChecksumType, std::uint64_t> cases[] = {
        {"empty text", CreateChecksum(ZoString()), 0xCBF29CE484222325},
        {"published: a", CreateChecksum(ZoString("a")), 0xAF63DC4C8601EC8C},
        {"published: foobar", CreateChecksum(ZoString("foobar")), 0x85944171F73967E8},
        {"literal is text, not bool", CreateChecksum("foobar"), 0x85944171F73967E8},
        {"null text", CreateChecksum(static_cast<const char*>(nullptr)), 0xCBF29CE484222325},
        {"bytes above 127", CreateChecksum("\xE7\xE3o"), 0x27F3EC1B6D3E68F0},
        {"int 0", CreateChecksum(0), 0x4D25767F9DCE13F5},
        {"int -1", CreateChecksum(-1), 0x994F76653E2A3951},
        {"int, low byte first", CreateChecksum(0x12345678), 0xCCCFD053E47C3365},
        {"false", CreateChecksum(false), 0xAF63BD4C8601B7DF},
        {"true", CreateChecksum(true), 0xAF63BC4C8601B62C},
        {"0.0", CreateChecksum(0.0), 0xA8C7F832281A39C5},
        {"-0.0", CreateChecksum(-0.0), 0xA8C7F832281A39C5},
        {"-1.5", CreateChecksum(-1.5), 0xAA95693229A1A300},
        {"float as double", CreateChecksum(-1.5F), 0xAA95693229A1A300},
    };
    for (const auto& [name, checksum, expected] : cases) EXPECT_EQ(checksum.GetValue(), expected) << name;
}

template <class T>
constexpr bool accepted = requires(T value) {
    CreateChecksum(value);
};

TEST(ChecksumTests, RefusesWhatItWouldChange) {
    static_assert(accepted<int> && accepted<short> && accepted<char*> && accepted<const char*>);
    static_assert(!accepted<unsigned> && !accepted<long> && !accepted<std::uint64_t>);
    static_assert(!accepted<long double> && !accepted<void*> && !accepted<const int*>);
}

TEST(ChecksumTests, UnequalFollowsTheDerivedEquality) {
    struct LowByte : TChecksumType {
        using TChecksumType::TChecksumType;
        bool operator==(const TChecksumType& other) const override {
            return ((GetValue() ^ other.GetValue()) & 0xFF) == 0;
        }
    };
    const LowByte low(0x107);
    const TChecksumType& base = low;
    EXPECT_TRUE(base == TChecksumType(0x207) && !(base != TChecksumType(0x207)));
    EXPECT_TRUE(base != TChecksumType(0x108) && TChecksumType(7) != TChecksumType(0x107));
}

TEST(ChecksumTests, CombinesInOrder) {
    EXPECT_EQ(GetChecksumSeed().GetValue(), 0x811C9DC5u);
    const TChecksumType a(0x8000000000000001), b(6);
    TCombinedChecksum ab(GetChecksumSeed()), ba(GetChecksumSeed());
    ab.Combine(a);
    EXPECT_EQ(ab.GetChecksum().GetValue(), 0x8000000102393B8BU);
    ab.Combine(b);
    EXPECT_EQ(ab.GetChecksum().GetValue(), 0x0000000204727710U);
    ba.Combine(b);
    ba.Combine(a);
    EXPECT_TRUE(ab.GetChecksum() != ba.GetChecksum());

    TCombinedChecksum copy(ab);
    EXPECT_TRUE(copy.GetChecksum() == ab.GetChecksum());
    copy.SetChecksum(a);
    EXPECT_TRUE(copy.GetChecksum() == a);
}

TEST(ChecksumTests, RandomOnesStayInRangeAndDiffer) {
    std::set<unsigned long long> seen;
    bool upperHalf = false;
    for (int i = 0; i < 200; ++i) {
        const auto value = CreateRandomChecksum().GetValue();
        EXPECT_TRUE(value >= 1 && value <= 2147483648U) << value;
        upperHalf = upperHalf || value > 1073741824U;
        seen.insert(value);
    }
    EXPECT_GT(seen.size(), 190U);
    EXPECT_TRUE(upperHalf);
}

} // namespace
