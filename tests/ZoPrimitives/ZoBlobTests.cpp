#include "ZoPrimitives/ZoBlob.h"

#include "ZoPrimitives/ZoString.h"

#include <gtest/gtest.h>

#include <new>
#include <string_view>

using namespace ZoPrimitives;

namespace {

std::string_view Bytes(const ZoBlob& blob) {
    return {static_cast<const char*>(blob.Data()), static_cast<std::size_t>(blob.Size())};
}

TEST(ZoBlobTest, CopiesAreIndependent) {
    ZoBlob a("a\0b", 3);
    ZoBlob b(a);
    static_cast<char*>(b.Data())[0] = 'x';
    EXPECT_EQ(Bytes(a), std::string_view("a\0b", 3));
    EXPECT_EQ(Bytes(b), std::string_view("x\0b", 3));
    a = b;
    EXPECT_EQ(a, b);
    static_cast<char*>(b.Data())[2] = 'y';
    EXPECT_NE(a, b);
    const ZoObject& object = a;
    EXPECT_TRUE(object == static_cast<const ZoObject&>(ZoBlob("x\0b", 3)));
    EXPECT_TRUE(object != static_cast<const ZoObject&>(ZoBlob("x\0bd", 4)));
    EXPECT_TRUE(object != static_cast<const ZoObject&>(ZoString("x")));
}

TEST(ZoBlobTest, MovedFromIsEmpty) {
    ZoBlob a("abc", 3);
    ZoBlob b(std::move(a));
    EXPECT_EQ(a, ZoBlob());
    a.Assign("x", 1); // in memory of its own
    EXPECT_EQ(Bytes(a), "x");
    a = std::move(b);
    EXPECT_EQ(Bytes(a), "abc");
    EXPECT_EQ(b.Size(), 0u);
    ZoBlob& same = a;
    a = std::move(same);
    a = same;
    EXPECT_EQ(Bytes(a), "abc");
    b.Assign("z", 1);
    EXPECT_EQ(Bytes(b), "z");
}

TEST(ZoBlobTest, AssignsWithinItsMemory) {
    ZoBlob blob("abcdef", 6);
    const void* memory = blob.Data();
    blob.Assign("xy", 2);
    EXPECT_EQ(blob.Data(), memory);
    blob.Assign("uvwxyz", 6);
    EXPECT_EQ(blob.Data(), memory);
    blob.Assign(static_cast<char*>(blob.Data()) + 1, 5);
    EXPECT_EQ(Bytes(blob), "vwxyz");
    blob.Assign("1234567", 7);
    EXPECT_EQ(Bytes(blob), "1234567");
    blob.Assign("q", 1);
    EXPECT_EQ(Bytes(blob), "q");
    EXPECT_NE(blob, ZoBlob("r", 1));
    blob.Assign(nullptr, 5);
    EXPECT_EQ(blob, ZoBlob(nullptr, 9));
}

TEST(ZoBlobTest, OfASize) {
    const ZoBlob blob(10'485'760);
    EXPECT_EQ(blob.Size(), 10'485'760u);
    EXPECT_EQ(Bytes(blob).find_first_not_of('\0'), std::string_view::npos);
    delete new ZoBlob(std::string(64, 'x').c_str(), 64);
    EXPECT_EQ(Bytes(ZoBlob(64)), std::string(64, '\0')) << "in memory that was used";
    ZoBlob kept("abc", 3);
    EXPECT_THROW(ZoBlob(~0ull), std::bad_alloc);
    EXPECT_THROW(kept.Assign("x", ~0ull), std::bad_alloc);
    EXPECT_EQ(Bytes(kept), "abc");
}

} // namespace
