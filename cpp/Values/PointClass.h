#pragma once

#include "ZoPrimitives/ZoRegister.h"

#include <initializer_list>
#include <typeinfo>
#include <utility>

namespace ZoPrimitives {

/// The number of a C++ class in the process; 0 before this module is initialised.
template <class Class>
const unsigned POINT_SLOT = ZoNewClassSlot();

using PointFields =
    std::initializer_list<std::pair<ZoRegistration::FieldClassFunction, ZoRegistration::AddFieldFunction>>;

template <class Class>
TZoClass* RegisterPoint(TZoMetaData* schema, const char* name, const char* parent, PointFields fields) {
    ZoRegistration registration(schema, name, {parent, "NULL", "NULL"}, ZoCreateInstance<Class>, false,
                                typeid(Class), POINT_SLOT<Class>);
    registration.SetHooks(ZoHooksOf<Class>());
    for (const auto& [classOf, add] : fields) registration.AddField(classOf, add);
    return registration.Finish();
}

} // namespace ZoPrimitives

// The function bodies that all point and vector classes share.
#define ZO_POINT_BODY(Class)                                                                                 \
    Class::~Class() = default;                                                                               \
    void Class::Unregister(TZoMetaData* schema) { schema->ExcludeClass(#Class); }                            \
    TZoClass* Class::GetClass() const { return TZoMetaData::FindClassOf(*this, POINT_SLOT<Class>); }         \
    TZoClass* Class::GetOriginalClass(TZoMetaData* schema) const {                                           \
        return schema->FindClass(POINT_SLOT<Class>, #Class, typeid(Class));                                  \
    }                                                                                                        \
    ZoString Class::StreamableClassName() const { return #Class; }
