#pragma once

#include "Persistence/UidTable.h"
#include "ZoPrimitives/BinInStream.h"

#include <cstddef>
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
        InstanceTables& tables = *stream.tables;
        stream.objects.TDVector<ZoStreamableBase*>::Add(object);
        if (!tables.uids.empty() && tables.uids.back() > stream.currentUid) tables.uidsRise = false;
        tables.uids.push_back(stream.currentUid);
    }
    static void SetHandle(TBinInStream& stream, ZoStreamableBase* object, int uid) {
        stream.tables->handles.Set(uid, object);
    }
    static void ForgetExcluded(TBinInStream& stream) {
        stream.tables->excluded.clear();
        stream.tables->firstExcluded = 0;
    }
};

} // namespace ZoPrimitives
