#pragma once

#include "model.h"
#include "profile.h"

#include <string>

namespace Frame {

/// Saves a building, over the file of that name if there is one; its previous version becomes the "-bak"
/// file. The building keeps the time. Throws `Failure`.
void Save(const Model& model, const std::string& path,
          const ZoPrimitives::TTimestamp& now = ZoPrimitives::TTimestamp());

/// Opens a file that `Save` made. Throws `Failure` for one that is not whole.
Model Open(const std::string& path);

/// The profiles of the sections of such a file, by name. Nothing else of it is read: what is missing
/// elsewhere is not noticed. Throws `Failure`.
Profiles OpenProfiles(const std::string& path);

/// Puts a building on the clipboard, in place of what is there. Throws `Failure`.
void Copy(const Model& model);

/// Takes a building from the clipboard. Throws `Failure` when there is none, or none that is whole.
Model Paste();

} // namespace Frame
