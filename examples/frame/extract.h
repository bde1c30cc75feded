#pragma once

#include "model.h"

#include <string>

namespace Frame {

/// Copies one storey and what it refers to (nodes, sections with their legend and materials, the catalogue)
/// into a frame of its own. The building must be complete (`FindFault`). `mark` is the storey's, in UTF-8;
/// throws `Failure` if there is no such storey.
Model ExtractStorey(const Building& building, const std::string& mark);

} // namespace Frame
