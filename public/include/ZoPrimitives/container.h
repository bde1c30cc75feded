#pragma once

#include "ZoPrimitives/ParallelFind.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/xContainer.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

// Shared by all containers of values. Positions count from 1; an access outside 1 to `NItems()` fails the
// assertion "index >= 1 && index <= NItems()". Containers are not guarded: use each on one thread at a time.

namespace ZoPrimitives {

/// Interface for collecting values of type `T`.
template <class T>
class TDAccumulator : public ZoObject {
public:
    using ValueType = T;

    virtual void Add(const T& value) = 0;
    virtual bool Remove(const T& value) = 0;
    virtual bool Contains(const T& value) const = 0;
    virtual unsigned long long NItems() const = 0;
    virtual void RemoveAll() = 0;
};

/// The values of a container, in one contiguous array. Pointers and references to them stay valid until
/// values are added or removed.
template <class T>
class TContainer : public TDAccumulator<T> {
    static_assert(!std::is_same_v<std::remove_cv_t<T>, bool>,
                  "a container of bool has no bool to refer to: hold unsigned char or ZoBoolean instead");

public:
    unsigned long long NItems() const override { return values.size(); }
    /// Keeps the capacity.
    void RemoveAll() override { ZoClearElements<T>(values); }

    T* data() noexcept { return values.data(); }
    const T* data() const noexcept { return values.data(); }
    T* begin() noexcept { return values.data(); }
    const T* begin() const noexcept { return values.data(); }
    T* end() noexcept { return values.data() + values.size(); }
    const T* end() const noexcept { return values.data() + values.size(); }

    unsigned long long Capacity() const noexcept { return values.capacity(); }
    /// Makes room for `count` values in total. Throws `xContainerSizeExceeded` for more than can exist.
    void Reserve(unsigned long long count) {
        if (count > values.max_size()) throw xContainerSizeExceeded();
        values.reserve(static_cast<std::size_t>(count));
    }

protected:
    TContainer() = default;
    TContainer(const TContainer&) = default;
    TContainer(TContainer&&) noexcept = default;
    ~TContainer() override = default;
    TContainer& operator=(const TContainer&) = delete;

    ZoVector<T> values;
};

/// Walks a container of values:
///     for (TContainerIterator<T> i(list); !i.IsDone(); i.Next()) use(i.Current());
/// It refers to the container, which must outlive it and may grow or shrink meanwhile.
template <class T>
class TContainerIterator {
public:
    explicit TContainerIterator(const TContainer<T>& walked) noexcept : container(&walked) {}

