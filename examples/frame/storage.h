#pragma once

#include "model.h"
#include "profile.h"

#include <string>

namespace Frame {

/// Saves a building, replacing an existing file, which becomes the "-bak" file. Stores the time in the
/// building. Throws `Failure`.
void Save(const Model& model, const std::string& path,
          const ZoPrimitives::TTimestamp& now = ZoPrimitives::TTimestamp());

/// Opens a file that `Save` wrote. Throws `Failure` if it is damaged.
Model Open(const std::string& path);

/// The profiles of the sections in such a file, by name. Reads nothing else, so it misses damage elsewhere.
/// Throws `Failure`.
Profiles OpenProfiles(const std::string& path);

/// Replaces the clipboard's contents with a building. Throws `Failure`.
void Copy(const Model& model);

/// Pastes a building from the clipboard. Throws `Failure` if there is none, or if it is damaged.
Model Paste();

} // namespace Frame
