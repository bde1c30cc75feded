#pragma once

#include "model.h"

#include <string>

namespace Frame {

struct Comparison {
    std::string difference; ///< the first one found, in UTF-8; empty when there is none
    unsigned long long objects = 0;
};

/// Walks two buildings side by side: whether each object of one has exactly one counterpart in the other, of
/// the same class and with the same values, and every pointer leads to the counterpart of where it leads in
/// the other.
Comparison Compare(const Building& left, const Building& right);

/// The objects that a building consists of, and those that they refer to.
unsigned long long CountObjects(const Building& building);

} // namespace Frame
