#pragma once

#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/pointer.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace ZoPrimitives {

using ZoRangeFunction = void (*)(unsigned long long begin, unsigned long long end, void* context);

/// Calls `function` with subranges that cover [0, count) exactly once, on this thread and on TBB's workers,
/// and waits for all of them. Rethrows the first exception of `function`; subranges that have not begun are
/// then skipped.
ZO_API void ZoParallelFor(unsigned long long count, ZoRangeFunction function, void* context);

// The index of the first element that equals the value, or `count`. The data needs only its elements'
// alignment.

ZO_API std::size_t ZoFindBits32(const void* data, std::size_t count, std::uint32_t value) noexcept;
ZO_API std::size_t ZoFindBits64(const void* data, std::size_t count, std::uint64_t value) noexcept;
/// Compares with `==`: NaN is never found, and the two zeros are equal.
ZO_API std::size_t ZoFindDouble(const double* data, std::size_t count, double value) noexcept;

/// The index of the first element that equals `value` by `==`, or `count`.
template <class T>
std::size_t ZoFindFirst(const T* data, std::size_t count, const T& value) {
    constexpr bool bitwise = std::is_integral_v<T> || std::is_pointer_v<T>;
    if constexpr (bitwise && sizeof(T) == sizeof(std::uint32_t)) {
        std::uint32_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return ZoFindBits32(data, count, bits);
    } else if constexpr (bitwise && sizeof(T) == sizeof(std::uint64_t)) {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return ZoFindBits64(data, count, bits);
    } else if constexpr (std::is_same_v<T, double>) {
        return ZoFindDouble(data, count, value);
    } else {
        std::size_t index = 0;
        while (index < count && !(data[index] == value)) ++index;
        return index;
    }
}

/// The index of the first holder of `object` (null: the first empty one), or `count`.
template <class P, class T>
std::size_t ZoFindFirstHolder(const P* holders, std::size_t count, const T* object) {
    if constexpr (std::is_same_v<P, pointer<T>> && sizeof(P) == sizeof(std::uint64_t)) {
        return ZoFindBits64(holders, count, reinterpret_cast<std::uintptr_t>(object));
    } else {
        std::size_t index = 0;
        while (index < count && holders[index].get() != object) ++index;
        return index;
    }
}

/// Shared by the two finders: the next element to compare, and the lowest match so far.
///
/// A task compares as many elements as its range has, but takes them from the front of those that are left.
/// All tasks thus move through the array together, stop soon after the first match, and report the first
/// match.
class ZoParallelMatch {
public:
    explicit ZoParallelMatch(unsigned long long end) noexcept : lowest(end) {}

    /// Call before any `Run`: skips the elements before `begin`.
    void StartAt(unsigned long long begin) noexcept { next.store(begin, std::memory_order_relaxed); }

    /// The index of the first match, from 0; the end when there is none.
    unsigned long long Lowest() const noexcept { return lowest.load(std::memory_order_relaxed); }

    /// Compares `count` elements, at most `step` at a time. `search(first, last)` returns the index of the
    /// first match, or `last`.
    template <class Search>
    void Run(unsigned long long count, unsigned long long step, const Search& search) {
        while (count > 0) {
            const unsigned long long taken = (std::min)(count, step);
            const unsigned long long first = next.fetch_add(taken, std::memory_order_relaxed);
            if (first >= Lowest()) return;
            const unsigned long long found = search(first, first + taken);
            if (found != first + taken) Lower(found);
            count -= taken;
        }
    }

private:
    void Lower(unsigned long long found) noexcept {
        unsigned long long seen = Lowest();
        while (found < seen && !lowest.compare_exchange_weak(seen, found, std::memory_order_relaxed)) {
        }
    }

    std::atomic<unsigned long long> next{0};
    std::atomic<unsigned long long> lowest;
};

/// Parallel search of a value container through the container's `Equal` or, where that is known to be `==`,
/// directly. An overridden `Equal` runs on several threads at once.
template <class Container>
class TBBParallelFinder {
public:
    using ValueType = typename Container::ValueType;

