#pragma once

#include <zlib.h>

#include <cstdint>
#include <string>

// The binary record format, put together byte by byte and without the library's help.

inline std::string LittleEndian(std::uint64_t value, int bytes = 4) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}

inline std::uint32_t Word(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    }
    return value;
}

inline std::uint32_t ZlibCrc(const std::string& bytes) {
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned>(bytes.size())));
}

/// With the key as decoded: 0, 1, 2 or 4.
inline std::string Scrambled(std::string bytes, unsigned key) {
    static const unsigned char patterns[5][3] = {{0, 0, 0}, {11, 13, 15}, {22, 26, 30}, {}, {44, 52, 60}};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(bytes[i] ^ patterns[key][i % 3]);
    return bytes;
}

struct Record {
    int uid = 0;
    int classId = 0;
    std::string payload; ///< plain
    unsigned key = 0;    ///< as stored
    std::uint32_t marker = 0xABCAABCA;

    std::string Bytes() const {
        const unsigned decoded = (key & 1) != 0 ? 1 : (key & 2) != 0 ? 2 : key & 4;
        return LittleEndian(marker) + LittleEndian(payload.size()) + LittleEndian(ZlibCrc(payload)) +
               LittleEndian(static_cast<std::uint32_t>(classId)) +
               LittleEndian(static_cast<std::uint32_t>(uid)) + LittleEndian(key) +
               Scrambled(payload, decoded);
    }
};

/// A plain record.
inline std::string RecordBytes(int uid, int classId, const std::string& payload) {
    return Record{uid, classId, payload}.Bytes();
}

inline std::string HeaderBytes(unsigned version, unsigned release, unsigned count = 0, unsigned extra = 0) {
    return LittleEndian(version) + LittleEndian(0) + LittleEndian(0) + LittleEndian(count) +
           LittleEndian(release) + LittleEndian(0) + LittleEndian(extra);
}
