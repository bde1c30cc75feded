#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <cstddef>
#include <typeinfo>
#include <vector>

namespace ZoPrimitives {

/// The fields of a file's class and of its ancestors in the order of the record, each with the application's
/// field that takes it. Made when the first record of the class is read.
///
/// Every field takes at least one byte of a record: as long as no plan is made for a record shorter than
/// `smallestRecord`, plans stay within a multiple of the file.
struct ReadPlan {
    struct Step {
        std::ptrdiff_t offset;      // of the member, in objects of `exactType`
        TZoClassFieldType kind;     // of the field
        TZoClassField* field;       // the file's
        TZoClassField* application; // null: the value is passed over
    };
    struct Pointer {
        bool single; // one object that is no member of its owner
        TZoClassFieldPointerBase* field;
        TZoClassFieldPointerBase* application;
        bool last; // false: the application's field is met again, and what comes last counts
    };

    unsigned long long smallestRecord = 0; // bytes
    bool made = false;
    const std::type_info* exactType = nullptr; // of the objects in which offsets were measured
    std::vector<Step> steps;
    std::vector<Pointer> pointers; // those with a field of the application
};

} // namespace ZoPrimitives
