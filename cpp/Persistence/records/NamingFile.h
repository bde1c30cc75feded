#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

/// Does work on a stream; its exceptions name the stream's file.
template <class Work>
void NamingFile(const TBinInStream& stream, Work work) {
    try {
        work();
    } catch (XStream& failure) {
        failure.SetPath(stream.GetFilePath());
        throw;
    }
}

} // namespace ZoPrimitives
