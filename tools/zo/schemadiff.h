#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <string>
#include <vector>

namespace ZoTool {

/// What differs between the schemas of two files, a line each: "+" only the second has it, "-" only the
/// first, "~" both do, otherwise.
std::vector<std::string> SchemaChanges(const ZoPrimitives::TZoMetaData& a,
                                       const ZoPrimitives::TZoMetaData& b);

/// What an application whose classes are `reader`'s loses of a file whose classes are `file`'s, a line each.
std::vector<std::string> SchemaLosses(const ZoPrimitives::TZoMetaData& reader,
                                      const ZoPrimitives::TZoMetaData& file);

} // namespace ZoTool
