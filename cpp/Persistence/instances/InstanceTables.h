#pragma once

#include "Persistence/instances/LostReferences.h"
#include "Persistence/instances/UidTable.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/dvector.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// Fields of the current record that the application's class lacks, with their positions in the record.
class ExcludedFields {
public:
    struct Entry {
        TZoClassField* field;
        unsigned recordPosition;
    };

    void Add(TZoClassField* field, unsigned recordPosition) { entries.push_back({field, recordPosition}); }
    /// `position`: where the record is read next. The field was taken if that is no longer its beginning.
    void Remove(TZoClassField* field, unsigned position);
    bool WasTaken(const TZoClassField* field) const {
        return std::find(taken.begin(), taken.end(), field) != taken.end();
    }
    /// The first one left; null when none is left.
    const Entry* First() const { return first == entries.size() ? nullptr : &entries[first]; }
    void Reserve(std::size_t count) { entries.reserve(count); }
    void Clear() noexcept {
        entries.clear();
        taken.clear();
        first = 0;
    }

private:
    std::vector<Entry> entries;
    std::vector<const TZoClassField*> taken;
    std::size_t first = 0; // entries before it were removed
};

/// What is to be done once the objects of some uids are there.
class AwaitedObjects {
public:
    void Add(int uid, std::unique_ptr<ZoStreamableBaseFunctor> action) {
        entries.push_back({uid, std::move(action)});
    }
    /// Calls all in the order in which they were added.
    void Call(const TBinInStream& stream);
    void Clear() noexcept { entries.clear(); }

private:
    struct Entry {
        int uid;
        std::unique_ptr<ZoStreamableBaseFunctor> action;
    };
    std::vector<Entry> entries;
};

/// The objects that an input stream has read, with its look-up tables.
class InstanceTables {
public:
    static InstanceTables& Of(const TBinInStream& stream) { return *stream.instances; }

    /// The objects read, in record order.
    const TDVector<ZoStreamableBase*>& Objects() const { return objects; }
    void Add(ZoStreamableBase* object, int uid);
    /// The first object read under the uid; null if there is none.
    ZoStreamableBase* Find(int uid) const;
    /// Removes the objects for which `isRemoved` returns true. Allocates nothing.
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
    /// Returns the objects read and forgets them and their tables.
    TDVector<ZoStreamableBase*> Take() noexcept;
    void Reserve(std::size_t count);
    /// Forgets references to the file's schema and tables that only serve to resolve pointers.
    void EndReading() noexcept;
    void Forget() noexcept;

    UidTable handles;
    TBinUnresolvedPointers unresolved;
    ExcludedFields excluded; // of the current record
    std::unordered_set<const TZoClassField*>
        takenFields;             // excluded ones whose values an object took after all
    std::vector<int> passedUids; // in the excluded fields of all records; 0 too
    AwaitedObjects awaited;
    LostReferences lost;

private:
    TDVector<ZoStreamableBase*> objects;
    ZoVector<int> uids; // of `objects`, in the same order
    bool uidsRise = true;
};

} // namespace ZoPrimitives
