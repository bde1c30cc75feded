#include "ZoPrimitives/ZoObject.h"

#include "ZoPrimitives/DestructionHold.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace ZoPrimitives {

namespace {
// A dying object may be held and released again by its own destructor or by a neighbour's: from here no
// balanced number of holds brings the count back to zero.
constexpr std::uint32_t DYING = 0x80000000u;

thread_local std::vector<const ZoObject*>* waiting = nullptr;
thread_local DestructionHold* innermostHold = nullptr;
} // namespace

ZoObject::~ZoObject() = default;

bool ZoObject::operator==(const ZoObject& other) const { return this == &other; }

bool ZoObject::operator!=(const ZoObject& other) const { return !(*this == other); }

DestructionHold::DestructionHold() : outer(innermostHold) { innermostHold = this; }

DestructionHold::~DestructionHold() {
    End([](const ZoObject*) { return false; });
}

std::vector<const ZoObject*> DestructionHold::Lift() {
    if (!standing) return {};
    standing = false;
    innermostHold = outer;
    std::sort(noted.begin(), noted.end());
    noted.erase(std::unique(noted.begin(), noted.end()), noted.end());
    return std::exchange(noted, {});
}

void ZoReferenceCount::Destroy(const ZoObject* object) noexcept {
    if (innermostHold != nullptr) {
        try {
            innermostHold->noted.push_back(object);
        } catch (const std::bad_alloc&) {
            // Better never ended than ended too early.
        }
        return;
    }
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
    while (!list.empty()) {
        const ZoObject* next = list.back();
        list.pop_back();
        delete next;
    }
    waiting = nullptr;
}

} // namespace ZoPrimitives
