#pragma once

#include "ZoPrimitives/Export.h"

#include <array>
#include <cstdint>
#include <string>

namespace ZoPrimitives {

/// The standard CRC-32 (IEEE 802.3, reflected polynomial 0xEDB88320) of data given in pieces of any size.
class ZO_API CRC32 {
public:
    CRC32() noexcept { reset(); }

    void reset() noexcept { reg = 0xFFFFFFFF; }
    /// A null pointer or a size of 0 changes nothing.
    void update(const unsigned char* data, unsigned size) noexcept;
    /// The CRC of all bytes since the last `reset`. More bytes may follow.
    std::uint32_t getUint32Value() const noexcept { return ~reg; }

    /// Computes the CRC of a whole file of any size, from a fresh start; `getUint32Value` gives it too.
    /// Throws `XReadStream` when the file cannot be read to its end; the current CRC is then unchanged.
    std::uint32_t generateCRCFromFile(const std::string& path);

private:
    friend struct Crc32Kernels;

    static unsigned long long getFileSize(std::string path);

    /// Row 0 is the standard table; row k advances a byte over k further bytes.
    static const std::array<std::array<std::uint32_t, 256>, 16> table;

    std::uint32_t reg;
};

} // namespace ZoPrimitives
