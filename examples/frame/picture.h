#pragma once

#include "model.h"
#include "units.h"

#include <string>

namespace Frame {

/// What the colours of a picture tell.
enum class Property { Load, Area };

/// Throws `Failure` for what is neither load nor area.
Property PropertyNamed(const std::string& name);

/// The elevation of a building as SVG, its members coloured by their property; columns, which carry no load
/// along them, are grey when that is the load. The building must be without fault. Throws `Failure` when it
/// cannot be drawn.
std::string DrawElevation(const Building& building, Property property, const Units& units);

} // namespace Frame
