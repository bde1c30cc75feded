#pragma once

#include "model.h"
#include "profile.h"

#include <ostream>

namespace Frame {

/// Prints, in UTF-8, what a building consists of: its storeys from the top downward, its sections, its steel.
/// The building must be without fault.
void Print(const Building& building, std::ostream& out);

void Print(const Profiles& profiles, std::ostream& out);

/// In kg.
double TotalSteel(const Building& building);

} // namespace Frame
