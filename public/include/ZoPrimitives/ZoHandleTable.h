#pragma once

#include "ZoPrimitives/Export.h"

#include <cstdint>

namespace ZoPrimitives {

class ZoStreamableBase;

/// Handles (uids) that one stream gave to objects.
///
/// An object stores its handle together with the number of the table's current run, so that a look-up is a
/// comparison; only an object that two tables hold at once goes into a map. Objects must outlive the run.
class ZO_API ZoHandleTable {
public:
    ZoHandleTable() noexcept = default;
    /// A copy has no handles.
    ZoHandleTable(const ZoHandleTable&) noexcept {}
    ZoHandleTable& operator=(const ZoHandleTable&) noexcept { return *this; }
    ~ZoHandleTable();

    /// The object's handle; 0 if it has none.
    int Get(const ZoStreamableBase* object) const;
    /// Sets a handle, or removes it (0). `Give` continues after that handle.
    void Set(const ZoStreamableBase* object, int handle);
    /// Gives the next handle, from 1 upward. Fails an assertion when none is left.
    int Give(const ZoStreamableBase* object);
    /// Forgets all handles in constant time and restarts at 1.
    void Reset();

private:
    friend class HandleAccess;
    struct Shared;
    [[noreturn]] static void Refuse();
    bool Claim(const ZoStreamableBase* object);
    int GetShared(const ZoStreamableBase* object) const;

    int next = 1;                  // the next handle to give
    std::uint64_t run = 0;         // unique in the process; 0: nothing was set since the last Reset
    std::uint64_t endedBefore = 0; // all runs below it had ended when this one began
    Shared* shared = nullptr;
};

} // namespace ZoPrimitives
