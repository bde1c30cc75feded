#pragma once

#include "ZoPrimitives/Export.h"

namespace ZoPrimitives {

/// The published 32-bit MurmurHash2, reading little-endian: the same on every platform. `length` is in bytes;
/// with a null key or a negative length it is the hash of no bytes. Not for data that somebody could have
/// chosen.
extern "C" ZO_API unsigned MurmurHash2(const void* key, int length, unsigned seed);

} // namespace ZoPrimitives
