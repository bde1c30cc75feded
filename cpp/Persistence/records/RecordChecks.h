#pragma once

#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

[[noreturn]] inline void ThrowRecordEnds(const char* location = "TZoClass::LoadFromStreamPre") {
    throw XReadStream(Translated("Tamanho de registro corrompido"), location, TStreamFailure::Damaged);
}

/// Throws unless the record still holds that many bytes.
template <class Source>
void CheckBytes(const Source& source, unsigned size) {
    if (source.Remaining() < size) ThrowRecordEnds();
}

/// Throws unless the `remaining` bytes of a record may hold `count` items of at least `itemSize` bytes each;
/// `count` is not negative then.
inline void CheckCount(unsigned remaining, int count, unsigned itemSize,
                       const char* location = "TZoClass::LoadFromStreamPre") {
    if (count < 0 || static_cast<unsigned>(count) > remaining / itemSize) ThrowRecordEnds(location);
}

} // namespace ZoPrimitives
