#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <string>
#include <vector>

namespace ZoTool {

struct DiagramStyle {
    /// As a part of the report: in the page's colours, with links to the objects of each class (`#c` and its
    /// place among the classes, from 0).
    bool inPage = false;
    /// The number of objects of each class, in the schema's order, or empty.
    std::vector<unsigned long long> objects;
};

/// The classes of a schema as an SVG picture: derived classes below their parents, each class with its
/// fields, and lines to the classes that they own and refer to. Classes of plain values, such as quantities
/// that are members of others, stand at the bottom without lines. Larger schemas than
/// `MOST_CLASSES_WITH_LINES` have only those of inheritance.
std::string ClassDiagram(const ZoPrimitives::TZoMetaData& schema, const DiagramStyle& style = {});

constexpr std::size_t MOST_CLASSES_WITH_LINES = 400;

} // namespace ZoTool
