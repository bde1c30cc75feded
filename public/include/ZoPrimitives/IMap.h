#pragma once

#include "ZoPrimitives/ParallelFind.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/pointer.h"
#include "ZoPrimitives/xContainer.h"

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace ZoPrimitives {

class ZoString;

/// Whether a map holds its keys through `pointer` and compares them by identity. Other keys, strings
/// included, are held by value and compared with `==`.
template <class K>
struct ZoMapKeyIsObject : std::is_base_of<ZoObject, K> {};
template <>
struct ZoMapKeyIsObject<ZoString> : std::false_type {};

/// Map from keys to objects, in insertion order. Positions count from 1; a search takes time proportional to
/// the count. Object keys and values may be null; the last holder deletes them. Not guarded.
///
/// `K` must be complete; `V` only where the map is created, used or destroyed.
template <class K, class V, class P = pointer<V>>
class TIMap : public ZoObject {
    static constexpr bool OBJECT_KEYS = ZoMapKeyIsObject<K>::value;

public:
    using KeyHolder = std::conditional_t<OBJECT_KEYS, pointer<K>, K>;
    /// How callers pass keys: as `K*` or as `const K&`.
    using KeyArgument = std::conditional_t<OBJECT_KEYS, K*, const K&>;
    using KeySearched = std::conditional_t<OBJECT_KEYS, const K*, const K&>;

    static_assert(!std::is_same_v<KeyHolder, bool>, "a map cannot hold bool keys: use unsigned char instead");

    TIMap() = default;
    TIMap(const TIMap&) = default;
    TIMap(TIMap&&) noexcept = default;
    ~TIMap() override = default;
    TIMap& operator=(const TIMap& other) {
        TIMap copy(other);
        Swap(copy);
        return *this;
    }
    TIMap& operator=(TIMap&& other) {
        TIMap taken(std::move(other));
        Swap(taken);
        return *this;
    }

    /// Whether the other map has equal keys and the same objects in the same order.
    bool operator==(const ZoObject& other) const override {
        const auto* right = dynamic_cast<const TIMap*>(&other);
        return right != nullptr && keys == right->keys && values == right->values;
    }
    bool operator==(const TIMap& other) const { return *this == static_cast<const ZoObject&>(other); }

    /// If the key exists, replaces its object and keeps its position.
    void Add(KeyArgument key, V* value) {
        P holder(value);
        const std::size_t index = IndexOf(key);
        if (index == keys.size()) {
            AppendPair(KeyHolder(key), std::move(holder));
        } else {
            std::swap(values[index], holder);
        }
    }

    /// Appends the pair without looking for its key. Searches find the first of equal keys.
    void Append(KeyArgument key, V* value) { AppendPair(KeyHolder(key), P(value)); }

    /// The object or null; `Contains` tells an absent key from a null object.
    V* Find(KeySearched key) const {
        const std::size_t index = IndexOf(key);
        return index == keys.size() ? nullptr : values[index].get();
    }
    bool Contains(KeySearched key) const { return IndexOf(key) != keys.size(); }

    /// The pairs after it move down by one. False when the key is absent.
    bool Remove(KeySearched key) {
        const std::size_t index = IndexOf(key);
        if (index == keys.size()) return false;
        // Released last, because a destructor may use this map.
        [[maybe_unused]] const KeyHolder leavingKey = std::move(keys[index]);
        const P leavingValue = std::move(values[index]);
        keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(index));
        values.erase(values.begin() + static_cast<std::ptrdiff_t>(index));
        return true;
    }

    unsigned long long NItems() const { return keys.size(); }

    void RemoveAll() {
        TIMap leaving;
        Swap(leaving);
    }

    const KeyHolder& KeyAt(unsigned long long index) const { return keys[Index(index)]; }
    P& ValueAt(unsigned long long index) { return values[Index(index)]; }
    const P& ValueAt(unsigned long long index) const { return values[Index(index)]; }

    /// Makes room for `count` pairs in total. Throws `xContainerSizeExceeded` for more than can exist.
    void Reserve(unsigned long long count) {
        if (count > keys.max_size() || count > values.max_size()) throw xContainerSizeExceeded();
        keys.reserve(static_cast<std::size_t>(count));
        values.reserve(static_cast<std::size_t>(count));
    }

private:
    void Swap(TIMap& other) noexcept {
        keys.swap(other.keys);
        values.swap(other.values);
    }

    void AppendPair(KeyHolder&& key, P&& value) {
        keys.push_back(std::move(key));
        try {
            values.push_back(std::move(value));
        } catch (...) {
            keys.pop_back();
            throw;
        }
    }

    std::size_t Index(unsigned long long index) const {
        if (index < 1 || index > keys.size())
            ZoFailIndex("index >= 1 && index <= NItems()", {ZoSources::IMAP, __LINE__}, index, keys.size(),
                        typeid(TIMap));
        return static_cast<std::size_t>(index - 1);
    }

    std::size_t IndexOf(KeySearched key) const {
        if constexpr (OBJECT_KEYS) {
            return ZoFindFirstHolder(keys.data(), keys.size(), key);
        } else {
            return ZoFindFirst(keys.data(), keys.size(), key);
        }
    }

    ZoVector<KeyHolder> keys;
    ZoVector<P> values;
};

} // namespace ZoPrimitives
