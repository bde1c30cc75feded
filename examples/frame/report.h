#pragma once

#include "model.h"
#include "profile.h"
#include "units.h"

#include <ostream>

namespace Frame {

/// Prints, in UTF-8, what a building consists of: its storeys from the top downward, its sections, its steel.
/// The building must be without fault.
void Print(const Building& building, const Units& units, std::ostream& out);

void Print(const Profiles& profiles, const Units& units, std::ostream& out);

ZoPrimitives::GForcaConcentrada TotalSteel(const Building& building);

} // namespace Frame
