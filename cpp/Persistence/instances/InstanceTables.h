#pragma once

#include "Persistence/instances/UidTable.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/dvector.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// Fields of a record that its class does not have, each with its place in the record.
class ExcludedFields {
public:
    struct Entry {
        TZoClassField* field;
        unsigned recordPosition;
    };

    void Add(TZoClassField* field, unsigned recordPosition) { entries.push_back({field, recordPosition}); }
    void Remove(TZoClassField* field);
    /// The first one left; null when none is left.
    const Entry* First() const { return first == entries.size() ? nullptr : &entries[first]; }
    void Reserve(std::size_t count) { entries.reserve(count); }
    void Clear() noexcept {
        entries.clear();
        first = 0;
    }

private:
    std::vector<Entry> entries;
    std::size_t first = 0; // those before it were removed
};

/// What an input stream knows of the objects read from it.
class InstanceTables {
public:
    static InstanceTables& Of(const TBinInStream& stream) { return *stream.instances; }

    /// The objects read, in the order of their records.
    const TDVector<ZoStreamableBase*>& Objects() const { return objects; }
    void Add(ZoStreamableBase* object, int uid);
    /// The first object read under the uid; null for none.
    ZoStreamableBase* Find(int uid) const;
    /// Takes the objects that `isRemoved` is true for out of the list. Needs no memory.
    template <class IsRemoved>
    void RemoveIf(IsRemoved isRemoved) noexcept {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < uids.size(); ++i) {
            if (isRemoved(objects.data()[i])) continue;
            objects.data()[kept] = objects.data()[i];
            uids[kept++] = uids[i];
        }
        for (std::size_t left = uids.size() - kept; left > 0; --left) objects.RemoveLast();
        uids.resize(kept);
    }
    /// The objects read; they and everything about them are forgotten here.
    TDVector<ZoStreamableBase*> Take() noexcept;
    void Reserve(std::size_t count);
    /// Forgets what refers to the file's schema or serves the resolving of pointers.
    void EndReading() noexcept;
    void Forget() noexcept;

    UidTable handles;
    TBinUnresolvedPointers unresolved;
    ExcludedFields excluded; // of the current record

private:
    TDVector<ZoStreamableBase*> objects;
    std::vector<int> uids; // of `objects`, in the same order
    bool uidsRise = true;
};

} // namespace ZoPrimitives
