#pragma once

#include "Platform/Compiler.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoStreamable.h"

#include <climits>

namespace ZoPrimitives {

/// The handle table's inner loop, inline for the streamers.
class HandleAccess {
public:
    /// Fetches what the others touch of an object ahead of them; it may lie on two lines of the cache.
    static void Fetch(const ZoStreamableBase* object) noexcept {
        Prefetch(object);
        Prefetch(&object->handle + 1);
    }
    static int Get(const ZoHandleTable& table, const ZoStreamableBase* object) {
        if (object->handleRun == table.run && table.run != 0) return object->handle;
        return table.shared == nullptr ? 0 : table.GetShared(object);
    }
    static int Get(const TBinOutStream& stream, const ZoStreamableBase* object) {
        return Get(stream.handles, object);
    }
    static void Set(ZoHandleTable& table, const ZoStreamableBase* object, int handle) {
        // Runs below `endedBefore` ended before this one began; no other table uses their handles.
        if (table.run != 0 && (object->handleRun == table.run || object->handleRun < table.endedBefore)) {
            Put(object, table.run, handle);
        } else {
            SetNew(table, object, handle);
        }
    }

    /// The number of the stream's run, which ends when its handles are reset; 0: none has begun.
    static std::uint64_t RunOf(const TBinOutStream& stream) { return stream.handles.run; }
    /// The smallest uid that no object of the stream has.
    static long long FirstNew(const TBinOutStream& stream) {
        return stream.handles.next == INT_MAX ? INT_MAX + 1LL : stream.handles.next;
    }

    /// Gives the next handle to an object that has none.
    static void Give(ZoHandleTable& table, const ZoStreamableBase* object) {
        if (table.next == INT_MAX) ZoHandleTable::Refuse();
        Set(table, object, table.next++);
    }
    static void Give(TBinOutStream& stream, const ZoStreamableBase* object) { Give(stream.handles, object); }

    static std::uint64_t Run(const ZoStreamableBase* object) { return object->handleRun; }
    static void Put(const ZoStreamableBase* object, std::uint64_t run, int handle) {
        object->handleRun = run & RUN_BITS;
        object->handle = handle;
    }

private:
    // At a million runs a second a process would take twelve days to use them up.
    static constexpr std::uint64_t RUN_BITS = (std::uint64_t{1} << 40) - 1;

    static void SetNew(ZoHandleTable& table, const ZoStreamableBase* object, int handle);
};

} // namespace ZoPrimitives
