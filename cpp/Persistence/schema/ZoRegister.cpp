#include "ZoPrimitives/ZoRegister.h"

#include "Persistence/instances/ClassNames.h"
#include "ZoPrimitives/WholeText.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace ZoPrimitives {

ZoString ZoRegisteredName(const char* qualifiedName) {
    const std::size_t separator = std::string_view(qualifiedName).rfind("::");
    const char* name = separator == std::string_view::npos ? qualifiedName : qualifiedName + separator + 2;
    while (*name == ' ') ++name;
    return WholeText({name});
}

ZoString ZoStreamableClassName(const std::type_info& type) { return ClassText(type); }

ZoString ZoFieldClass(TZoMetaData* schema, TZoClass** fieldClass, TZoClassFieldType* kind, const char* name,
                      TZoClassFieldType fieldKind) {
    ZoString typeName = ZoRegisteredName(name);
    *fieldClass = schema->FindClass(typeName);
    *kind = fieldKind;
    return typeName;
}

ZoRegistration::ZoRegistration(TZoMetaData* targetSchema, const char* name, const char* const (&parents)[3],
                               TZoCreateFunction create, bool abstract, const std::type_info& type,
                               unsigned slot)
    : schema(targetSchema) {
    TZoClass::Parents found;
    bool missing = false;
    for (const char* parent : parents) {
        if (std::strcmp(parent, "NULL") == 0 || std::strcmp(parent, "0") == 0) continue;
        if (TZoClass* parentClass = schema->FindClass(ZoRegisteredName(parent))) {
            found.Add(parentClass);
        } else {
            missing = true;
        }
    }
    made = new TZoClass(schema, &found, name, create, abstract, schema->FindCadastre(name));
    made->SetType(type, slot);
    if (missing) made->NoteMissingParent();
}

ZoRegistration::~ZoRegistration() = default;

void ZoRegistration::AddField(FieldClassFunction fieldClassOf, AddFieldFunction add) {
    TZoClass* fieldClass = nullptr;
    TZoClassFieldType kind{};
    const ZoString typeName = fieldClassOf(schema, &fieldClass, &kind);
    TZoClassField* field = add(made.get(), fieldClass, typeName);
    unresolved.Add(field);
}

TZoClass* ZoRegistration::Finish() {
    if (TZoClass* present = schema->FindClass(made->GetName())) return present;
    for (TZoClassField* field : unresolved) schema->AddToResolveCrossRefs(field);
    TZoClass* added = schema->AddClass(made.get());
    schema->ResolveCrossRefs();
    return added;
}

} // namespace ZoPrimitives
