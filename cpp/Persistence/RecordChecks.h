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
template <class Source>
void CheckBytes(const Source& source, unsigned size) {
    if (source.Remaining() < size) ThrowRecordEnds();
}

/// Throws unless the record still holds `count` items of at least `itemSize` bytes each, and `count` is none
/// negative.
template <class Source>
void CheckCount(const Source& source, int count, unsigned itemSize) {
    if (count < 0 || static_cast<unsigned>(count) > source.Remaining() / itemSize) ThrowRecordEnds();
}
inline void CheckRemaining(const TBinInStream& stream, int count, unsigned itemSize) {
    if (count < 0 || static_cast<unsigned>(count) > stream.GetRemaining() / itemSize) ThrowRecordEnds();
}

} // namespace ZoPrimitives
