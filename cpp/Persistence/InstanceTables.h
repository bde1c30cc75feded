#pragma once

#include "Persistence/UidTable.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinUnresolved.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// What an input stream knows of the objects read from it.
struct InstanceTables {
    struct Excluded {
        TZoClassField* field;
        unsigned recordPosition;
    };

    std::vector<int> uids; // of `objects`, in the same order
    bool uidsRise = true;
    UidTable handles;
    std::vector<Excluded> excluded;
    std::size_t firstExcluded = 0; // those before it were removed

    /// Notes an object under the uid of the current record.
    static void Add(TBinInStream& stream, ZoStreamableBase* object) {
        std::vector<int>& uids = stream.tables->uids;
        if (!uids.empty() && uids.back() > stream.currentUid) stream.tables->uidsRise = false;
        uids.push_back(stream.currentUid);
        try {
            stream.objects.TDVector<ZoStreamableBase*>::Add(object);
        } catch (...) {
            uids.pop_back();
            throw;
        }
    }
    /// Takes the objects that `isRemoved` is true for out of the list. Needs no memory.
    template <class IsRemoved>
    static void RemoveIf(TBinInStream& stream, IsRemoved isRemoved) noexcept {
        std::vector<int>& uids = stream.tables->uids;
        ZoStreamableBase** objects = stream.objects.data();
        std::size_t kept = 0;
        for (std::size_t i = 0; i < uids.size(); ++i) {
            if (isRemoved(objects[i])) continue;
            objects[kept] = objects[i];
            uids[kept++] = uids[i];
        }
        for (std::size_t left = uids.size() - kept; left > 0; --left) stream.objects.RemoveLast();
        uids.resize(kept);
    }
    /// The objects read; the stream forgets them and everything about them.
    static TDVector<ZoStreamableBase*> Take(TBinInStream& stream) noexcept {
        TDVector<ZoStreamableBase*> objects(std::move(stream.objects));
        stream.ForgetInstances();
        return objects;
    }

    static void SetHandle(TBinInStream& stream, ZoStreamableBase* object, int uid) {
        stream.tables->handles.Set(uid, object);
    }
    static void ForgetExcluded(TBinInStream& stream) noexcept {
        stream.tables->excluded.clear();
        stream.tables->firstExcluded = 0;
    }
    static void ReserveExcluded(TBinInStream& stream, std::size_t count) {
        stream.tables->excluded.reserve(count);
    }
    /// Forgets what refers to the file's schema or serves the resolving.
    static void EndReading(TBinInStream& stream) noexcept {
        ForgetExcluded(stream);
        stream.tables->handles.Clear();
        stream.unresolved->Clear();
    }
};

} // namespace ZoPrimitives
