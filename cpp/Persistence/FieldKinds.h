#pragma once

#include "ZoPrimitives/ZoClassField.h"

namespace ZoPrimitives {

/// The lists of a class's fields, in the order in which a record holds them.
enum class FieldPlace { Maps, Values, Children, ChildLists, References, ReferenceLists };

/// The C++ classes of fields, one template or class each.
enum class FieldShape { Value, List, Pointer, PointerList, PointerMap, None };

/// What a kind of field is to the streamers.
struct FieldKind {
    FieldShape shape;
    FieldPlace list;
    TZoClassFieldType encoding; ///< kinds that stand alike in a record have the same
    unsigned smallest;          ///< bytes that it takes in a record at least
};

constexpr FieldKind FieldKindOf(TZoClassFieldType kind) {
    switch (kind) {
    case ftInt:
    case ftUnsigned:
    case ftFloat:
    case ftString:
    case ftBlob:
        return {FieldShape::Value, FieldPlace::Values, kind, 4};
    case ftListInt:
    case ftListFloat:
    case ftListDouble:
    case ftListString:
        return {FieldShape::List, FieldPlace::Values, kind, 4};
    case ftBool:
        return {FieldShape::Value, FieldPlace::Values, kind, 1};
    case ftDouble:
        return {FieldShape::Value, FieldPlace::Values, kind, 8};
    case ftChildPointer:
    case ftChildValue:
        return {FieldShape::Pointer, FieldPlace::Children, ftChildPointer, 4};
    case ftChildPointerList:
        return {FieldShape::PointerList, FieldPlace::ChildLists, kind, 4};
    case ftPointer:
    case ftPointerEx:
        return {FieldShape::Pointer, FieldPlace::References, ftPointer, 4};
    case ftPointerList:
    case ftPointerListEx:
        return {FieldShape::PointerList, FieldPlace::ReferenceLists, ftPointerList, 4};
    case ftChildPointerMap:
        return {FieldShape::PointerMap, FieldPlace::Maps, kind, 8}; // a uid or a count for each half
    }
    return {FieldShape::None, FieldPlace::Values, kind, 0};
}

} // namespace ZoPrimitives
