#pragma once

#include "ZoPrimitives/ZoClassField.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// What is written of an object whose C++ type is the one registered: the fields of its class and of the
/// ancestors in the order of the record.
struct WritePlan {
    struct Step {
        TZoClassField* field;  // null: the object hears `WillWrite`
        std::ptrdiff_t offset; // of the member; `FieldOffset::NONE` where accessors are used
    };

    bool made = false;
    std::vector<Step> steps;
};

} // namespace ZoPrimitives
