#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <vector>

namespace ZoPrimitives {

/// The fields of a file's class and of its ancestors in the order of the record, each with the application's
/// field that takes it. Made when the first record of the class is read.
///
/// Every field takes at least one byte of a record: as long as no plan is made for a record shorter than
/// `smallestRecord`, plans stay within a multiple of the file.
struct ReadPlan {
    struct Step {
        TZoClassField* field;
        TZoClassField* application; // null: the value is passed over
    };

    struct Pointers {
        TZoClassFieldPointerBase* field;
        bool last; // false: an ancestor is reached again, and its last part of the record counts
    };

    unsigned long long smallestRecord = 0; // bytes
    bool made = false;
    std::vector<Step> steps;
    std::vector<Pointers> pointers; // those with a field of the application
};

} // namespace ZoPrimitives
