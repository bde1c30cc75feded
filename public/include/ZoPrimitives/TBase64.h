#pragma once

#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// Base64 of RFC 4648: the standard alphabet, "=" padding, no line breaks. Throws `std::bad_alloc` when
/// memory is short.
class ZO_API TBase64 {
public:
    TBase64() = delete;

    /// Empty for no bytes. Fails the assertion "size <= maximumSize" when the text would not fit into a
    /// `ZoString`.
    static ZoString EncodeBlock(unsigned char* data, unsigned long size);
    /// Encodes one group: `count` bytes, at most 3, become 4 characters. Leaves `out` unchanged for no bytes.
    static void Encode(unsigned char* in, unsigned char* out, int count);

    /// The decoded bytes, followed by a zero that `outSize` does not count. The caller owns the block and
    /// releases it with `free`. Skips white space (blank, tab, line and page breaks). Refuses everything else
    /// that `EncodeBlock` does not write, with null and an `outSize` of 0: foreign characters, a truncated
    /// last group, padding that is missing, misplaced or hides bits.
    static unsigned char* DecodeBlock(unsigned char* text, unsigned long size, unsigned long& outSize);
    /// Decodes one group: 4 characters become `count` bytes, 1 to 3; the rest of `out` is unchanged. Sets
    /// `count` to 0 for a group that `Encode` does not write.
    static void Decode(unsigned char* in, unsigned char* out, int& count);
};

} // namespace ZoPrimitives