    TBBParallelFinder(const Container& where, const ValueType& what, bool directly)
        : container(where), value(what), direct(directly),
          count(static_cast<unsigned long long>(where.end() - where.begin())), match(count) {}

    /// The index of the first match at or after `begin`, from 0; the count when there is none.
    unsigned long long Find(unsigned long long begin = 0) {
        match.StartAt(begin);
        ZoParallelFor(count - begin, &Search, this);
        return match.Lowest();
    }

private:
    // Scalars compare so fast that larger steps pay.
    static constexpr unsigned long long STEP = std::is_scalar_v<ValueType> ? 65536 : 1024;
    static constexpr unsigned long long STEP_BY_EQUAL = 64;

    static void Search(unsigned long long begin, unsigned long long end, void* finder) {
        static_cast<TBBParallelFinder*>(finder)->Search(end - begin);
    }
    void Search(unsigned long long amount) {
        const ValueType* data = container.data();
        if (direct) {
            match.Run(amount, STEP, [&](unsigned long long first, unsigned long long last) {
                return first + ZoFindFirst(data + first, static_cast<std::size_t>(last - first), value);
            });
        } else {
            match.Run(amount, STEP_BY_EQUAL, [&](unsigned long long first, unsigned long long last) {
                while (first < last && !container.Equal(data[first], value)) ++first;
                return first;
            });
        }
    }

    const Container& container;
    const ValueType& value;
    const bool direct;
    const unsigned long long count;
    ZoParallelMatch match;
};

/// Parallel search of an object container through the container's `Equal` or, where that is known to be
/// identity, directly. An overridden `Equal` runs on several threads at once.
template <class Container>
class TBBParallelFinderPointer {
public:
    using ObjectType = typename Container::ObjectType;

    TBBParallelFinderPointer(const Container& where, const ObjectType* what, bool directly)
        : container(where), object(what), direct(directly),
          count(static_cast<unsigned long long>(where.end() - where.begin())), match(count) {}

    /// The index of the first match at or after `begin`, from 0; the count when there is none.
    unsigned long long Find(unsigned long long begin = 0) {
        match.StartAt(begin);
        ZoParallelFor(count - begin, &Search, this);
        return match.Lowest();
    }

private:
    static constexpr unsigned long long STEP = 65536;
    static constexpr unsigned long long STEP_BY_EQUAL = 64;

    static void Search(unsigned long long begin, unsigned long long end, void* finder) {
        static_cast<TBBParallelFinderPointer*>(finder)->Search(end - begin);
    }
    void Search(unsigned long long amount) {
        const auto* data = container.data();
        if (direct) {
            match.Run(amount, STEP, [&](unsigned long long first, unsigned long long last) {
                return first +
                       ZoFindFirstHolder(data + first, static_cast<std::size_t>(last - first), object);
            });
        } else {
            match.Run(amount, STEP_BY_EQUAL, [&](unsigned long long first, unsigned long long last) {
                while (first < last && !container.Same(data[first].get(), object)) ++first;
                return first;
            });
        }
    }

    const Container& container;
    const ObjectType* const object;
    const bool direct;
    const unsigned long long count;
    ZoParallelMatch match;
};

/// Longer vectors are searched in parallel; others in order on the calling thread.
constexpr unsigned long long ZoSerialFindLimit = 1000;

/// How many elements of a longer vector are compared before the workers are called, if they are compared
/// directly: calling them does not pay for a match near the beginning.
constexpr std::size_t ZoSerialFindPrefix(std::size_t count) {
    return (std::max)(static_cast<std::size_t>(ZoSerialFindLimit), count / 256);
}

/// Destroys all elements and keeps the capacity. The vector is already empty when destructors run, because
/// they may use its container.
template <class E, class Vector>
void ZoClearElements(Vector& elements) {
    if constexpr (std::is_trivially_destructible_v<E>) {
        elements.clear();
    } else {
        Vector leaving;
        leaving.swap(elements);
        leaving.clear();
        if (elements.empty() && elements.capacity() < leaving.capacity()) elements.swap(leaving);
    }
}

} // namespace ZoPrimitives
