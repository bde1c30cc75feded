#include "ZoPrimitives/ZoObject.h"

#include "ZoPrimitives/DestructionHold.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace ZoPrimitives {

namespace {
// Marks an object under destruction, which its own destructor or a neighbour's may hold and release again:
// balanced holds never return such a count to zero.
constexpr std::uint32_t DYING = 0x80000000u;

constexpr std::uintptr_t KEPT = 1; // addresses of objects are even

thread_local std::vector<const ZoObject*>* waiting = nullptr;
thread_local DestructionHold* innermostHold = nullptr;

/// Returns the heap's unused memory to the system after many deletions.
void NoteEnded(std::size_t objects) noexcept {
    constexpr std::size_t MANY = 100'000;
    thread_local std::size_t ended = 0;
    ended += objects;
    if (ended < MANY) return;
    ended = 0;
    ZoTrimMemory();
}
} // namespace

ZoObject::~ZoObject() = default;

bool ZoObject::operator==(const ZoObject& other) const { return this == &other; }

bool ZoObject::operator!=(const ZoObject& other) const { return !(*this == other); }

DestructionHold::DestructionHold(const KeptObjects& kept) noexcept : kept(kept), outer(innermostHold) {
    innermostHold = this;
}

void DestructionHold::End() noexcept {
    if (!standing) return;
    standing = false;
    innermostHold = outer;
    std::vector<std::uintptr_t> objects = std::move(noted);
    std::sort(objects.begin(), objects.end());
    objects.erase(std::unique(objects.begin(), objects.end()), objects.end());
    class Mark final : public KeptObjects::Action {
    public:
        explicit Mark(std::vector<std::uintptr_t>& sorted) : all(sorted) {}
        void operator()(const ZoObject* object) override {
            const auto address = reinterpret_cast<std::uintptr_t>(object);
            const auto found = std::lower_bound(all.begin(), all.end(), address);
            if (found != all.end() && *found == address) *found |= KEPT;
        }

    private:
        std::vector<std::uintptr_t>& all;
    };
    Mark mark(objects);
    if (!objects.empty()) kept.ForEach(mark);
    const auto forTheOthers = [&objects](void (*act)(const ZoObject*)) {
        for (const std::uintptr_t address : objects) {
            if ((address & KEPT) == 0) act(reinterpret_cast<const ZoObject*>(address));
        }
    };
    // Hold all first, so that none is deleted with another before its turn.
    forTheOthers([](const ZoObject* object) { ZoReferenceCount::Add(object); });
    forTheOthers([](const ZoObject* object) { ZoReferenceCount::Release(object); });
}

bool DestructionHold::Knows(const ZoObject* object) const noexcept {
    class Search final : public KeptObjects::Action {
    public:
        explicit Search(const ZoObject* object) : wanted(object) {}
        void operator()(const ZoObject* one) override { found = found || one == wanted; }
        const ZoObject* wanted;
        bool found = false;
    };
    if (std::find(noted.begin(), noted.end(), reinterpret_cast<std::uintptr_t>(object)) != noted.end())
        return true;
    Search search(object);
    kept.ForEach(search);
    return search.found;
}

bool DestructionHold::Takes(const ZoObject* object) noexcept {
    try {
        noted.push_back(reinterpret_cast<std::uintptr_t>(object));
        return true;
    } catch (const std::bad_alloc&) {
        for (const DestructionHold* hold = this; hold != nullptr; hold = hold->outer) {
            if (hold->Knows(object)) return true;
        }
        return false;
    }
}

void ZoReferenceCount::Destroy(const ZoObject* object) noexcept {
    if (innermostHold != nullptr && innermostHold->Takes(object)) return;
    object->references = DYING;
    if (waiting != nullptr) {
        try {
            waiting->push_back(object);
        } catch (const std::bad_alloc&) {
            delete object;
        }
        return;
    }
    std::vector<const ZoObject*> list;
    waiting = &list;
    delete object;
    std::size_t ended = 1;
    for (; !list.empty(); ++ended) {
        const ZoObject* next = list.back();
        list.pop_back();
        delete next;
    }
    waiting = nullptr;
    NoteEnded(ended);
}

} // namespace ZoPrimitives
