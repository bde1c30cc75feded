#pragma once

#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// Base64 of RFC 4648: the standard alphabet, "=" at the end, no line breaks. `std::bad_alloc` when memory is
/// short.
class ZO_API TBase64 {
public:
    TBase64() = delete;

    /// Empty for no bytes. Fails the assertion "size <= maximumSize" when the text would not fit a
    /// `ZoString`.
    static ZoString EncodeBlock(unsigned char* data, unsigned long size);
    /// One group: `count` bytes, at most 3, become 4 characters. Without bytes `out` is left alone.
    static void Encode(unsigned char* in, unsigned char* out, int count);

    /// The decoded bytes, followed by a zero that `outSize` does not count. The caller owns the block and
    /// releases it with `free`. White space (blank, tab, line and page breaks) is skipped; everything else
    /// that `EncodeBlock` would not have written is refused with null and an `outSize` of 0: foreign
    /// characters, a truncated last group, padding that is missing, in the wrong place or hides bits.
    static unsigned char* DecodeBlock(unsigned char* text, unsigned long size, unsigned long& outSize);
    /// One group: 4 characters become `count` bytes, 1 to 3; of `out` no more than these is touched. A group
    /// that is not what `Encode` writes sets `count` to 0.
    static void Decode(unsigned char* in, unsigned char* out, int& count);
};

} // namespace ZoPrimitives
