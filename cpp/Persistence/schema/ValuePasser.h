#pragma once

#include "Persistence/instances/FieldLayout.h"
#include "Persistence/schema/FieldKinds.h"

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace ZoPrimitives {

/// All layouts that a field of the kind may have, the usual one first. The halves of a map are both lists or
/// both single objects.
inline std::vector<FieldLayout> AllLayouts(TZoClassFieldType kind) {
    const bool isMap = IsKindOf<TZoClassFieldPointerMap>(kind);
    const bool isList = IsKindOf<TZoClassFieldPointerList>(kind) || kind == ftListInt ||
                        kind == ftListFloat || kind == ftListDouble || kind == ftListString;
    std::vector<FieldLayout> all;
    for (signed char first = 0; first <= (isMap || isList ? 2 : 0); ++first) {
        for (signed char second = 0; second <= (isMap ? 2 : 0); ++second) all.push_back({{first, second}});
    }
    if (isMap) all.push_back({{FieldLayout::SINGLE, FieldLayout::SINGLE}});
    return all;
}

/// Passes values of a record without an object, and shows the uids among them.
class ValuePasser {
public:
    ValuePasser(const unsigned char* begin, const unsigned char* end) : at(begin), end(end) {}

    const unsigned char* At() const { return at; }
    std::size_t Left() const { return static_cast<std::size_t>(end - at); }

    /// Passes a field's value. False if the bytes do not hold one.
    bool Pass(TZoClassFieldType kind, const FieldLayout& layout) {
        return Pass(kind, layout, [](int, const unsigned char*, int) {});
    }
    /// The same. Calls `refer(half, uids, count)` for each list of uids, count -1 for a single one; they need
    /// not be aligned.
    template <class Refer>
    bool Pass(TZoClassFieldType kind, const FieldLayout& layout, Refer refer) {
        switch (kind) {
#define ZO_ROW(Kind, Class, Place, Hold, Encoding, Member)                                                   \
    case ft##Kind:                                                                                           \
        if constexpr (std::is_same_v<Class, TZoClassFieldPointerMap>)                                        \
            return Uids(0, layout, refer) && Uids(1, layout, refer);                                         \
        else if constexpr (std::is_same_v<Class, TZoClassFieldPointerList>)                                  \
            return Uids(0, layout, refer);                                                                   \
        else if constexpr (std::is_same_v<Class, TZoClassFieldPointer>)                                      \
            return Uid(0, refer);                                                                            \
        else                                                                                                 \
            return Value(static_cast<const Member*>(nullptr), layout);
            ZO_FIELD_KINDS(ZO_ROW)
#undef ZO_ROW
        }
        return false;
    }
    static int IntAt(const unsigned char* place) {
        std::int32_t value = 0;
        std::memcpy(&value, place, sizeof value);
        return value;
    }

private:
    bool Skip(std::size_t size) {
        if (Left() < size) return false;
        at += size;
        return true;
    }
    bool Count(int integers, int& count) {
        if (Left() < 4) return false;
        count = IntAt(at);
        return count >= 0 && Skip(4 + 4 * static_cast<std::size_t>(integers));
    }
    template <class Refer>
    bool Uid(int half, Refer& refer) {
        if (Left() < 4) return false;
        refer(half, at, -1);
        return Skip(4);
    }
    template <class Refer>
    bool Uids(int half, const FieldLayout& layout, Refer& refer) {
        const int integers = layout.integers[static_cast<std::size_t>(half)];
        if (integers == FieldLayout::SINGLE) return Uid(half, refer);
        int count = 0;
        if (!Count(integers, count) || Left() / 4 < static_cast<std::size_t>(count)) return false;
        refer(half, at, count);
        return Skip(4 * static_cast<std::size_t>(count));
    }
    template <class T>
    bool Value(const T*, const FieldLayout&) {
        static_assert(std::is_arithmetic_v<T>);
        return Skip(sizeof(T));
    }
    bool Value(const ZoString*, const FieldLayout&) { return Block(); }
    bool Value(const ZoBlob*, const FieldLayout&) { return Block(); }
    template <class T>
    bool Value(const TDVector<T>*, const FieldLayout& layout) {
        int count = 0;
        if (!Count(layout.integers[0], count)) return false;
        if constexpr (std::is_arithmetic_v<T>) {
            return Left() / sizeof(T) >= static_cast<std::size_t>(count) &&
                   Skip(sizeof(T) * static_cast<std::size_t>(count));
        } else {
            for (; count > 0; --count) {
                if (!Block()) return false;
            }
            return true;
        }
    }
    bool Block() {
        int size = 0;
        if (Left() < 4) return false;
        size = IntAt(at);
        return size >= 0 && Skip(4) && Skip(static_cast<std::size_t>(size));
    }

    const unsigned char* at;
    const unsigned char* end;
};

} // namespace ZoPrimitives
