#include "Persistence/checksums/Crc32Kernel.h"
#include "ZoPrimitives/CRC32.h"
#include "ZoPrimitives/XStream.h"
#include "support/Assertions.h"
#include "support/FaultyServices.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <zlib.h>

using namespace ZoPrimitives;
using namespace ZoPrimitives::Testing;

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

TEST(CRC32KernelTests, EveryLengthAtEveryAlignmentBehindOtherBytes) {
    // null: not on this processor
    const std::pair<const char*, Crc32Kernels::Kernel> kernels[] = {
        {"chosen", &Crc32Update},
        {"tables", &Crc32Kernels::Tables},
        {"folding", Crc32Kernels::Folding()},
        {"wide folding", Crc32Kernels::WideFolding()}};
    const auto noise = Noise(1100 + 16);
    for (const auto& [name, update] : kernels) {
        for (std::size_t before = 0; before < 16 && update != nullptr; ++before) {
            for (std::size_t size = 0; size <= 1100; ++size) {
                // Exact allocations: the address sanitizer sees a read beside them.
                const std::vector<unsigned char> exact(noise.begin(),
                                                       noise.begin() + static_cast<int>(before + size));
                const std::uint32_t reg = update(0xFFFFFFFF, exact.data(), before);
                ASSERT_EQ(~update(reg, exact.data() + before, size), Oracle(exact.data(), before + size))
                    << name << ": " << size << " bytes behind " << before;
            }
        }
    }
}

TEST(CRC32Tests, CheckValue) {
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

TEST(CRC32Tests, SumsAWholeFile) {
    const TemporaryFolder folder;
    for (const std::size_t size : {0u, 1u, 256u * 1024, 700'001u}) {
        const auto noise = Noise(size);
        folder.Write("f", std::string(noise.begin(), noise.end()));
        CRC32 crc;
        crc.update(reinterpret_cast<const unsigned char*>("x"), 1);
        EXPECT_EQ(crc.generateCRCFromFile(folder.Path("f")), Oracle(noise.data(), size)) << size;
        EXPECT_EQ(crc.getUint32Value(), Oracle(noise.data(), size));
    }
}

TEST(CRC32Tests, UnreadableFilesThrowAndLeaveTheSum) {
    const std::pair<const char*, void (*)(FaultyServices&)> cases[] = {
        {"missing", [](auto& services) { services.Fail("OpenFile", 1, Platform::ErrorFileNotFound); }},
        {"size unknown", [](auto& services) { services.Fail("FileSize", 1, Platform::ErrorDevice); }},
        {"device fails halfway",
         [](auto& services) { services.Fail("ReadFile", 1, Platform::ErrorDevice, FaultyServices::Half); }},
        {"ends early", [](auto& services) { services.claimedSize = 10; }},
        {"ends early, above 4 GiB", [](auto& services) { services.claimedSize = (1ULL << 32) + 9; }},
    };
    const TemporaryFolder folder;
    folder.Write("f", "123456789");
    for (const auto& [name, spoil] : cases) {
        SCOPED_TRACE(name);
        FaultyServices services;
        spoil(services);
        CRC32 crc;
        crc.update(reinterpret_cast<const unsigned char*>("123456789"), 9);
        EXPECT_THAT(FailureOf([&] { crc.generateCRCFromFile(folder.Path("f")); }),
                    testing::EndsWith(" @ CRC32::generateCRCFromFile"));
        EXPECT_EQ(crc.getUint32Value(), 0xCBF43926u);
        EXPECT_EQ(services.OpenHandles(), 0u);
    }
    FaultyServices services; // a file that grows meanwhile
    services.claimedSize = 4;
    EXPECT_EQ(CRC32().generateCRCFromFile(folder.Path("f")), 0xCBF43926u);
}

} // namespace
