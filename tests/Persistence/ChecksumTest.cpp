#include "ZoPrimitives/Checksum.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <type_traits>
#include <utility>

using namespace ZoPrimitives;

namespace {

TEST(Checksum, IsFnv1aOfTheBytes) {
    const struct {
        const char* name;
        TChecksumType checksum;
        std::uint64_t expected;
    } cases[] = {
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
    for (const auto& row : cases) EXPECT_EQ(row.checksum.GetValue(), row.expected) << row.name;
}

template <class T, class = void>
struct Accepts : std::false_type {};
template <class T>
struct Accepts<T, std::void_t<decltype(CreateChecksum(std::declval<T>()))>> : std::true_type {};

TEST(Checksum, RefusesWhatItWouldChange) {
    static_assert(Accepts<int>::value && Accepts<short>::value && Accepts<char*>::value &&
                  Accepts<const char*>::value);
    static_assert(!Accepts<unsigned>::value && !Accepts<long>::value && !Accepts<std::uint64_t>::value);
    static_assert(!Accepts<long double>::value && !Accepts<void*>::value && !Accepts<const int*>::value);
}

TEST(Checksum, ComparesValues) {
    const TChecksumType a(7), b(8), copy = a;
    EXPECT_TRUE(a == copy && !(a != copy) && a != b && !(a == b));
    EXPECT_TRUE(TChecksumType() == TChecksumType(0));
    TChecksumType changed(7);
    changed.SetValue(8);
    EXPECT_TRUE(changed == b);
}

TEST(Checksum, UnequalFollowsTheDerivedEquality) {
    struct LowByte : TChecksumType {
        using TChecksumType::TChecksumType;
        bool operator==(const TChecksumType& other) const override {
            return ((GetValue() ^ other.GetValue()) & 0xFF) == 0;
        }
    };
    const LowByte low(0x107);
    const TChecksumType& base = low;
    EXPECT_TRUE(base == TChecksumType(0x207));
    EXPECT_FALSE(base != TChecksumType(0x207));
}

TEST(Checksum, CombinesInOrder) {
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

TEST(Checksum, RandomOnesStayInRangeAndDiffer) {
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
