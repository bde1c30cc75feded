#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

/// Throws unless the record still holds `count` items of at least `itemSize` bytes each, and `count` is none
/// negative.
inline void CheckRemaining(const TBinInStream& stream, int count, unsigned itemSize) {
    if (count < 0 || static_cast<unsigned>(count) > stream.GetRemaining() / itemSize) {
        throw XReadStream(TTranslatedString("Tamanho de registro corrompido").Text(),
                          "TZoClass::LoadFromStreamPre");
    }
}

} // namespace ZoPrimitives
