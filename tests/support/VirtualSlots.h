#pragma once

#include <cstddef>
#include <cstring>

/// The place of a virtual operation in its class's table, as this compiler's pointers to members tell it: the
/// first two are the destructor's.
template <class Member>
std::ptrdiff_t SlotOf(Member operation) {
    std::ptrdiff_t code = 0;
    std::memcpy(&code, &operation, sizeof code);
    return (code - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}
