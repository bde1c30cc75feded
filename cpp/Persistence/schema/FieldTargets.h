#pragma once

#include "ZoPrimitives/ZoClassField.h"

namespace ZoPrimitives {

/// Calls the action with the field and, of a map, with its sub-fields: all that have a class of their own.
template <class Action>
void ForEachTarget(TZoClassField& field, Action action) {
    action(field);
    const auto* map = dynamic_cast<TZoClassFieldPointerMap*>(&field);
    if (map == nullptr) return;
    for (TZoClassField* half : {map->GetKeyField(), map->GetValueField()}) {
        if (half != nullptr) action(*half);
    }
}

} // namespace ZoPrimitives
