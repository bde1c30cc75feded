#pragma once

#include <nlohmann/json_fwd.hpp>

namespace ZoPrimitives {
class TZoRecord;
}

namespace ZoTool {

class Model;

/// An object in the layout "zo objects", version 1: docs/zo.md.
nlohmann::ordered_json ObjectJson(const ZoPrimitives::TZoRecord& record, Model& model);

} // namespace ZoTool
