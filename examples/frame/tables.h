#pragma once

#include "model.h"

#include <string>

namespace Frame {

/// Builds the frame from the tables in a folder: frame9-sections.csv, frame9-bays.csv and frame9-storeys.csv.
/// Throws `Failure` with file and line.
Model ReadTables(const std::string& folder);

/// The load of a floor, dead and live.
ZoPrimitives::GForcaArea FloorLoad();

} // namespace Frame
