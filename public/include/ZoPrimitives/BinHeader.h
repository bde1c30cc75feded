#pragma once

#include <cstring>
#include <type_traits>

namespace ZoPrimitives {

/// The header of the binary record format, its fields in file order.
struct TBinHeader {
    unsigned version = 0;
    unsigned reserved1 = 0;
    unsigned reserved2 = 0;
    unsigned recordCount = 0;
    unsigned release = 0;
    unsigned reserved3 = 0;
    unsigned extraLength = 0; ///< bytes between the header and the first record

    friend bool operator==(const TBinHeader& a, const TBinHeader& b) {
        static_assert(std::has_unique_object_representations_v<TBinHeader>);
        return std::memcmp(&a, &b, sizeof a) == 0;
    }
    friend bool operator!=(const TBinHeader& a, const TBinHeader& b) { return !(a == b); }
};

} // namespace ZoPrimitives
