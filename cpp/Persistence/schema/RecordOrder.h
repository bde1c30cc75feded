#pragma once

#include "Persistence/schema/FieldKinds.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <array>
#include <vector>

namespace ZoPrimitives {

/// The order of a record: the parts of the parents, each as a whole and in their order, then the class's own
/// fields, place by place (`FieldPlace`) and as declared. Uids, and the records of what an object owns,
/// follow the same order.
class RecordOrder {
public:
    /// Calls the action with each level of a class; an ancestor reached twice comes twice.
    template <class Action>
    static void ForEachLevel(const TZoClass& objectClass, const Action& action) {
        for (const auto& parent : objectClass.parents) ForEachLevel(*parent, action);
        action(objectClass);
    }
    /// The fields of one level.
    static const std::vector<TZoClassField*>& FieldsOf(const TZoClass& level) { return level.inOrder; }
    /// A map's sub-fields, the keys' first; null while it has none.
    static std::array<TZoClassFieldPointerBase*, 2> HalvesOf(const TZoClassFieldPointerMap& map) {
        return {static_cast<TZoClassFieldPointerBase*>(map.GetKeyField()),
                static_cast<TZoClassFieldPointerBase*>(map.GetValueField())};
    }
    /// Calls the action with each sub-field that the field has: none unless it is a map.
    template <class Action>
    static void ForEachHalf(const TZoClassField& field, const Action& action) {
        if (field.GetFieldType() != ftChildPointerMap) return;
        for (TZoClassFieldPointerBase* half : HalvesOf(static_cast<const TZoClassFieldPointerMap&>(field))) {
            if (half != nullptr) action(*half);
        }
    }
    /// Calls the action with the field and its sub-fields: all that have a class of their own.
    template <class Action>
    static void ForEachTarget(TZoClassField& field, const Action& action) {
        action(field);
        ForEachHalf(field, action);
    }
    /// Whether a file declares fields of the level in kinds that this library does not know.
    static bool HasUnknownKind(const TZoClass& level) { return level.hasUnknownKind; }
    /// The fewest bytes that a record of the class has.
    static unsigned long long LeastBytes(const TZoClass& objectClass) {
        return objectClass.RecordExtent().bytes;
    }
    /// Whether objects of the class get a record.
    static bool HasFields(const TZoClass& objectClass) {
        bool any = false;
        ForEachLevel(objectClass, [&](const TZoClass& level) { any = any || !FieldsOf(level).empty(); });
        return any;
    }
    /// Calls the action with the pointer fields of one level, and for a map with its sub-fields: each field
    /// then holds one object or a list.
    template <class Action>
    static void ForEachPointer(const TZoClass& level, const Action& action) {
        for (TZoClassField* field : level.inOrder) {
            if (field->GetFieldType() == ftChildPointerMap) {
                ForEachHalf(*field, action);
            } else if (field->IsPointerKind()) {
                action(static_cast<TZoClassFieldPointerBase&>(*field));
            }
        }
    }
    /// Whether the field's objects are written after the main graph.
    static bool IsExternal(const TZoClassField& field) {
        return FieldKindOf(field.GetFieldType()).holds == FieldHold::External;
    }
};

} // namespace ZoPrimitives
