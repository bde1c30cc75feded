#pragma once

#include "model.h"
#include "units.h"

#include <string>

namespace Frame {

/// The property that a picture's colours show.
enum class Property { Load, Area };

/// Throws `Failure` for other names than load and area.
Property PropertyNamed(const std::string& name);

/// Draws the elevation of a building as SVG, with members coloured by the property; columns, which carry no
/// line load, are grey when it is the load. The building must be complete (`FindFault`). Throws `Failure` if
/// it cannot be drawn.
std::string DrawElevation(const Building& building, Property property, const Units& units);

} // namespace Frame
