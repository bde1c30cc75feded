#pragma once

#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoStreamable.h"

namespace ZoPrimitives {

/// The handle table's inner loop, inline for the streamers.
class HandleAccess {
public:
    static int Get(const ZoHandleTable& table, const ZoStreamableBase* object) {
        if (object->handleRun == table.run && table.run != 0) return object->handle;
        return table.shared == nullptr ? 0 : table.GetShared(object);
    }
    static void Set(ZoHandleTable& table, const ZoStreamableBase* object, int handle) {
        if (table.run != 0 && object->handleRun == table.run) {
            object->handle = handle;
        } else {
            SetNew(table, object, handle);
        }
    }

    static std::uint64_t Run(const ZoStreamableBase* object) { return object->handleRun; }
    static void Put(const ZoStreamableBase* object, std::uint64_t run, int handle) {
        object->handleRun = run;
        object->handle = handle;
    }

private:
    static void SetNew(ZoHandleTable& table, const ZoStreamableBase* object, int handle);
};

} // namespace ZoPrimitives
