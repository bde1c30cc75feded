#include "ZoPrimitives/CRC32.h"
#include "Persistence/Crc32Kernel.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace ZoPrimitives;

namespace {

std::uint32_t Oracle(const unsigned char* data, std::size_t size) {
    return static_cast<std::uint32_t>(::crc32(0, data, static_cast<uInt>(size)));
}

std::vector<unsigned char> Noise(std::size_t size) {
    std::mt19937 random(20260);
    std::vector<unsigned char> bytes(size);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random() >> 24);
    return bytes;
}

struct NamedKernel {
    const char* name;
    Crc32Kernels::Kernel kernel;
};

class CRC32Kernel : public testing::TestWithParam<NamedKernel> {
protected:
    void SetUp() override {
        if (GetParam().kernel == nullptr) GTEST_SKIP() << "not on this processor";
    }
    static std::uint32_t Update(std::uint32_t reg, const unsigned char* data, std::size_t size) {
        return GetParam().kernel(reg, data, size);
    }
};

INSTANTIATE_TEST_SUITE_P(All, CRC32Kernel,
                         testing::Values(NamedKernel{"Chosen", &Crc32Update},
                                         NamedKernel{"Tables", &Crc32Kernels::Tables},
                                         NamedKernel{"Folding", Crc32Kernels::Folding()}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(CRC32Kernel, EveryLengthAtEveryAlignment) {
    const auto noise = Noise(1100 + 16);
    for (std::size_t offset = 0; offset < 16; ++offset)
        for (std::size_t size = 0; size <= 1100; ++size)
            ASSERT_EQ(~Update(0xFFFFFFFF, noise.data() + offset, size), Oracle(noise.data() + offset, size))
                << size << " bytes at " << offset;
}

TEST_P(CRC32Kernel, TouchesNothingBesideTheBuffer) {
    // Exact allocations: the address sanitizer sees a read beside them.
    const auto noise = Noise(600);
    for (std::size_t size = 1; size <= noise.size(); ++size) {
        const std::unique_ptr<unsigned char[]> exact(new unsigned char[size]);
        std::copy_n(noise.data(), size, exact.get());
        ASSERT_EQ(~Update(0xFFFFFFFF, exact.get(), size), Oracle(exact.get(), size)) << size;
    }
}

TEST_P(CRC32Kernel, PiecesGiveTheSumOfTheWhole) {
    const auto noise = Noise(700);
    const std::uint32_t whole = Oracle(noise.data(), noise.size());
    for (std::size_t first = 0; first <= 300; ++first)
        for (std::size_t second = 0; second <= 40; ++second) {
            std::uint32_t reg = Update(0xFFFFFFFF, noise.data(), first);
            reg = Update(reg, noise.data() + first, second);
            reg = Update(reg, noise.data() + first + second, noise.size() - first - second);
            ASSERT_EQ(~reg, whole) << first << " and " << second;
        }
}

TEST_P(CRC32Kernel, Megabytes) {
    const auto noise = Noise((std::size_t{3} << 20) + 5);
    EXPECT_EQ(~Update(0xFFFFFFFF, noise.data(), noise.size()), Oracle(noise.data(), noise.size()));
}

TEST(CRC32, CheckValue) {
    CRC32 crc;
    EXPECT_EQ(crc.getUint32Value(), 0u);
    const auto* text = reinterpret_cast<const unsigned char*>("123456789");
    crc.update(text, 4);
    crc.update(text + 4, 5);
    EXPECT_EQ(crc.getUint32Value(), 0xCBF43926u);
    crc.update(nullptr, 7);
    crc.update(text, 0);
    EXPECT_EQ(crc.getUint32Value(), 0xCBF43926u);
    crc.reset();
    EXPECT_EQ(crc.getUint32Value(), 0u);
}

} // namespace
