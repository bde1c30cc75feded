#pragma once

#include "ZoPrimitives/BinInStream.h"

#include <memory>

namespace ZoPrimitives {

/// Reads records from a block of memory, where they lie. The block must outlive the stream and stay
/// unchanged.
class ZO_API TMemoryBinInStream : public TBinInStream {
public:
    /// `ownsSource`: the block is on the C heap and is freed with the stream. A null block holds nothing.
    TMemoryBinInStream(const void* block, unsigned long long size, unsigned supportedVersion,
                       bool ownsSource = false);
    ~TMemoryBinInStream() override;
    TMemoryBinInStream(const TMemoryBinInStream&) = delete;
    TMemoryBinInStream& operator=(const TMemoryBinInStream&) = delete;

    /// Reads and checks the header, from the start of the block. Throws `XReadStream` or `XNewerVersion`.
    void Initialize();
    bool GetsDirectly() const override;

protected:
    bool Read(void* data, unsigned size, unsigned& done) override;

private:
    const void* block;
};

/// A stream over a block, with its header read.
ZO_API std::unique_ptr<TMemoryBinInStream> CreateMemoryBinInStream(const void* block, unsigned long long size,
                                                                   unsigned supportedVersion);

} // namespace ZoPrimitives
