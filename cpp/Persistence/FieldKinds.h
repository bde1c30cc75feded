#pragma once

#include "ZoPrimitives/ZoClassField.h"

namespace ZoPrimitives {

/// The lists of a class's fields, in the order in which a record holds them.
enum class FieldPlace { Maps, Values, Children, ChildLists, References, ReferenceLists };

/// What a kind of field is to the streamers.
struct FieldKind {
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
    case ftListInt:
    case ftListFloat:
    case ftListDouble:
    case ftListString:
        return {FieldPlace::Values, kind, 4};
    case ftBool:
        return {FieldPlace::Values, kind, 1};
    case ftDouble:
        return {FieldPlace::Values, kind, 8};
    case ftChildPointer:
    case ftChildValue:
        return {FieldPlace::Children, ftChildPointer, 4};
    case ftChildPointerList:
        return {FieldPlace::ChildLists, kind, 4};
    case ftPointer:
    case ftPointerEx:
        return {FieldPlace::References, ftPointer, 4};
    case ftPointerList:
    case ftPointerListEx:
        return {FieldPlace::ReferenceLists, ftPointerList, 4};
    case ftChildPointerMap:
        return {FieldPlace::Maps, kind, 1}; // keys or values may be plain bools
    }
    return {FieldPlace::Values, kind, 0};
}

} // namespace ZoPrimitives
