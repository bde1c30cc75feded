#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

[[noreturn]] inline void ThrowRecordEnds() {
    throw XReadStream(TTranslatedString("Tamanho de registro corrompido").Text(),
                      "TZoClass::LoadFromStreamPre");
}

/// Throws unless the record still holds that many bytes.
inline void CheckBytes(const TBinInStream& stream, unsigned size) {
    if (stream.GetRemaining() < size) ThrowRecordEnds();
}

/// Throws unless the record still holds `count` items of at least `itemSize` bytes each, and `count` is none
/// negative.
inline void CheckRemaining(const TBinInStream& stream, int count, unsigned itemSize) {
    if (count < 0 || static_cast<unsigned>(count) > stream.GetRemaining() / itemSize) ThrowRecordEnds();
}

} // namespace ZoPrimitives
