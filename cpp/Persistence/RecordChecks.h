#pragma once

#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

[[noreturn]] inline void ThrowRecordEnds() {
    throw XReadStream(TTranslatedString("Tamanho de registro corrompido").Text(),
                      "TZoClass::LoadFromStreamPre");
}

/// Throws unless the record still holds that many bytes.
template <class Source>
void CheckBytes(const Source& source, unsigned size) {
    if (source.Remaining() < size) ThrowRecordEnds();
}

/// Throws unless the `remaining` bytes of a record may hold `count` items of at least `itemSize` bytes each;
/// `count` is not negative then.
inline void CheckCount(unsigned remaining, int count, unsigned itemSize) {
    if (count < 0 || static_cast<unsigned>(count) > remaining / itemSize) ThrowRecordEnds();
}

} // namespace ZoPrimitives
