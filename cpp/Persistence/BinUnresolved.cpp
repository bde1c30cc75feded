#include "ZoPrimitives/BinUnresolved.h"

#include "Persistence/RecordChecks.h"
#include "ZoPrimitives/BinInStream.h"

#include <algorithm>

namespace ZoPrimitives {

TBinUnresolvedPointers::TBinUnresolvedPointers() = default;
TBinUnresolvedPointers::~TBinUnresolvedPointers() = default;

void TBinUnresolvedPointers::LoadPointers([[maybe_unused]] TZoClassField* field, int count,
                                          TBinInStream* stream) {
    CheckRemaining(*stream, count, sizeof(std::int32_t));
    uids.push_back(count);
    for (int i = 0; i < count; ++i) {
        int uid = 0;
        *stream >> uid;
        uids.push_back(uid);
    }
}

const TBinUnresolved* TBinUnresolvedPointers::Find(int uid) const {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [uid](const TBinUnresolved& entry) { return entry.uid == uid; });
    return found == entries.end() ? nullptr : &*found;
}

void TBinUnresolvedPointers::Clear() {
    entries = {};
    uids = {};
}

} // namespace ZoPrimitives
