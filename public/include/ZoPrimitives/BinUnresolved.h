#pragma once

#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/ZoMemory.h"

#include <cstddef>
#include <cstdint>

namespace ZoPrimitives {

class TBinInStream;
class TZoClass;
class TZoClassField;
class ZoStreamableBase;

/// An object whose pointers are still uids.
struct TBinUnresolved {
    ZoStreamableBase* object;
    TZoClass* fileClass; ///< the file's class of the record
    int uid;
    std::size_t firstUid; ///< where the object's uids begin in `TBinUnresolvedPointers`
};

/// The uids in the pointer fields of all objects read, in one flat array: for each field, in reading order,
/// one uid, or a count and that many uids.
class ZO_API TBinUnresolvedPointers {
public:
    TBinUnresolvedPointers();
    ~TBinUnresolvedPointers();

    /// Opens the entry of the object to be read next.
    void Open(ZoStreamableBase* object, int uid, TZoClass* fileClass) {
        entries.push_back({object, fileClass, uid, used});
    }
    /// Removes the entry opened last, with its pointers.
    void DropLast() {
        used = entries.back().firstUid;
        entries.pop_back();
    }
    /// Adds a single pointer to the entry opened last.
    void LoadPointer([[maybe_unused]] TZoClassField* field, int uid) {
        if (used == capacity) Grow(used + 1);
        uids[used++] = uid;
    }
    /// Adds a list of `count` pointers and reads their uids. Throws `XReadStream` if there are fewer.
    void LoadPointers(TZoClassField* field, int count, TBinInStream* stream);
    /// As above; `take` supplies one uid a call. The caller has checked that there are `count`.
    template <class Take>
    void TakePointers(TZoClassField* field, int count, const Take& take) {
        LoadPointer(field, count);
        for (int i = 0; i < count; ++i) {
            int uid = 0;
            take(uid);
            LoadPointer(field, uid);
        }
    }

    const TBinUnresolved* Find(int uid) const;
    ZoVector<TBinUnresolved>& Entries() { return entries; }
    const std::int32_t* Uids() const { return uids; }
    const std::int32_t* UidsEnd() const { return uids + used; }
    void Reserve(std::size_t entryCount) { entries.reserve(entryCount); }
    void Clear() noexcept;

    TBinUnresolvedPointers(const TBinUnresolvedPointers&) = delete;
    TBinUnresolvedPointers& operator=(const TBinUnresolvedPointers&) = delete;

private:
    void Grow(std::size_t needed);

    ZoVector<TBinUnresolved> entries;
    std::int32_t* uids = nullptr;
    std::size_t used = 0;
    std::size_t capacity = 0;
};

} // namespace ZoPrimitives
