#pragma once

#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoObject.h"

#include <cstddef>
#include <type_traits>
#include <typeinfo>

namespace ZoPrimitives {

template <class T>
class crossRef;

/// Counted reference to an object of class `T`, which derives from `ZoObject`. The last one deletes the
/// object.
///
/// The count lives in the object, so a plain pointer can become a `pointer` again. An object that is not on
/// the heap must never be handed to one. `T` must be complete where a `pointer<T>` is copied or destroyed.
template <class T>
class pointer {
public:
    using ObjectType = T;

    pointer() noexcept = default;
    pointer(std::nullptr_t) noexcept {}
    pointer(T* target) noexcept : object(target) { ZoReferenceCount::Add(Counted(object)); }
    pointer(const pointer& other) noexcept : pointer(other.object) {}
    pointer(pointer&& other) noexcept : object(other.object) { other.object = nullptr; }
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    pointer(const pointer<U>& other) noexcept : pointer(other.get()) {}
    ~pointer() { ZoReferenceCount::Release(Counted(object)); }

    pointer& operator=(const pointer& other) noexcept {
        reset(other.object);
        return *this;
    }
    pointer& operator=(pointer&& other) noexcept {
        T* previous = object;
        object = other.object;
        if (this != &other) {
            other.object = nullptr;
            ZoReferenceCount::Release(Counted(previous));
        }
        return *this;
    }
    pointer& operator=(T* target) noexcept {
        reset(target);
        return *this;
    }

    void reset(T* target = nullptr) noexcept {
        ZoReferenceCount::Add(Counted(target));
        T* previous = object;
        object = target;
        ZoReferenceCount::Release(Counted(previous));
    }

    /// The object or null; never asserts.
    T* get() const noexcept { return object; }
    T* operator->() const { return Checked(); }
    T& operator*() const { return *Checked(); }
    explicit operator bool() const noexcept { return object != nullptr; }

    friend bool operator==(const pointer& a, const pointer& b) noexcept { return a.object == b.object; }
    friend bool operator!=(const pointer& a, const pointer& b) noexcept { return a.object != b.object; }
    friend bool operator==(const pointer& a, const T* b) noexcept { return a.object == b; }
    friend bool operator!=(const pointer& a, const T* b) noexcept { return a.object != b; }
    friend bool operator==(const T* a, const pointer& b) noexcept { return a == b.object; }
    friend bool operator!=(const T* a, const pointer& b) noexcept { return a != b.object; }
    friend bool operator==(const pointer& a, std::nullptr_t) noexcept { return a.object == nullptr; }
    friend bool operator!=(const pointer& a, std::nullptr_t) noexcept { return a.object != nullptr; }

private:
    static const ZoObject* Counted(const T* target) noexcept {
        constexpr bool counts = std::is_base_of_v<ZoObject, T>;
        static_assert(counts, "pointer holds objects of classes that derive from ZoObject");
        if constexpr (counts) return target;
        return nullptr;
    }
    T* Checked() const {
        if (object == nullptr) ZoFailNull(__LINE__, "pointer", typeid(T));
        return object;
    }

    T* object = nullptr;
};

/// Non-owning companion of `pointer`. It does not keep its object alive and is not told when it is deleted,
/// so it must not outlive it. `T` may be incomplete. Dereferencing an empty one fails the assertion "object".
template <class T>
class crossRef {
public:
    using ObjectType = T;

    crossRef() noexcept = default;
    crossRef(std::nullptr_t) noexcept {}
    crossRef(T* target) noexcept : object(target) {}
    crossRef(const pointer<T>& target) noexcept : object(target.get()) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    crossRef(const pointer<U>& target) noexcept : object(target.get()) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    crossRef(const crossRef<U>& target) noexcept : object(target.get()) {}

    T* get() const noexcept { return object; }
    T* operator->() const { return Checked(); }
    T& operator*() const { return *Checked(); }
    explicit operator bool() const noexcept { return object != nullptr; }

    friend bool operator==(const crossRef& a, const crossRef& b) noexcept { return a.object == b.object; }
    friend bool operator!=(const crossRef& a, const crossRef& b) noexcept { return a.object != b.object; }
    friend bool operator==(const crossRef& a, const T* b) noexcept { return a.object == b; }
    friend bool operator!=(const crossRef& a, const T* b) noexcept { return a.object != b; }
    friend bool operator==(const crossRef& a, std::nullptr_t) noexcept { return a.object == nullptr; }
    friend bool operator!=(const crossRef& a, std::nullptr_t) noexcept { return a.object != nullptr; }

private:
    T* Checked() const {
        if (object == nullptr) ZoFailNull(__LINE__, "crossRef", typeid(T*));
        return object;
    }

    T* object = nullptr;
};

} // namespace ZoPrimitives
