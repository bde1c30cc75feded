#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/FieldKinds.h"
#include "Persistence/schema/ReadPlan.h"
#include "Persistence/schema/RecordOrder.h"
#include "Persistence/schema/SchemaReader.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoSources.h"

#include <algorithm>

namespace ZoPrimitives {

namespace {

/// Whether a field of one kind in a file can be read into an application's field of another.
bool SameEncoding(TZoClassFieldType a, TZoClassFieldType b) {
    return FieldKindOf(a).encoding == FieldKindOf(b).encoding;
}

/// The place of a field's list in a record.
FieldPlace PlaceOf(const TZoClassField& field) { return FieldKindOf(field.GetFieldType()).list; }

} // namespace

TZoCadastre::TZoCadastre(const ZoString& className) : className(className) {}
TZoCadastre::~TZoCadastre() = default;

TZoClass::TZoClass(TZoMetaData* schema, Parents* parentClasses, const ZoString& name,
                   TZoCreateFunction create, bool abstract, TZoCadastre* cadastre)
    : name(name), abstract(abstract), create(create), cadastre(cadastre), schema(schema) {
    CheckWhole(this->name, name.c_str());
    if (parentClasses != nullptr) parents.Append(*parentClasses);
}

// Fields

TZoClass::FieldList& TZoClass::ListOf(const TZoClassField& field) {
    switch (PlaceOf(field)) {
    case FieldPlace::Maps:
        return fieldsChildMaps;
    case FieldPlace::Values:
        break;
    case FieldPlace::Children:
        return fieldsChilds;
    case FieldPlace::ChildLists:
        return fieldsChildLists;
    case FieldPlace::References:
        return fieldsReferences;
    case FieldPlace::ReferenceLists:
        return fieldsReferencesLists;
    }
    return fields;
}

void TZoClass::ReserveLike(const TZoClassField& field, std::size_t count) {
    ListOf(field).reserve(count);
    inOrder.reserve(inOrder.size() + count);
}

void TZoClass::PutInOrder() {
    inOrder.clear();
    for (const FieldList* list : {&fields, &fieldsChilds, &fieldsReferences, &fieldsChildLists,
                                  &fieldsReferencesLists, &fieldsChildMaps}) {
        for (const auto& field : *list) inOrder.push_back(field.get());
    }
    std::stable_sort(inOrder.begin(), inOrder.end(), [](const TZoClassField* a, const TZoClassField* b) {
        return PlaceOf(*a) < PlaceOf(*b);
    });
}

template <class Field>
Field* TZoClass::Adopt(Field* field, TZoClass* fieldClass) {
    pointer<TZoClassField> holder(field);
    TZoClassField& base = *field;
    base.owner = this;
    base.fieldClass = fieldClass;
    ++changes;
    if (fieldClass != nullptr) base.SetFieldClassName(fieldClass->GetName());
    ListOf(base).push_back(holder);
    if (!inOrder.empty() && PlaceOf(*inOrder.back()) > PlaceOf(base)) {
        if (!loading) PutInOrder();
    } else {
        inOrder.push_back(field);
    }
    return field;
}

TZoClassField* TZoClass::AddFieldInt(const ZoString& field, TZoSetter<int> set, TZoGetter<int> get) {
    return Adopt(new TZoClassFieldInt(field, set, get), nullptr);
}
TZoClassField* TZoClass::AddFieldUnsigned(const ZoString& field, TZoSetter<unsigned> set,
                                          TZoGetter<unsigned> get) {
    return Adopt(new TZoClassFieldUnsigned(field, set, get), nullptr);
}
TZoClassField* TZoClass::AddFieldBool(const ZoString& field, TZoSetter<bool> set, TZoGetter<bool> get) {
    return Adopt(new TZoClassFieldBool(field, set, get), nullptr);
}
TZoClassField* TZoClass::AddFieldFloat(const ZoString& field, TZoSetter<float> set, TZoGetter<float> get) {
    return Adopt(new TZoClassFieldFloat(field, set, get), nullptr);
}
TZoClassField* TZoClass::AddFieldDouble(const ZoString& field, TZoSetter<double> set, TZoGetter<double> get) {
    return Adopt(new TZoClassFieldDouble(field, set, get), nullptr);
}
TZoClassField* TZoClass::AddFieldString(const ZoString& field, TZoSetter<ZoString> set,
                                        TZoGetter<ZoString> get) {
    return Adopt(new TZoClassFieldString(field, set, get), nullptr);
}
TZoClassField* TZoClass::AddFieldBlob(const ZoString& field, TZoSetter<ZoBlob> set, TZoGetter<ZoBlob> get) {
    return Adopt(new TZoClassFieldBlob(field, set, get), nullptr);
}
TZoClassField* TZoClass::AddFieldListInt(const ZoString& field, const TZoListAccessors<int>& access) {
    return Adopt(new TZoClassFieldListInt(field, access), nullptr);
}
TZoClassField* TZoClass::AddFieldListFloat(const ZoString& field, const TZoListAccessors<float>& access) {
    return Adopt(new TZoClassFieldListFloat(field, access), nullptr);
}
TZoClassField* TZoClass::AddFieldListDouble(const ZoString& field, const TZoListAccessors<double>& access) {
    return Adopt(new TZoClassFieldListDouble(field, access), nullptr);
}
TZoClassField* TZoClass::AddFieldListString(const ZoString& field, const TZoListAccessors<ZoString>& access) {
    return Adopt(new TZoClassFieldListString(field, access), nullptr);
}
TZoClassFieldPointer* TZoClass::AddFieldChildPointer(const ZoString& field, TZoClass* fieldClass,
                                                     TZoPointerSetter set, TZoPointerGetter get) {
    return Adopt(new TZoClassFieldPointer(field, ftChildPointer, set, get), fieldClass);
}
TZoClassFieldPointer* TZoClass::AddFieldChildValue(const ZoString& field, TZoClass* fieldClass,
                                                   TZoPointerSetter set, TZoPointerGetter get) {
    return Adopt(new TZoClassFieldPointer(field, ftChildValue, set, get), fieldClass);
}
TZoClassFieldPointer* TZoClass::AddFieldPointer(const ZoString& field, TZoClass* fieldClass,
                                                TZoPointerSetter set, TZoPointerGetter get) {
    return Adopt(new TZoClassFieldPointer(field, ftPointer, set, get), fieldClass);
}
TZoClassFieldPointer* TZoClass::AddFieldPointerEx(const ZoString& field, TZoClass* fieldClass,
                                                  TZoPointerSetter set, TZoPointerGetter get) {
    return Adopt(new TZoClassFieldPointer(field, ftPointerEx, set, get), fieldClass);
}
TZoClassFieldPointerList* TZoClass::AddFieldChildPointerList(const ZoString& field, TZoClass* fieldClass,
                                                             const TZoPointerListAccessors& access) {
    return Adopt(new TZoClassFieldPointerList(field, ftChildPointerList, access), fieldClass);
}
TZoClassFieldPointerList* TZoClass::AddFieldPointerList(const ZoString& field, TZoClass* fieldClass,
                                                        const TZoPointerListAccessors& access) {
    return Adopt(new TZoClassFieldPointerList(field, ftPointerList, access), fieldClass);
}
TZoClassFieldPointerList* TZoClass::AddFieldPointerListEx(const ZoString& field, TZoClass* fieldClass,
                                                          const TZoPointerListAccessors& access) {
    return Adopt(new TZoClassFieldPointerList(field, ftPointerListEx, access), fieldClass);
}
TZoClassFieldPointerMap* TZoClass::AddFieldChildPointerMap(const ZoString& field, TZoClass* fieldClass,
                                                           TZoClassField* key, TZoClassField* value) {
    auto* map = Adopt(new TZoClassFieldPointerMap(field), fieldClass);
    if (key != nullptr || value != nullptr) map->AddFields(key, value);
    return map;
}

namespace {

/// A field without accessors.
template <class Field>
Field* BareField(const ZoString& name, TZoClassFieldType kind) {
    if constexpr (std::is_same_v<Field, TZoClassFieldPointerMap>) {
        return new Field(name);
    } else if constexpr (std::is_same_v<Field, TZoClassFieldPointer>) {
        return new Field(name, kind, nullptr, nullptr);
    } else if constexpr (std::is_same_v<Field, TZoClassFieldPointerList>) {
        return new Field(name, kind, {});
    } else if constexpr (std::is_constructible_v<Field, ZoString, std::nullptr_t, std::nullptr_t>) {
        return new Field(name, nullptr, nullptr);
    } else {
        return new Field(name, {});
    }
}

} // namespace

TZoClassField* TZoClass::AddField(int fieldClassId, TZoClassFieldType kind, const ZoString& field) {
    TZoClassField* made = nullptr;
    switch (kind) {
#define ZO_ROW(Kind, Class, Place, Hold, Encoding, Member)                                                   \
    case ft##Kind:                                                                                           \
        made = Adopt(BareField<Class>(field, ft##Kind), nullptr);                                            \
        break;
        ZO_FIELD_KINDS(ZO_ROW)
#undef ZO_ROW
    }
    if (made != nullptr) made->fieldClassId = fieldClassId;
    return made;
}

TZoClassField* TZoClass::FindField(const ZoString& wanted) {
    for (TZoClassField* field : inOrder) {
        if (field->GetFieldName() == wanted) return field;
    }
    for (const auto& parent : parents) {
        if (TZoClassField* field = parent->FindField(wanted)) return field;
    }
    return nullptr;
}

void TZoClass::AddFormerName(const ZoString& former) { formerNames.push_back(WholeText(former)); }

void TZoClass::AddFormerName(TZoClassField* field, const ZoString& former) {
    ZO_ASSERT(
        field != nullptr && field->GetOwnerClass() == this,
        "field->GetOwnerClass() == this && \"[zoerror] the field is another class's. See ZO_FIELD_WAS\"",
        ZoSources::ZOMETADATA);
    formerFieldNames.emplace_back(WholeText(former), field);
}

bool TZoClass::HadName(const ZoString& former) const {
    return std::find(formerNames.begin(), formerNames.end(), former) != formerNames.end();
}

TZoClassField* TZoClass::FindFormerField(const ZoString& former) const {
    for (const auto& [known, field] : formerFieldNames) {
        if (known == former) return field;
    }
    for (const auto& parent : parents) {
        if (TZoClassField* field = parent->FindFormerField(former)) return field;
    }
    return nullptr;
}

TZoClassField* TZoClass::GetField(int index) {
    ZO_ASSERT(index >= 1 && index <= GetFieldCount(), "index >= 1 && index <= GetFieldCount()",
              ZoSources::ZOMETADATA);
    return inOrder[static_cast<std::size_t>(index) - 1];
}

int TZoClass::GetFieldCount() const { return static_cast<int>(inOrder.size()); }

unsigned long long TZoClass::GetFieldPointerCount() const {
    unsigned long long count = fieldsChildMaps.size();
    ForEachPointerField([&count](const TZoClassField&) { ++count; });
    for (const auto& parent : parents) count += parent->GetFieldPointerCount();
    return count;
}

void TZoClass::FillAllClassFields(TIList<TZoClassField>* list) {
    for (const auto& parent : parents) parent->FillAllClassFields(list);
    for (TZoClassField* field : inOrder) list->Add(field);
}

bool TZoClass::IsInherited(const TZoClass* ancestor) const {
    if (this == ancestor) return true;
    for (const auto& parent : parents) {
        if (parent->IsInherited(ancestor)) return true;
    }
    return false;
}

bool TZoClass::IsInherited(const ZoString& ancestorName) const {
    if (name == ancestorName) return true;
    for (const auto& parent : parents) {
        if (parent->IsInherited(ancestorName)) return true;
    }
    return false;
}

/// Calls the action with each of the class's own fields and maps' sub-fields whose object is a member of its
/// owner.
template <class Action>
void TZoClass::ForEachMember(Action action) const {
    const auto visit = [&action](TZoClassField& field) {
        if (field.GetFieldType() == ftChildValue) action(static_cast<TZoClassFieldPointer&>(field));
    };
    for (const auto& field : fieldsChildMaps) RecordOrder::ForEachHalf(*field, visit);
    for (const auto& field : fieldsChilds) visit(*field);
}

bool TZoClass::HasValueChildren() const {
    bool any = false;
    ForEachMember([&any](TZoClassFieldPointer&) { any = true; });
    for (const auto& parent : parents) any = any || parent->HasValueChildren();
    return any;
}

ZoStreamableBase* TZoClass::CreateInstance(TZoMetaData* fileSchema, TZoMetaData* applicationSchema) {
    TZoClass* made = original != nullptr ? original : this;
    return made->create == nullptr ? nullptr : made->create(fileSchema, applicationSchema, made);
}

/// The application's field for a field of this class of a file, by its name or by a former one.
TZoClassField* TZoClass::FieldFor(const TZoClassField& field, TZoClass& applicationClass) {
    if (TZoClassField* present = applicationClass.FindField(field.GetFieldName())) return present;
    TZoClassField* former = applicationClass.FindFormerField(field.GetFieldName());
    return former == nullptr || FindField(former->GetFieldName()) != nullptr ? nullptr : former;
}

void TZoClass::SetOriginal(TZoClass* applicationClass) {
    original = applicationClass;
    for (TZoClassField* field : inOrder) {
        TZoClassField* target = applicationClass == nullptr ? nullptr : FieldFor(*field, *applicationClass);
        const bool fits = target != nullptr && SameEncoding(target->GetFieldType(), field->GetFieldType());
        field->original = fits ? target : nullptr;
    }
}

/// Adds up what the class and its ancestors hold. Each class keeps its sum: a repeated ancestor is not walked
/// again.
const TZoClass::Extent& TZoClass::RecordExtent() const {
    if (extent.known) return extent;
    Extent sum{true, static_cast<unsigned>(inOrder.size()), 0, 0};
    for (const TZoClassField* field : inOrder) {
        sum.bytes += FieldKindOf(field->GetFieldType()).smallest;
        if (field->IsPointerKind()) ++sum.pointers;
    }
    for (const auto& parent : parents) {
        const Extent& inherited = parent->RecordExtent();
        sum.bytes += inherited.bytes;
        sum.fields += inherited.fields;
        sum.pointers += inherited.pointers;
    }
    return extent = sum;
}

// The class's entry in the schema record

void TZoClass::SaveMetaToStream(TBinOutStream* stream) { SaveMetaToStream(stream, nullptr); }

void TZoClass::SaveMetaToStream(TBinOutStream* stream, const Listed* listed) {
    *stream << classId << name << abstract << SchemaReader::PARENTS_FOLLOW
            << static_cast<int>(parents.NItems());
    for (const auto& parent : parents) {
        // No reader accepts a schema that lacks a parent.
        if (listed != nullptr && !std::binary_search(listed->begin(), listed->end(), parent.get())) {
            const ZoString message =
                ZoString::FormatString("[zoerror] parent class of %s not registered", name.c_str());
            AssertWithFunctor("parent is written", message.c_str(), ZoSources::ZOMETADATA, __LINE__);
        }
        *stream << parent->GetClassId();
    }
    if (fieldsChildMaps.size() != 0) {
        SaveBlock(stream, fieldsChildMaps, "fieldsChildMaps->NItems() <= MAX_INT_SIZE", listed);
    }
    SaveBlock(stream, fields, "fields->NItems() <= MAX_INT_SIZE", listed);
    SaveBlock(stream, fieldsChilds, "fieldsChilds->NItems() <= MAX_INT_SIZE", listed);
    SaveBlock(stream, fieldsChildLists, "fieldsChildLists->NItems() <= MAX_INT_SIZE", listed);
    SaveBlock(stream, fieldsReferences, "fieldsReferences->NItems() <= MAX_INT_SIZE", listed);
    SaveBlock(stream, fieldsReferencesLists, "fieldsReferencesLists->NItems() <= MAX_INT_SIZE", listed);
}

void TZoClass::SaveBlock(TBinOutStream* stream, const FieldList& list, const char* countCheck,
                         const Listed* listed) {
    ZO_ASSERT(list.size() <= RecordFormat::MAX_INT_SIZE, countCheck, ZoSources::ZOMETADATA);
    *stream << static_cast<unsigned>(list.size());
    for (const auto& field : list) {
        const TZoClass* fieldClass = field->GetFieldClass();
        // A class that the file does not list cannot be looked up in it.
        const bool known =
            fieldClass != nullptr &&
            (listed == nullptr || std::binary_search(listed->begin(), listed->end(), fieldClass));
        *stream << (known ? fieldClass->GetClassId() : 0) << static_cast<int>(field->GetFieldType())
                << field->GetFieldName();
    }
}

void TZoClass::LoadMetaFromStream(TBinInStream* stream) { SchemaReader::ReadClass(*stream, *this); }

// The objects of the class

void TZoClass::ChildsReferences(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) {
    RecordOrder::ForEachLevel(*this, [&](const TZoClass& level) {
        RecordOrder::ForEachPointer(level, [&](TZoClassFieldPointerBase& field) {
            if (field.HoldsChildren()) field.GetFieldMetaData(object, action);
        });
    });
}

void TZoClass::FillValueChildren(ZoStreamableBase* object, TDVector<ZoStreamableBase*>* members) {
    for (const auto& parent : parents) parent->FillValueChildren(object, members);
    ForEachMember([&](TZoClassFieldPointer& field) {
        if (ZoStreamableBase* member = field.Get(object)) members->Add(member);
    });
}

/// Whether objects of the given one's type have a member that may be invalid, or whose class cannot be told.
bool TZoClass::MembersMayBeInvalid(ZoStreamableBase* object) const {
    bool may = false;
    for (const auto& parent : parents) may = may || parent->MembersMayBeInvalid(object);
    ForEachMember([&](TZoClassFieldPointer& field) {
        ZoStreamableBase* member = may || !field.IsPlain() ? nullptr : field.Get(object);
        const TZoClass* memberClass = member == nullptr ? nullptr : member->GetOriginalClass(schema);
        may = memberClass == nullptr || memberClass->GetType() != &typeid(*member) ||
              memberClass->Answers(hookGetIsValid) || memberClass->MembersMayBeInvalid(member);
    });
    return may;
}

void TZoClass::DeleteReferences(ZoStreamableBase* object,
                                bool (*isRemoved)(const void*, const ZoStreamableBase*),
                                const void* context) {
    for (const auto& parent : parents) parent->DeleteReferences(object, isRemoved, context);
    ForEachPointerField([&](TZoClassField& field) {
        static_cast<TZoClassFieldPointerBase&>(field).DeleteReferences(object, isRemoved, context);
    });
}

} // namespace ZoPrimitives
