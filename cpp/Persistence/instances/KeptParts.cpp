#include "Persistence/instances/KeptParts.h"

#include <mutex>
#include <unordered_map>

namespace ZoPrimitives {

ZoStreamableBase* KeptFile::Find(int uid) const {
    const auto* found = AtUid(objects, uid);
    return found == nullptr ? nullptr : found->second->object;
}

struct KeptParts::Entry {
    std::shared_ptr<KeptAnchor> anchor;
    std::unique_ptr<const KeptPart> part;
};

/// Objects of several threads share it.
class KeptParts::Table {
public:
    static Table& Get() {
        static Table* table = new Table; // outlives every object
        return *table;
    }
    template <class Action>
    auto With(const ZoStreamableBase& object, Action action) {
        const std::lock_guard<std::mutex> lock(guard);
        return action(entries[&object]);
    }
    std::unique_ptr<const KeptPart> TakePart(const ZoStreamableBase& object) {
        const std::lock_guard<std::mutex> lock(guard);
        const auto found = entries.find(&object);
        return found == entries.end() ? nullptr : std::move(found->second.part);
    }
    Entry Take(const ZoStreamableBase& object) {
        const std::lock_guard<std::mutex> lock(guard);
        const auto found = entries.find(&object);
        if (found == entries.end()) return {};
        Entry taken = std::move(found->second);
        entries.erase(found);
        return taken;
    }

private:
    std::mutex guard;
    std::unordered_map<const ZoStreamableBase*, Entry> entries;
};

const KeptPart* KeptParts::Find(const ZoStreamableBase& object) {
    if (!Has(object)) return nullptr;
    return Table::Get().With(object, [](const Entry& entry) { return entry.part.get(); });
}

void KeptParts::Set(ZoStreamableBase& object, std::unique_ptr<const KeptPart> part) {
    // The part that was there ends outside the lock.
    Table::Get().With(object, [&](Entry& entry) {
        object.kept = 1;
        entry.part.swap(part);
    });
}

void KeptParts::Drop(const ZoStreamableBase& object) noexcept {
    const auto ended = Table::Get().TakePart(object);
}

std::shared_ptr<const KeptAnchor> KeptParts::AnchorOf(ZoStreamableBase& object) {
    return Table::Get().With(object, [&](Entry& entry) -> std::shared_ptr<const KeptAnchor> {
        object.kept = 1;
        if (entry.anchor == nullptr) entry.anchor = std::make_shared<KeptAnchor>(KeptAnchor{&object});
        return entry.anchor;
    });
}

void KeptParts::End(const ZoStreamableBase& object) noexcept {
    // The part ends last: what it owns may refer to the object, and has entries of its own.
    const Entry ended = Table::Get().Take(object);
    if (ended.anchor != nullptr) ended.anchor->object = nullptr;
}

} // namespace ZoPrimitives
