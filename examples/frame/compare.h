#pragma once

#include "model.h"

#include <string>

namespace Frame {

struct Comparison {
    std::string difference; ///< the first one found, in UTF-8; empty when there is none
    unsigned long long objects = 0;
    unsigned long long values = 0; ///< quantities and points: they are objects too, each of one owner
    unsigned long long listed = 0; ///< those of the values that are items of lists, not members
};

/// Walks two buildings side by side: whether each object of one has exactly one counterpart in the other, of
/// the same class and with the same values, and every pointer leads to the counterpart of where it leads in
/// the other. When they were saved does not count.
Comparison Compare(const Building& left, const Building& right);

/// The objects and values that a building consists of, and those that they refer to.
Comparison Count(const Building& building);

} // namespace Frame
