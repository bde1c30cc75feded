#pragma once

#include "model.h"

#include <string>

namespace Frame {

/// Writes a building as text, over the file of that name if there is one. Throws `Failure`.
void WriteText(const Model& model, const std::string& path);

/// Reads a text that `WriteText` wrote. Throws `Failure` for one that is not whole.
Model ReadText(const std::string& path);

} // namespace Frame
