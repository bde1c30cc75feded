#include "ZoPrimitives/ZoRegister.h"

#include "Persistence/instances/ClassNames.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"

#include <charconv>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

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

namespace {

const char* const ISO_8601 = "%E4Y-%m-%dT%H:%M:%E7SZ";
const char* const ISO_8601_OF_ANY_YEAR = "%Y-%m-%dT%H:%M:%E*S%Ez";

const ZoString& Keep(ZoString&& text) {
    // One a thread, never deleted: mingw frees the memory of a thread_local before it calls the destructor.
    thread_local ZoString* kept = nullptr;
    if (kept == nullptr) kept = new ZoString;
    return *kept = std::move(text);
}

template <class Number>
void ReadDigits(const ZoString& stored, Number& value, const TZoClassField* field) {
    const char* const end = stored.c_str() + stored.length();
    Number read = 0;
    const auto [rest, error] = std::from_chars(stored.c_str(), end, read);
    if (error != std::errc() || rest != end) ZoRefuseStored(stored, field);
    value = read;
}

} // namespace

const ZoString& ZoToStored(long long value) { return Keep(WholeText({std::to_string(value)})); }
const ZoString& ZoToStored(unsigned long long value) { return Keep(WholeText({std::to_string(value)})); }
const ZoString& ZoToStored(const TTimestamp& value) { return Keep(WholeText(value.InUTCTime(ISO_8601))); }

void ZoFromStored(const ZoString& stored, long long& value, const TZoClassField* field) {
    ReadDigits(stored, value, field);
}
void ZoFromStored(const ZoString& stored, unsigned long long& value, const TZoClassField* field) {
    ReadDigits(stored, value, field);
}
void ZoFromStored(const ZoString& stored, TTimestamp& value, const TZoClassField* field) {
    if (!TTimestamp::IsValid(stored, ISO_8601_OF_ANY_YEAR)) ZoRefuseStored(stored, field);
    value = TTimestamp(stored, ISO_8601_OF_ANY_YEAR);
}

void ZoRefuseStored(const ZoString& stored, const TZoClassField* field) {
    throw XReadStream(ZoString::FormatString("[zoerror] field %s cannot hold the value '%.100s'",
                                             field->GetFieldName().c_str(), stored.c_str()),
                      "TZoClass::LoadFromStreamPre");
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

void ZoRegistration::FieldWas(const char* field, std::initializer_list<const char*> formerNames) {
    for (const char* former : formerNames) made->AddFormerName(made->FindField(field), former);
}

void ZoRegistration::ClassWas(std::initializer_list<const char*> formerNames) {
    for (const char* former : formerNames) made->AddFormerName(former);
}

TZoClass* ZoRegistration::Finish() {
    if (TZoClass* present = schema->FindClass(made->GetName())) {
        schema->NoteRival(*present, *made);
        return present;
    }
    for (TZoClassField* field : unresolved) schema->AddToResolveCrossRefs(field);
    TZoClass* added = schema->AddClass(made.get());
    schema->ResolveCrossRefs();
    return added;
}

} // namespace ZoPrimitives
