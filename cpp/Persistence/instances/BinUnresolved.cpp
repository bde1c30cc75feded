#include "ZoPrimitives/BinUnresolved.h"

#include "Persistence/records/RecordChecks.h"
#include "ZoPrimitives/BinInStream.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace ZoPrimitives {

TBinUnresolvedPointers::TBinUnresolvedPointers() = default;
TBinUnresolvedPointers::~TBinUnresolvedPointers() { std::free(uids); }

void TBinUnresolvedPointers::Grow(std::size_t needed) {
    const std::size_t grown = std::max({needed, 2 * capacity, std::size_t{1024}});
    auto* moved = static_cast<std::int32_t*>(std::realloc(uids, grown * sizeof *uids));
    if (moved == nullptr) throw std::bad_alloc();
    uids = moved;
    capacity = grown;
}

void TBinUnresolvedPointers::LoadPointers(TZoClassField* field, int count, TBinInStream* stream) {
    CheckCount(stream->GetRemaining(), count, sizeof(std::int32_t));
    TakePointers(field, count, [stream](int& uid) { *stream >> uid; });
}

const TBinUnresolved* TBinUnresolvedPointers::Find(int uid) const {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [uid](const TBinUnresolved& entry) { return entry.uid == uid; });
    return found == entries.end() ? nullptr : &*found;
}

void TBinUnresolvedPointers::Clear() noexcept {
    ZoVector<TBinUnresolved>().swap(entries);
    std::free(std::exchange(uids, nullptr));
    used = capacity = 0;
}

} // namespace ZoPrimitives
