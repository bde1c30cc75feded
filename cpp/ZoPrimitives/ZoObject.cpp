#include "ZoPrimitives/ZoObject.h"

#include <new>
#include <vector>

namespace ZoPrimitives {

namespace {
// A dying object may be held and released again by its own destructor or by a neighbour's: from here no
// balanced number of holds brings the count back to zero.
constexpr std::uint32_t DYING = 0x80000000u;

thread_local std::vector<const ZoObject*>* waiting = nullptr;
} // namespace

ZoObject::~ZoObject() = default;

bool ZoObject::operator==(const ZoObject& other) const { return this == &other; }

bool ZoObject::operator!=(const ZoObject& other) const { return !(*this == other); }

void ZoReferenceCount::Destroy(const ZoObject* object) noexcept {
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
