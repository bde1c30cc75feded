#pragma once

#include <cstddef>
#include <cstring>

// Where virtual operations stand in their class's table, counted from 0; destructors take two places. Told by
// the encoding of member pointers that gcc, clang and mingw share.
#if defined(__GXX_ABI_VERSION) && defined(__x86_64__)
#define ZO_SLOTS_ARE_TOLD
template <class Member>
std::ptrdiff_t Slot(Member member) {
    std::ptrdiff_t encoded; // of a virtual member: 1 + its offset in the table
    std::memcpy(&encoded, &member, sizeof encoded);
    return (encoded - 1) / 8;
}
#endif
