#include "ZoPrimitives/TBase64.h"

#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>

namespace ZoPrimitives {

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

enum : unsigned char { Foreign = 64, Blank = 65, Padding = 66 };

/// The six bits of each character, or one of the marks above.
constexpr std::array<unsigned char, 256> meaning = [] {
    std::array<unsigned char, 256> all{};
    all.fill(Foreign);
    for (unsigned char i = 0; i < 64; ++i) all[static_cast<unsigned char>(alphabet[i])] = i;
    for (const char c : {' ', '\t', '\n', '\v', '\f', '\r'}) all[static_cast<unsigned char>(c)] = Blank;
    all['='] = Padding;
    return all;
}();

void EncodeGroup(const unsigned char* in, char* out, unsigned count) {
    const unsigned bits = static_cast<unsigned>(in[0]) << 16 |
                          (count > 1 ? static_cast<unsigned>(in[1]) << 8 : 0) |
                          (count > 2 ? static_cast<unsigned>(in[2]) : 0);
    out[0] = alphabet[bits >> 18];
    out[1] = alphabet[bits >> 12 & 63];
    out[2] = count > 1 ? alphabet[bits >> 6 & 63] : '=';
    out[3] = count > 2 ? alphabet[bits & 63] : '=';
}

/// Decodes the meanings of four characters; returns 0 for an invalid group.
unsigned DecodeGroup(const unsigned char* in, unsigned char* out) {
    const unsigned count = in[3] != Padding ? 3 : in[2] != Padding ? 2 : 1;
    unsigned bits = 0;
    for (unsigned i = 0; i < 4; ++i) {
        if (i <= count && in[i] >= 64) return 0;
        bits = bits << 6 | (i <= count ? in[i] : 0U);
    }
    if ((bits & (0xFFFFFFU >> (8 * count))) != 0) return 0;
    for (unsigned i = 0; i < count; ++i) out[i] = static_cast<unsigned char>(bits >> (16 - 8 * i));
    return count;
}

} // namespace

ZoString TBase64::EncodeBlock(unsigned char* data, unsigned long size) {
    // Positions in a text are of type int.
    constexpr unsigned long maximumSize = std::numeric_limits<std::int32_t>::max() / 4 * 3;
    ZO_ASSERT(size <= maximumSize, "size <= maximumSize", ZoSources::TBASE64);
    if (data == nullptr || size == 0) return "";
    ZoString text('=', static_cast<unsigned>((size + 2) / 3 * 4));
    if (text.c_str()[0] == '\0') throw std::bad_alloc();
    char* out = &text[0];
    for (; size > 0; out += 4) {
        const unsigned count = size < 3 ? static_cast<unsigned>(size) : 3;
        EncodeGroup(data, out, count);
        data += count;
        size -= count;
    }
    return text;
}

void TBase64::Encode(unsigned char* in, unsigned char* out, int count) {
    if (count <= 0) return;
    char group[4];
    EncodeGroup(in, group, count < 3 ? static_cast<unsigned>(count) : 3);
    for (unsigned i = 0; i < 4; ++i) out[i] = static_cast<unsigned char>(group[i]);
}

unsigned char* TBase64::DecodeBlock(unsigned char* text, unsigned long size, unsigned long& outSize) {
    outSize = 0;
    if (text == nullptr && size > 0) return nullptr;
    auto* const decoded = static_cast<unsigned char*>(std::malloc(std::size_t{size} / 4 * 3 + 1));
    if (decoded == nullptr) throw std::bad_alloc();

    unsigned char group[4];
    unsigned filled = 0;
    unsigned long done = 0;
    bool ended = false, valid = true;
    for (unsigned long i = 0; i < size && valid; ++i) {
        const unsigned char mark = meaning[text[i]];
        if (mark == Blank) continue;
        group[filled++] = mark;
        valid = !ended && mark != Foreign;
        if (filled < 4 || !valid) continue;
        const unsigned count = DecodeGroup(group, decoded + done);
        valid = count > 0;
        ended = count < 3;
        done += count;
        filled = 0;
    }
    if (!valid || filled > 0) {
        std::free(decoded);
        return nullptr;
    }
    decoded[done] = 0;
    outSize = done;
    return decoded;
}

void TBase64::Decode(unsigned char* in, unsigned char* out, int& count) {
    unsigned char group[4];
    for (unsigned i = 0; i < 4; ++i) group[i] = meaning[in[i]];
    count = static_cast<int>(DecodeGroup(group, out));
}

} // namespace ZoPrimitives