    void First() noexcept { position = 1; }
    bool IsDone() const noexcept {
        return position > static_cast<unsigned long long>(container->end() - container->begin());
    }
    /// At the end throws `xIteratorOverrunContainerLimit`.
    void Next() {
        if (IsDone()) throw xIteratorOverrunContainerLimit();
        ++position;
    }
    /// The current value; at the end throws `xIteratorOverrunContainerLimit`.
    const T& Current() const {
        if (IsDone()) throw xIteratorOverrunContainerLimit();
        return container->data()[position - 1];
    }
    /// From 1; `NItems()` + 1 at the end.
    unsigned long long Position() const noexcept { return position; }

private:
    const TContainer<T>* container;
    unsigned long long position = 1;
};

/// The operations of the containers of values. `Self` is the container class; it tells whether long searches
/// run in parallel (`SEARCHES_IN_PARALLEL`) and which place its assertions name (`SITE`).
///
/// `T` needs `==` and must be complete only where the container is created, used or destroyed.
template <class T, class Self>
class TValueContainer : public TContainer<T> {
public:
    /// Whether `other` is of the same class and holds equal values (by `Equal`) in the same order.
    bool operator==(const ZoObject& other) const override {
        if (typeid(*this) != typeid(other)) return false;
        const auto& right = static_cast<const TValueContainer&>(other);
        if (values.size() != right.values.size()) return false;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!Equal(values[i], right.values[i])) return false;
        }
        return true;
    }

    void Add(const T& value) override { values.push_back(value); }

    /// Removes the value that `Find` finds; those after it move down by one. False when there is none.
    bool Remove(const T& value) override {
        unsigned long long position;
        if (!Find(value, position)) return false;
        RemoveAt(position);
        return true;
    }

    bool Contains(const T& value) const override {
        unsigned long long position;
        return Find(value, position);
    }

    virtual Self& operator=(const Self& other) = 0;

    /// `other` may be this container.
    virtual void Append(const Self& other) {
        const auto& added = static_cast<const TValueContainer&>(other).values;
        if (&added != &values) {
            values.insert(values.end(), added.begin(), added.end());
            return;
        }
        const ZoVector<T> copy(values);
        values.insert(values.end(), copy.begin(), copy.end());
    }

    /// False, without a change, when the value is already there.
    virtual bool AddUnique(const T& value) {
        if (this->Contains(value)) return false;
        this->Add(value);
        return true;
    }

    /// The equality that every search uses: `==` here.
    virtual bool Equal(const T& a, const T& b) const { return a == b; }

    /// Finds the first equal value. `position` is `NItems()` + 1 when there is none.
    virtual bool Find(const T& value, unsigned long long& position) const {
        const std::size_t found = Search(value);
        position = found + 1;
        return found != values.size();
    }

    T& operator[](unsigned long long index) { return values[Index(index)]; }
    const T& operator[](unsigned long long index) const { return values[Index(index)]; }
    T& First() { return (*this)[1]; }
    const T& First() const { return (*this)[1]; }
    T& Last() { return (*this)[values.size()]; }
    const T& Last() const { return (*this)[values.size()]; }

    // These move the values after the position.

    void AddFirst(const T& value) { values.insert(values.begin(), value); }
    /// Inserts the value at the position, which may be `NItems()` + 1.
    void InsertAt(unsigned long long index, const T& value) {
        if (index < 1 || index > values.size() + 1)
            ZoFailIndex("index >= 1 && index <= NItems() + 1", Self::SITE, index, values.size(),
                        typeid(Self));
        values.insert(values.begin() + static_cast<std::ptrdiff_t>(index - 1), value);
    }
    void RemoveAt(unsigned long long index) {
        values.erase(values.begin() + static_cast<std::ptrdiff_t>(Index(index)));
    }
    void RemoveFirst() { RemoveAt(1); }
    void RemoveLast() { RemoveAt(values.size()); }

protected:
    using TContainer<T>::values;

    TValueContainer() = default;
    TValueContainer(const TValueContainer&) = default;
    TValueContainer(TValueContainer&&) noexcept = default;
    ~TValueContainer() override = default;

    void Assign(const TValueContainer& other) {
        if (this == &other) return;
        if constexpr (std::is_trivially_copyable_v<T>) {
            values = other.values;
        } else {
            ZoVector<T> copy(other.values);
            values.swap(copy);
        }
    }
    void Assign(TValueContainer&& other) {
        ZoVector<T> taken(std::move(other.values));
        values.swap(taken);
    }

private:
    std::size_t Index(unsigned long long index) const {
        if (index < 1 || index > values.size())
            ZoFailIndex("index >= 1 && index <= NItems()", Self::SITE, index, values.size(), typeid(Self));
        return static_cast<std::size_t>(index - 1);
    }

    /// The index from 0; the count when there is none.
    std::size_t Search(const T& value) const {
        const std::size_t count = values.size();
        const bool parallel = Self::SEARCHES_IN_PARALLEL && count > ZoSerialFindLimit;
        // A derived class may override `Equal`.
        const bool direct = typeid(*this) == typeid(Self);
        std::size_t searched = 0;
        if (direct) {
            searched = parallel ? ZoSerialFindPrefix(count) : count;
            const std::size_t found = ZoFindFirst(values.data(), searched, value);
            if (found < searched || !parallel) return found;
        } else if (!parallel) {
            while (searched < count && !Equal(values[searched], value)) ++searched;
            return searched;
        }
        return static_cast<std::size_t>(
            TBBParallelFinder<Self>(static_cast<const Self&>(*this), value, direct).Find(searched));
    }
};

} // namespace ZoPrimitives
