#include "ZoPrimitives/MurmurHash2.h"

#include <gtest/gtest.h>

using ZoPrimitives::MurmurHash2;

namespace {

TEST(MurmurHash2Tests, PublishedVerificationValue) {
    // The hashes of {}, {0}, {0, 1} ... under falling seeds, hashed once more; covers every tail and
    // alignment.
    unsigned char key[256], hashes[256 * 4];
    for (unsigned i = 0; i < 256; ++i) {
        key[i] = static_cast<unsigned char>(i);
        const unsigned hash = MurmurHash2(key, static_cast<int>(i), 256 - i);
        for (unsigned byte = 0; byte < 4; ++byte)
            hashes[4 * i + byte] = static_cast<unsigned char>(hash >> (8 * byte));
    }
    EXPECT_EQ(MurmurHash2(hashes, sizeof hashes, 0), 0x27864C1Eu);
}

TEST(MurmurHash2Tests, NoBytes) {
    EXPECT_EQ(MurmurHash2("", 0, 0), 0u);
    const unsigned none = MurmurHash2("", 0, 99);
    EXPECT_NE(none, 0u);
    EXPECT_EQ(MurmurHash2(nullptr, 0, 99), none);
    EXPECT_EQ(MurmurHash2(nullptr, 5, 99), none);
    EXPECT_EQ(MurmurHash2("abc", -1, 99), none);
}

} // namespace
