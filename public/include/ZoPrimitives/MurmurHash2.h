#pragma once

#include "ZoPrimitives/Export.h"

namespace ZoPrimitives {

/// The published 32-bit MurmurHash2, reading little-endian: the same on every platform. `length` is in bytes;
/// a null key or a negative length counts as no bytes. Not for data that an attacker could choose.
extern "C" ZO_API unsigned MurmurHash2(const void* key, int length, unsigned seed);

} // namespace ZoPrimitives
