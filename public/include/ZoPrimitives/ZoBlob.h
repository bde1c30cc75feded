#pragma once

#include "ZoPrimitives/ZoObject.h"

namespace ZoPrimitives {

/// An owned sequence of bytes. Throws `std::bad_alloc` without memory for it; the blob is then unchanged.
class ZO_API ZoBlob : public ZoObject {
public:
    ZoBlob() noexcept = default;
    /// `size` zero bytes; untouched pages take no memory.
    explicit ZoBlob(unsigned long long size);
    /// Copies `size` bytes; a null `data` gives the empty blob.
    ZoBlob(const void* data, unsigned long long size);
    ZoBlob(const ZoBlob& other);
    ZoBlob(ZoBlob&& other) noexcept;
    ~ZoBlob() override;

    ZoBlob& operator=(const ZoBlob& other);
    ZoBlob& operator=(ZoBlob&& other) noexcept;

    /// In bytes.
    unsigned long long Size() const noexcept { return size; }
    /// May be null when the blob is empty.
    const void* Data() const noexcept { return bytes; }
    void* Data() noexcept { return bytes; }

    /// A blob that takes over a block on the C heap.
    static ZoBlob TakeOver(void* block, unsigned long long size) noexcept;

    /// Copies `size` bytes, which may lie in this blob, reusing its memory where possible.
    void Assign(const void* data, unsigned long long size);

    friend bool operator==(const ZoBlob& a, const ZoBlob& b) noexcept { return a.SameBytes(b); }
    friend bool operator!=(const ZoBlob& a, const ZoBlob& b) noexcept { return !a.SameBytes(b); }
    /// False when `other` is not a `ZoBlob`.
    bool operator==(const ZoObject& other) const override;

private:
    bool SameBytes(const ZoBlob& other) const noexcept;

    unsigned char* bytes = nullptr; // allocated with malloc
    unsigned long long size = 0;
    unsigned long long capacity = 0;
};

} // namespace ZoPrimitives
