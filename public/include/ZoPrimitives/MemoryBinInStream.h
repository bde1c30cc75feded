#pragma once

#include "ZoPrimitives/BinInStream.h"

#include <memory>

namespace ZoPrimitives {

/// Reads records from a block of memory, in place. The block must outlive the stream and must not change.
class ZO_API TMemoryBinInStream : public TBinInStream {
public:
    /// `ownsSource`: the block is on the C heap, and the stream frees it. A null block is empty.
    TMemoryBinInStream(const void* block, unsigned long long size, unsigned supportedVersion,
                       bool ownsSource = false);
    ~TMemoryBinInStream() override;
    TMemoryBinInStream(const TMemoryBinInStream&) = delete;
    TMemoryBinInStream& operator=(const TMemoryBinInStream&) = delete;

    /// Reads the header at the start of the block and checks it. Throws `XReadStream` or `XNewerVersion`.
    void Initialize();
    bool GetsDirectly() const override;

protected:
    bool Read(void* data, unsigned size, unsigned& done) override;

private:
    const void* block;
};

/// Creates a stream over a block and reads its header.
ZO_API std::unique_ptr<TMemoryBinInStream> CreateMemoryBinInStream(const void* block, unsigned long long size,
                                                                   unsigned supportedVersion);

} // namespace ZoPrimitives
