#pragma once

#include "model.h"

#include <string>

namespace Frame {

/// Builds the frame from the tables of a folder: frame9-sections.csv, frame9-bays.csv and frame9-storeys.csv.
/// Throws `Failure`, naming file and line.
Model ReadTables(const std::string& folder);

} // namespace Frame
