#pragma once

#include "ZoPrimitives/ParallelFind.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/pointer.h"
#include "ZoPrimitives/xContainer.h"

#include <cstddef>
#include <memory>
#include <typeinfo>
#include <utility>
#include <vector>

// Shared by all containers of objects. Positions count from 1; an access outside 1 to `NItems()` fails the
// assertion "index >= 1 && index <= NItems()". Items may be null. Containers are not guarded: use each on one
// thread at a time.

namespace ZoPrimitives {

/// Interface for collecting objects of class `T`.
template <class T>
class TIAccumulator : public ZoObject {
public:
    using ObjectType = T;

    virtual void Add(T* object) = 0;
    virtual bool Remove(const T* object) = 0;
    virtual bool Contains(const T* object) const = 0;
    virtual unsigned long long NItems() const = 0;
    virtual void RemoveAll() = 0;
};

/// The holders of a container's objects, in one contiguous array. Pointers and references to holders stay
/// valid until objects are added or removed.
template <class T, class P = pointer<T>>
class TIContainer : public TIAccumulator<T> {
public:
    using PointerType = P;

    unsigned long long NItems() const override { return items.size(); }
    /// Keeps the capacity. Deletes objects that nothing else holds.
    void RemoveAll() override { ZoClearElements<P>(items); }

    P* data() noexcept { return items.data(); }
    const P* data() const noexcept { return items.data(); }
    P* begin() noexcept { return items.data(); }
    const P* begin() const noexcept { return items.data(); }
    P* end() noexcept { return items.data() + items.size(); }
    const P* end() const noexcept { return items.data() + items.size(); }

    unsigned long long Capacity() const noexcept { return items.capacity(); }
    /// Makes room for `count` objects in total. Throws `xContainerSizeExceeded` for more than can exist.
    void Reserve(unsigned long long count) {
        if (count > items.max_size()) throw xContainerSizeExceeded();
        items.reserve(static_cast<std::size_t>(count));
    }

protected:
    TIContainer() = default;
    TIContainer(const TIContainer&) = default;
    TIContainer(TIContainer&&) noexcept = default;
    ~TIContainer() override = default;
    TIContainer& operator=(const TIContainer&) = delete;

    ZoVector<P> items;
};

/// The position of an iterator over objects of any class.
class TIContainerIteratorBase {
public:
    void First() noexcept { position = 1; }
    /// From 1; `NItems()` + 1 at the end.
    unsigned long long Position() const noexcept { return position; }

protected:
    TIContainerIteratorBase() = default;

    /// Throws `xIteratorOverrunContainerLimit` when the position is past the end.
    void Check(unsigned long long count) const {
        if (position > count) throw xIteratorOverrunContainerLimit();
    }
    void Advance(unsigned long long count) {
        Check(count);
        ++position;
    }

private:
    unsigned long long position = 1;
};

/// Walks a container of objects:
///     for (TIContainerIterator<T> i(list); !i.IsDone(); i.Next()) use(i.Current());
/// It refers to the container, which must outlive it and may grow or shrink meanwhile. Without a container it
/// starts at its end. Cheap to copy.
template <class T, class P = pointer<T>>
class TIContainerIterator : public TIContainerIteratorBase {
public:
    TIContainerIterator() = default;
    explicit TIContainerIterator(const TIContainer<T, P>& walked) noexcept : container(&walked) {}

    bool IsDone() const noexcept { return Position() > Count(); }
    /// At the end throws `xIteratorOverrunContainerLimit`.
    void Next() { Advance(Count()); }
    /// The current holder, which may be null; at the end throws `xIteratorOverrunContainerLimit`.
    const P& Current() const {
        Check(Count());
        return container->data()[Position() - 1];
    }

private:
    unsigned long long Count() const noexcept {
        return container == nullptr ? 0
                                    : static_cast<unsigned long long>(container->end() - container->begin());
    }

    const TIContainer<T, P>* container = nullptr;
};

/// The operations of the containers of objects. `Self` is the container class; it tells whether long searches
/// run in parallel (`SEARCHES_IN_PARALLEL`) and which place its assertions name (`SITE`).
///
/// The last holder deletes the object. `T` must be complete only where the container is created, used or
/// destroyed.
template <class T, class P, class Self>
class TObjectContainer : public TIContainer<T, P> {
public:
    /// Whether `other` is of the same class and holds the same objects (by `Equal`) in the same order.
    bool operator==(const ZoObject& other) const override {
        if (typeid(*this) != typeid(other)) return false;
        const auto& right = static_cast<const TObjectContainer&>(other);
        if (items.size() != right.items.size()) return false;
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (!Same(items[i].get(), right.items[i].get())) return false;
        }
        return true;
    }

