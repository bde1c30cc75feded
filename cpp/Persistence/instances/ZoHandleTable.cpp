#include "ZoPrimitives/ZoHandleTable.h"

#include "Persistence/instances/HandleAccess.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace ZoPrimitives {

namespace {

/// The runs of all tables of the process that currently hold handles, ascending.
class LiveRuns {
public:
    std::uint64_t Begin(std::uint64_t& endedBefore) {
        const std::lock_guard<std::mutex> lock(guard);
        runs.push_back(last + 1);
        endedBefore = runs.front();
        return ++last;
    }
    void End(std::uint64_t run) noexcept {
        const std::lock_guard<std::mutex> lock(guard);
        runs.erase(std::lower_bound(runs.begin(), runs.end(), run));
    }
    bool IsLive(std::uint64_t run) {
        const std::lock_guard<std::mutex> lock(guard);
        return std::binary_search(runs.begin(), runs.end(), run);
    }

private:
    std::mutex guard;
    std::vector<std::uint64_t> runs;
    std::uint64_t last = 0;
};

LiveRuns& Runs() {
    static LiveRuns* runs = new LiveRuns; // never destroyed: static tables may outlive it
    return *runs;
}

} // namespace

/// Handles of objects whose own slot belongs to another live table.
struct ZoHandleTable::Shared {
    std::unordered_map<const ZoStreamableBase*, int> handles;
};

ZoHandleTable::~ZoHandleTable() { Reset(); }

int ZoHandleTable::Get(const ZoStreamableBase* object) const {
    return object == nullptr ? 0 : HandleAccess::Get(*this, object);
}

void ZoHandleTable::Set(const ZoStreamableBase* object, int handle) {
    if (object == nullptr) return;
    HandleAccess::Set(*this, object, handle);
    if (handle >= next) next = handle == INT_MAX ? INT_MAX : handle + 1;
}

int ZoHandleTable::Give(const ZoStreamableBase* object) {
    HandleAccess::Give(*this, object);
    return next - 1;
}

void ZoHandleTable::Refuse() {
    AssertWithFunctor("nextHandle < INT_MAX && \"[zoerror] too many objects\"", "", ZoSources::BIN_OUT_STREAM,
                      __LINE__);
}

void ZoHandleTable::Reset() {
    if (run != 0) Runs().End(run);
    run = 0;
    next = 1;
    delete shared;
    shared = nullptr;
}

int ZoHandleTable::GetShared(const ZoStreamableBase* object) const {
    const auto found = shared->handles.find(object);
    return found == shared->handles.end() ? 0 : found->second;
}

bool ZoHandleTable::Claim(const ZoStreamableBase* object) {
    if (run == 0) run = Runs().Begin(endedBefore);
    const std::uint64_t other = HandleAccess::Run(object);
    return other == 0 || !Runs().IsLive(other);
}

void HandleAccess::SetNew(ZoHandleTable& table, const ZoStreamableBase* object, int handle) {
    const bool inMap = table.shared != nullptr && table.shared->handles.count(object) != 0;
    if (!inMap && table.Claim(object)) {
        Put(object, table.run, handle);
        return;
    }
    if (table.shared == nullptr) table.shared = new ZoHandleTable::Shared;
    table.shared->handles[object] = handle;
}

} // namespace ZoPrimitives
