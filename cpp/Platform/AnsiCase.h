#pragma once

#include <array>
#include <cstddef>

namespace ZoPrimitives::Platform {

/// Upper and lower case of Windows-1252. Letters whose other case the code page lacks (the micro sign, sharp
/// s, the florin) are unchanged.
using CaseTable = std::array<unsigned char, 256>;

constexpr CaseTable MakeCaseTable(bool upper) {
    CaseTable table{};
    for (unsigned i = 0; i < 256; ++i) table[i] = static_cast<unsigned char>(i);
    const auto pair = [&](unsigned capital, unsigned small) {
        table[upper ? small : capital] = static_cast<unsigned char>(upper ? capital : small);
    };
    for (unsigned c = 'A'; c <= 'Z'; ++c) pair(c, c + 0x20);
    for (unsigned c = 0xC0; c <= 0xDE; ++c) {
        if (c != 0xD7) pair(c, c + 0x20); // the multiplication and division signs are not letters
    }
    pair(0x8A, 0x9A);
    pair(0x8C, 0x9C);
    pair(0x8E, 0x9E);
    pair(0x9F, 0xFF);
    return table;
}

inline constexpr CaseTable UPPER = MakeCaseTable(true);
inline constexpr CaseTable LOWER = MakeCaseTable(false);

inline void MapCase(char* text, std::size_t size, const CaseTable& table) {
    for (std::size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>(table[static_cast<unsigned char>(text[i])]);
    }
}

} // namespace ZoPrimitives::Platform
