#pragma once

#include "model.h"

#include <string>

namespace Frame {

/// A frame of its own that holds copies of one storey and of what it refers to: nodes, sections with their
/// legend and materials, the catalogue. The building must be without fault. `mark` is the storey's, in UTF-8;
/// throws `Failure` when there is no such storey.
Model ExtractStorey(const Building& building, const std::string& mark);

} // namespace Frame