    /// Deletes a new object if there is no room for it.
    void Add(T* object) override {
        P holder(object);
        items.push_back(std::move(holder));
    }
    void Add(const P& object) { this->Add(object.get()); }

    /// Removes the item that `Find` finds; those after it move down by one. False when there is none.
    bool Remove(const T* object) override {
        unsigned long long position;
        if (!Find(object, position)) return false;
        RemoveAt(position);
        return true;
    }
    bool Remove(const P& object) { return this->Remove(static_cast<const T*>(object.get())); }

    bool Contains(const T* object) const override {
        unsigned long long position;
        return Find(object, position);
    }
    bool Contains(const P& object) const { return this->Contains(static_cast<const T*>(object.get())); }

    virtual Self& operator=(const Self& other) = 0;

    /// `other` may be this container.
    virtual void Append(const Self& other) {
        const auto& added = static_cast<const TObjectContainer&>(other).items;
        if (&added != &items) {
            items.insert(items.end(), added.begin(), added.end());
            return;
        }
        const ZoVector<P> copy(items);
        items.insert(items.end(), copy.begin(), copy.end());
    }

    /// False, without a change, when the object is already there; a new object then stays the caller's.
    virtual bool AddUnique(T* object) {
        if (this->Contains(static_cast<const T*>(object))) return false;
        this->Add(object);
        return true;
    }

    /// The equality that every search uses: identity here. Null equals only null; this is not called for it.
    virtual bool Equal(const T& a, const T& b) const { return std::addressof(a) == std::addressof(b); }

    /// Finds the first equal item. `position` is `NItems()` + 1 when there is none.
    virtual bool Find(const T* object, unsigned long long& position) const {
        const std::size_t found = Search(object);
        position = found + 1;
        return found != items.size();
    }

    /// `Equal` for items that may be null.
    bool Same(const T* a, const T* b) const { return a == nullptr || b == nullptr ? a == b : Equal(*a, *b); }

    P& operator[](unsigned long long index) { return items[Index(index)]; }
    const P& operator[](unsigned long long index) const { return items[Index(index)]; }
    P& First() { return (*this)[1]; }
    const P& First() const { return (*this)[1]; }
    P& Last() { return (*this)[items.size()]; }
    const P& Last() const { return (*this)[items.size()]; }

    // These move the items after the position.

    void AddFirst(T* object) { InsertAt(1, object); }
    /// Inserts the object at the position, which may be `NItems()` + 1.
    void InsertAt(unsigned long long index, T* object) {
        P holder(object);
        if (index < 1 || index > items.size() + 1)
            ZoFailIndex("index >= 1 && index <= NItems() + 1", Self::SITE, index, items.size(), typeid(Self));
        items.insert(items.begin() + static_cast<std::ptrdiff_t>(index - 1), std::move(holder));
    }
    void RemoveAt(unsigned long long index) {
        const auto place = items.begin() + static_cast<std::ptrdiff_t>(Index(index));
        // Released last, because the object's destructor may use this container.
        const P leaving = std::move(*place);
        items.erase(place);
    }
    void RemoveFirst() { RemoveAt(1); }
    void RemoveLast() { RemoveAt(items.size()); }

protected:
    using TIContainer<T, P>::items;

    TObjectContainer() = default;
    TObjectContainer(const TObjectContainer&) = default;
    TObjectContainer(TObjectContainer&&) noexcept = default;
    ~TObjectContainer() override = default;

    void Assign(const TObjectContainer& other) {
        if (this == &other) return;
        ZoVector<P> copy(other.items);
        items.swap(copy);
    }
    void Assign(TObjectContainer&& other) {
        ZoVector<P> taken(std::move(other.items));
        items.swap(taken);
    }

private:
    std::size_t Index(unsigned long long index) const {
        if (index < 1 || index > items.size())
            ZoFailIndex("index >= 1 && index <= NItems()", Self::SITE, index, items.size(), typeid(Self));
        return static_cast<std::size_t>(index - 1);
    }

    /// The index from 0; the count when there is none.
    std::size_t Search(const T* object) const {
        const std::size_t count = items.size();
        const bool parallel = Self::SEARCHES_IN_PARALLEL && count > ZoSerialFindLimit;
        // A derived class may override `Equal`.
        const bool direct = typeid(*this) == typeid(Self);
        std::size_t searched = 0;
        if (direct) {
            searched = parallel ? ZoSerialFindPrefix(count) : count;
            const std::size_t found = ZoFindFirstHolder(items.data(), searched, object);
            if (found < searched || !parallel) return found;
        } else if (!parallel) {
            while (searched < count && !Same(items[searched].get(), object)) ++searched;
            return searched;
        }
        return static_cast<std::size_t>(
            TBBParallelFinderPointer<Self>(static_cast<const Self&>(*this), object, direct).Find(searched));
    }
};

} // namespace ZoPrimitives
