#include "ZoPrimitives/MemoryBinInStream.h"

#include <cstdlib>
#include <typeinfo>

namespace ZoPrimitives {

TMemoryBinInStream::TMemoryBinInStream(const void* sourceBlock, unsigned long long size,
                                       unsigned supportedVersion, bool ownsSource)
    : TBinInStream(supportedVersion, ownsSource), block(sourceBlock) {
    static const unsigned char nothing = 0;
    if (block == nullptr) {
        SetWindow(&nothing, &nothing);
    } else {
        const auto* begin = static_cast<const unsigned char*>(block);
        SetWindow(begin, begin + size);
    }
}

TMemoryBinInStream::~TMemoryBinInStream() {
    if (GetOwnsSource()) std::free(const_cast<void*>(block));
}

void TMemoryBinInStream::Initialize() {
    SetWindowPosition(0);
    SetAsksRead(!TMemoryBinInStream::GetsDirectly());
    ReadHeader("TMemoryBinInStream::TMemoryBinInStream");
}

bool TMemoryBinInStream::GetsDirectly() const { return typeid(*this) == typeid(TMemoryBinInStream); }

bool TMemoryBinInStream::Read(void* data, unsigned size, unsigned& done) {
    return ReadWindow(data, size, done);
}

std::unique_ptr<TMemoryBinInStream> CreateMemoryBinInStream(const void* block, unsigned long long size,
                                                            unsigned supportedVersion) {
    auto stream = std::make_unique<TMemoryBinInStream>(block, size, supportedVersion);
    stream->Initialize();
    return stream;
}

} // namespace ZoPrimitives
