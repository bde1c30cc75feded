#pragma once

#include "model.h"

#include <string>

namespace Frame {

/// Writes a building as text, replacing an existing file. Throws `Failure`.
void WriteText(const Model& model, const std::string& path);

/// Reads a text that `WriteText` wrote. Throws `Failure` if it is damaged.
Model ReadText(const std::string& path);

} // namespace Frame
