#pragma once

#include "model.h"
#include "profile.h"
#include "units.h"

#include <ostream>

namespace Frame {

/// Prints a building in UTF-8: its storeys from the top downward, its sections, its steel. The building must
/// be complete (`FindFault`).
void Print(const Building& building, const Units& units, std::ostream& out);

void Print(const Profiles& profiles, const Units& units, std::ostream& out);

ZoPrimitives::GForcaConcentrada TotalSteel(const Building& building);

} // namespace Frame
