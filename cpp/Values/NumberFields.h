#pragma once

#include "ZoPrimitives/ZoRegister.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

// How members of plain type are registered: what a class hands to `RegisterPoint` for each.

/// Which kind of field it is.
template <TZoClassFieldType Kind>
ZoString NumberFieldClass(TZoMetaData* schema, TZoClass** fieldClass, TZoClassFieldType* kind) {
    const char* const name = Kind == ftUnsigned     ? "unsigned"
                             : Kind == ftDouble     ? "double"
                             : Kind == ftListInt    ? "list<int>"
                             : Kind == ftListDouble ? "list<double>"
                                                    : "";
    return ZoFieldClass(schema, fieldClass, kind, name, Kind);
}

/// The accessors of a vector of numbers.
template <class Class, class Number, std::vector<Number> Class::*List>
TZoListAccessors<Number> NumbersOf() {
    return {[](ZoStreamableBase* object, TZoClassField*, Number value) {
                (ZoSelf<Class>(object).*List).push_back(value);
            },
            [](ZoStreamableBase* object, TZoClassField*, int index) {
                return (ZoSelf<Class>(object).*List)[static_cast<std::size_t>(index) - 1];
            },
            [](ZoStreamableBase* object, TZoClassField*) -> unsigned long long {
                return (ZoSelf<Class>(object).*List).size();
            },
            [](ZoStreamableBase* object, int, int, int) { (ZoSelf<Class>(object).*List).clear(); },
            nullptr,
            nullptr};
}

template <class Class, unsigned Class::*Member>
TZoClassField* AddUnsigned(TZoClass* owner, const char* name) {
    return owner->AddFieldUnsigned(
        name,
        [](ZoStreamableBase* object, TZoClassField*, unsigned value) {
            ZoSelf<Class>(object).*Member = value;
        },
        [](ZoStreamableBase* object, TZoClassField*) { return ZoSelf<Class>(object).*Member; });
}

} // namespace ZoPrimitives
