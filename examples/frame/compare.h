#pragma once

#include "model.h"

#include <string>

namespace Frame {

struct Comparison {
    std::string difference; ///< the first one found, in UTF-8; empty when there is none
    unsigned long long objects = 0;
    unsigned long long values = 0; ///< quantities and points: objects too, each with one owner
    unsigned long long listed = 0; ///< the values that are items of lists, not members
};

/// Walks two buildings in parallel and checks that each object has exactly one counterpart of the same class
/// with the same values, and that every pointer points to the counterpart of the other's target. Ignores when
/// they were saved.
Comparison Compare(const Building& left, const Building& right);

/// Counts the objects and values of a building and those that it refers to.
Comparison Count(const Building& building);

} // namespace Frame
