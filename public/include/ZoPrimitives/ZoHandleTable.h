#pragma once

#include "ZoPrimitives/Export.h"

#include <cstdint>

namespace ZoPrimitives {

class ZoStreamableBase;

/// Handles (uids) that one stream gave to objects.
///
/// A handle stands in the object itself, beside the number of the table's current run, so that finding it is
/// a comparison; only an object that two tables hold at once goes to a map. Objects must outlive the run.
class ZO_API ZoHandleTable {
public:
    ZoHandleTable() noexcept = default;
    /// Handles are not copied.
    ZoHandleTable(const ZoHandleTable&) noexcept {}
    ZoHandleTable& operator=(const ZoHandleTable&) noexcept { return *this; }
    ~ZoHandleTable();

    /// 0 when the object has none.
    int Get(const ZoStreamableBase* object) const;
    /// `Give` goes on behind the handle; 0 takes the object's away.
    void Set(const ZoStreamableBase* object, int handle);
    /// Gives the next handle, from 1 upward. An assertion fails when there is none left.
    int Give(const ZoStreamableBase* object);
    /// Forgets all handles, in constant time, and begins at 1 again.
    void Reset();

private:
    friend class HandleAccess;
    struct Shared;
    [[noreturn]] static void Refuse();
    bool Claim(const ZoStreamableBase* object);
    int GetShared(const ZoStreamableBase* object) const;

    int next = 1;                  // to be given
    std::uint64_t run = 0;         // unique in the process; 0: nothing was set since the last Reset
    std::uint64_t endedBefore = 0; // runs below it had ended when this one began
    Shared* shared = nullptr;
};

} // namespace ZoPrimitives
