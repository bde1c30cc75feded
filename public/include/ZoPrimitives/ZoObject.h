#pragma once

#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/ZoMemory.h"

#include <cstdint>
#include <new>

namespace ZoPrimitives {

/// Small polymorphic root of the library's classes.
///
/// Its only field counts the `pointer`s that hold the object. The count belongs to the object's address, not
/// to its value: copies start at zero and assignment does not change it. Not guarded.
class ZO_API ZoObject {
public:
    ZoObject() noexcept : references(0) {}
    ZoObject(const ZoObject&) noexcept : references(0) {}
    ZoObject& operator=(const ZoObject&) noexcept { return *this; }
    virtual ~ZoObject();

    // Objects created with `new` are in the library's own heap, whichever module creates or destroys them.
    static void* operator new(std::size_t size) { return ZoAllocate(size); }
    static void* operator new(std::size_t size, std::align_val_t alignment) {
        return ZoAllocateAligned(size, static_cast<std::size_t>(alignment));
    }
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
        try {
            return ZoAllocate(size);
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* object) noexcept { ZoFree(object); }
    static void operator delete(void* object, std::align_val_t) noexcept { ZoFree(object); }
    static void operator delete(void* object, const std::nothrow_t&) noexcept { ZoFree(object); }
    static void operator delete(void*, void*) noexcept {}

    /// Compares identity; value classes override it to compare values.
    virtual bool operator==(const ZoObject& other) const;
    /// Negates the most derived `operator==`.
    virtual bool operator!=(const ZoObject& other) const;

private:
    friend struct ZoReferenceCount;
    mutable std::uint32_t references;
};

/// The reference count as `pointer` uses it. Objects may be null, except in `Count`.
struct ZoReferenceCount {
    static void Add(const ZoObject* object) noexcept {
        if (object != nullptr) ++object->references;
    }
    /// Deletes the object when its last reference goes. Objects that its destructor releases are queued, so
    /// that a chain of any length is released without recursion.
    static void Release(const ZoObject* object) noexcept {
        if (object != nullptr && --object->references == 0) Destroy(object);
    }
    /// Drops a reference but keeps an object without references alive for its new owner.
    static void Surrender(const ZoObject* object) noexcept {
        if (object != nullptr) --object->references;
    }
    static std::uint32_t Count(const ZoObject* object) noexcept { return object->references; }

private:
    ZO_API static void Destroy(const ZoObject* object) noexcept;
};

} // namespace ZoPrimitives
