#pragma once

#include "ZoPrimitives/ZoClassField.h"

#include <cstddef>

namespace ZoPrimitives {

/// Where a field's member lies in the objects of one exact C++ type.
class FieldOffset {
public:
    static constexpr std::ptrdiff_t NONE = -1;

    /// Measured on any object of that type; `NONE` for a field that is reached through its accessors.
    static std::ptrdiff_t Measure(const TZoClassField* field, ZoStreamableBase* object) {
        if (field == nullptr || field->member == nullptr) return NONE;
        const auto* member = static_cast<const char*>(field->member(object));
        if (member == nullptr) return NONE;
        const std::ptrdiff_t offset = member - reinterpret_cast<const char*>(object);
        return offset < 0 ? NONE : offset;
    }
    static void* Apply(ZoStreamableBase* object, std::ptrdiff_t offset) {
        return reinterpret_cast<char*>(object) + offset;
    }
};

} // namespace ZoPrimitives
