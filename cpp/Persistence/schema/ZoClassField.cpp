#include "ZoPrimitives/ZoClassField.h"

#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/FieldKinds.h"
#include "Persistence/schema/PointerResolver.h"
#include "Persistence/schema/RecordOrder.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoSources.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace ZoPrimitives {

std::vector<ZoStreamableBase*> FieldCodec::ItemsOf(TZoClassField& field, ZoStreamableBase* object) {
    std::vector<ZoStreamableBase*> items;
    ZoItemAction append([&items](ZoStreamableBase* item) { items.push_back(item); });
    field.GetFieldMetaData(object, append);
    return items;
}

namespace {

/// Checks that the kind belongs to the C++ class: casts by the kind rely on it.
template <class Field>
void CheckKind(TZoClassFieldType kind, const ZoString& name) {
    if (IsKindOf<Field>(kind)) return;
    const ZoString message =
        ZoString::FormatString("[zoerror] field %s cannot be of kind %d. See TZoClass::AddField",
                               name.c_str(), static_cast<int>(kind));
    AssertWithFunctor("IsKindOf<Field>(kind)", message.c_str(), ZoSources::ZOMETADATA, __LINE__);
}

/// Whether a map's sub-field may be of the kind: a list of owned objects or any single pointer.
bool IsHalf(TZoClassFieldType kind) {
    return kind == ftChildPointerList || IsKindOf<TZoClassFieldPointer>(kind);
}

[[noreturn]] void FailHalf(const TZoClassFieldPointerMap& map) {
    const ZoString message = ZoString::FormatString(
        "[zoerror] a sub-field of map %s is neither a list of owned objects nor a single pointer. See "
        "TZoClassFieldPointerMap::AddFields",
        map.GetFieldName().c_str());
    AssertWithFunctor("IsHalf(kind)", message.c_str(), ZoSources::ZOMETADATA, __LINE__);
}

} // namespace

void FieldCodec::FailWithoutHalves(const TZoClassFieldPointerMap& map) {
    const ZoString message =
        ZoString::FormatString("[zoerror] map %s has no sub-fields. See TZoClassFieldPointerMap::AddFields",
                               map.GetFieldName().c_str());
    AssertWithFunctor("key && value", message.c_str(), ZoSources::ZOMETADATA, __LINE__);
}

void FieldCodec::ThrowDangling(const TZoClassField& field, const ZoStreamableBase* object,
                               const ZoStreamableBase* target) {
    throw XStream(
        ZoString::FormatString("[zoerror] child reference '%s' (%p) in class '%s' (%p) not found. See "
                               "DECLARE_ZO_FIELD_EXTERNAL_REFERENCE or DECLARE_ZO_FIELD_CHILD.",
                               field.GetFieldName().c_str(), static_cast<const void*>(target),
                               ClassText(typeid(*object)).c_str(), static_cast<const void*>(object)),
        "TZoClassFieldPointer::SavePointer");
}

void FieldCodec::ThrowDanglingItem(const TZoClassField& field, const ZoStreamableBase* item) {
    throw XStream(ZoString::FormatString("[zoerror] child reference <%s> (%p) not found in %s. See "
                                         "DECLARE_ZO_FIELD_EXTERNAL_REFERENCE or DECLARE_ZO_FIELD_CHILD.",
                                         ClassText(typeid(*item)).c_str(), static_cast<const void*>(item),
                                         field.GetFieldName().c_str()),
                  "SavePointerFunc::operator()");
}

namespace {

/// An empty text without a buffer: a schema may hold very many of them.
ZoString NoText() {
    ZoString text;
    const ZoString buffer(std::move(text));
    return text;
}

} // namespace

TZoClassField::TZoClassField(const ZoString& name, TZoClassFieldType kind)
    : kind(kind), name(name.c_str()[0] == '\0' ? NoText() : name) {
    CheckWhole(this->name, name.c_str());
}
TZoClassField::~TZoClassField() = default;

const ZoString& TZoClassField::NoName() {
    static const ZoString none;
    return none;
}

void TZoClassField::SetFieldClassName(const ZoString& newName) {
    className = std::make_unique<const ZoString>(WholeText(newName));
    if (owner != nullptr) ++owner->changes;
}

bool TZoClassField::IsPointerKind() const { return FieldKindOf(kind).holds != FieldHold::Nothing; }

void TZoClassField::GetFieldMetaData(ZoStreamableBase*, ZoStreamableBaseFunctor&) {}

void TZoClassField::SetFieldClass(TZoClass* newClass) {
    fieldClass = newClass;
    if (owner != nullptr) ++owner->changes;
    if (half != Half::No && newClass != nullptr && name.length() == 0) name = newClass->GetName();
}

const ZoString& TZoClassField::Unresolved() {
    static const ZoString unresolved("<unresolve>");
    return unresolved;
}

TZoClassField::Entry TZoClassField::LoadMetaFromStream(TBinInStream* stream) {
    Entry entry{};
    *stream >> entry.classId >> entry.kind >> entry.name;
    return entry;
}

// Values

template <class T>
TZoClassFieldValue<T>::TZoClassFieldValue(const ZoString& name, TZoSetter<T> set, TZoGetter<T> get)
    : TZoClassField(name, KindOf<TZoClassFieldValue<T>>()), set(set), get(get) {}

template <class T>
void TZoClassFieldValue<T>::SaveToStream(TBinOutStream* stream, TBinOutStreamer*, ZoStreamableBase* object) {
    FieldCodec::Save(VirtualSink{*stream}, *this, object);
}

template <class T>
void TZoClassFieldValue<T>::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    FieldCodec::LoadFileField(*stream, *this, object);
}

template <class T>
TZoClassFieldList<T>::TZoClassFieldList(const ZoString& name, const TZoListAccessors<T>& access)
    : TZoClassField(name, KindOf<TZoClassFieldList<T>>()), access(access) {}

template <class T>
void TZoClassFieldList<T>::SaveToStream(TBinOutStream* stream, TBinOutStreamer*, ZoStreamableBase* object) {
    FieldCodec::Save(VirtualSink{*stream}, *this, object);
}

template <class T>
void TZoClassFieldList<T>::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    FieldCodec::LoadFileField(*stream, *this, object);
}

template class ZO_API_DEFINED TZoClassFieldValue<int>;
template class ZO_API_DEFINED TZoClassFieldValue<unsigned>;
template class ZO_API_DEFINED TZoClassFieldValue<bool>;
template class ZO_API_DEFINED TZoClassFieldValue<float>;
template class ZO_API_DEFINED TZoClassFieldValue<double>;
template class ZO_API_DEFINED TZoClassFieldValue<ZoString>;
template class ZO_API_DEFINED TZoClassFieldValue<ZoBlob>;
template class ZO_API_DEFINED TZoClassFieldList<int>;
template class ZO_API_DEFINED TZoClassFieldList<float>;
template class ZO_API_DEFINED TZoClassFieldList<double>;
template class ZO_API_DEFINED TZoClassFieldList<ZoString>;

// Pointers

TZoClassFieldPointerBase::TZoClassFieldPointerBase(const ZoString& name, TZoClassFieldType kind)
    : TZoClassField(name, kind) {}
TZoClassFieldPointerBase::~TZoClassFieldPointerBase() = default;

bool TZoClassFieldPointerBase::Accepts(const ZoStreamableBase* target) const {
    if (typeTest != nullptr) return typeTest(target);
    const TZoClass* declared = GetFieldClass();
    const ZoString& wanted = declared != nullptr ? declared->GetName() : GetFieldClassName();
    if (wanted.length() == 0) return true;
    if (TZoMetaData::IsGenericBase(wanted)) {
        return wanted != "ZoObjectStreamable" || dynamic_cast<const ZoObjectStreamable*>(target) != nullptr;
    }
    if (declared == nullptr || declared->GetMetaData() == nullptr) return false;
    const TZoClass* targetClass = target->GetOriginalClass(declared->GetMetaData());
    return targetClass != nullptr && targetClass->IsInherited(declared);
}

bool TZoClassField::IsPlain() const {
    if (kind != ftChildPointerMap) return plain;
    bool all = true;
    RecordOrder::ForEachHalf(*this, [&](const TZoClassField& part) { all = all && part.IsPlain(); });
    return all;
}

bool TZoClassFieldPointerBase::Owns() const { return FieldKindOf(GetFieldType()).holds == FieldHold::Owned; }

bool TZoClassFieldPointerBase::HoldsChildren() const { return ZoPrimitives::HoldsChildren(GetFieldType()); }

TZoClassFieldPointer::TZoClassFieldPointer(const ZoString& name, TZoClassFieldType kind, TZoPointerSetter set,
                                           TZoPointerGetter get)
    : TZoClassFieldPointerBase(name, kind), set(set), get(get) {
    CheckKind<TZoClassFieldPointer>(kind, name);
}
TZoClassFieldPointer::~TZoClassFieldPointer() = default;

void TZoClassFieldPointer::SavePointer(TBinOutStream* stream, TBinOutStreamer*, ZoStreamableBase* object) {
    FieldCodec::SaveUids(VirtualSink{*stream}, *this, object);
}

void TZoClassFieldPointer::GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) {
    action(Get(object));
}

void TZoClassFieldPointer::LoadPointer(TBinInStream* stream) {
    FieldCodec::Load(VirtualSource{*stream}, static_cast<TZoClassFieldPointer*>(GetOriginal()), nullptr);
}

void TZoClassFieldPointer::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    FieldCodec::LoadFileField(*stream, *this, object);
}

void TZoClassFieldPointer::DeleteReferences(ZoStreamableBase* object,
                                            bool (*isRemoved)(const void*, const ZoStreamableBase*),
                                            const void* context) {
    if (GetFieldType() == ftChildValue) return;
    const ZoStreamableBase* target = Get(object);
    if (target != nullptr && isRemoved(context, target)) Set(object, nullptr);
}

// Lists of pointers

TZoClassFieldPointerList::TZoClassFieldPointerList(const ZoString& name, TZoClassFieldType kind,
                                                   const TZoPointerListAccessors& access)
    : TZoClassFieldPointerBase(name, kind), access(access) {
    CheckKind<TZoClassFieldPointerList>(kind, name);
}
TZoClassFieldPointerList::~TZoClassFieldPointerList() = default;

unsigned long long TZoClassFieldPointerList::NItems(ZoStreamableBase* object) {
    return access.nItems == nullptr ? 0 : access.nItems(object, this);
}

ZoStreamableBase* TZoClassFieldPointerList::ElementAt(ZoStreamableBase* object, unsigned long long index) {
    if (access.elementAt == nullptr || index == 0 || index > NItems(object)) return nullptr;
    return access.elementAt(object, this, static_cast<int>(index));
}

namespace {

/// What `DeleteReferences` asks of each item.
struct RemovedTest {
    bool (*isRemoved)(const void*, const ZoStreamableBase*);
    const void* context;
    bool operator()(const ZoStreamableBase* item) const {
        return item != nullptr && isRemoved(context, item);
    }
};

/// Holds the items of a list while it is emptied and filled again, so that those that go back into it do not
/// end in between. If the filling fails, items that no list has got back end, as they do whenever a list is
/// emptied; removed items are their owner's.
class HeldItems {
public:
    HeldItems(const std::vector<ZoStreamableBase*>& items, const RemovedTest& removed) : removed(removed) {
        for (const ZoStreamableBase* item : items) {
            // An item that nobody counts belongs to somebody else.
            if (item != nullptr && ZoReferenceCount::Count(item) != 0) held.push_back(item);
        }
        for (const ZoStreamableBase* item : held) ZoReferenceCount::Add(item);
    }
    ~HeldItems() {
        for (const ZoStreamableBase* item : held) {
            if (succeeded || removed(item)) {
                ZoReferenceCount::Surrender(item);
            } else {
                ZoReferenceCount::Release(item);
            }
        }
    }
    HeldItems(const HeldItems&) = delete;
    HeldItems& operator=(const HeldItems&) = delete;
    void Succeed() { succeeded = true; }

private:
    RemovedTest removed;
    std::vector<const ZoStreamableBase*> held;
    bool succeeded = false;
};

} // namespace

void TZoClassFieldPointerList::SavePointers(TBinOutStream* stream, TBinOutStreamer*,
                                            ZoStreamableBase* object) {
    FieldCodec::SaveUids(VirtualSink{*stream}, *this, object);
}

void TZoClassFieldPointerList::GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) {
    if (access.iterateOver != nullptr) {
        access.iterateOver(object, this, action);
    } else if (access.elementAt != nullptr) {
        const auto count = static_cast<int>(NItems(object));
        for (int i = 1; i <= count; ++i) action(access.elementAt(object, this, i));
    }
}

void TZoClassFieldPointerList::LoadPointers(TBinInStream* stream, ZoStreamableBase* object,
                                            TZoClassFieldPointerList* application) {
    FieldCodec::LoadUids(VirtualSource{*stream}, object, application);
}

void TZoClassFieldPointerList::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    FieldCodec::LoadFileField(*stream, *this, object);
}

void TZoClassFieldPointerList::DeleteReferences(ZoStreamableBase* object,
                                                bool (*isRemoved)(const void*, const ZoStreamableBase*),
                                                const void* context) {
    const std::vector<ZoStreamableBase*> items = FieldCodec::ItemsOf(*this, object);
    const RemovedTest removed{isRemoved, context};
    if (std::none_of(items.begin(), items.end(), removed)) return;
    const int first = access.first != nullptr ? access.first(object, this) : 0;
    const int second = access.second != nullptr ? access.second(object, this) : 0;
    HeldItems held(items, removed);
    CreateList(object, 0, first, second);
    for (ZoStreamableBase* item : items) {
        if (!removed(item)) Add(object, item);
    }
    held.Succeed();
}

// Maps

TZoClassFieldPointerMap::TZoClassFieldPointerMap(const ZoString& name)
    : TZoClassFieldPointerBase(name, ftChildPointerMap) {}
TZoClassFieldPointerMap::~TZoClassFieldPointerMap() = default;

void TZoClassFieldPointerMap::AddFields(TZoClassFieldType keyKind, TZoClassFieldType valueKind) {
    if (!IsHalf(keyKind) || !IsHalf(valueKind)) FailHalf(*this);
    const auto make = [](TZoClassFieldType kind) -> TZoClassField* {
        if (kind == ftChildPointerList) return new TZoClassFieldPointerList("", kind, {});
        return new TZoClassFieldPointer("", kind, nullptr, nullptr);
    };
    const pointer<TZoClassField> newKey(make(keyKind));
    Adopt(newKey.get(), Half::OfTheMapsClass, make(valueKind));
}

void TZoClassFieldPointerMap::AddFields(TZoClassField* newKey, TZoClassField* newValue) {
    Adopt(newKey, Half::OfItsOwnClass, newValue);
}

void TZoClassFieldPointerMap::Adopt(TZoClassField* newKey, Half keyClass, TZoClassField* newValue) {
    const pointer<TZoClassField> held[] = {pointer<TZoClassField>(newKey), pointer<TZoClassField>(newValue)};
    auto* keys = Adopt(newKey, keyClass);
    auto* values = Adopt(newValue, Half::OfTheMapsClass);
    key = keys;
    value = values;
}

TZoClassFieldPointerBase* TZoClassFieldPointerMap::Adopt(TZoClassField* field, Half classOf) {
    // A class that an application derived may claim any kind, so the C++ class itself is checked.
    TZoClassFieldPointerBase* adopted = dynamic_cast<TZoClassFieldPointer*>(field);
    if (adopted == nullptr) adopted = dynamic_cast<TZoClassFieldPointerList*>(field);
    if (adopted == nullptr || !IsHalf(adopted->GetFieldType())) FailHalf(*this);
    TZoClassField& base = *adopted;
    base.half = classOf;
    base.owner = owner;
    // What an application's map reads goes to that map's own sub-fields.
    SetOriginal(adopted, adopted);
    const bool takesClass = classOf == Half::OfTheMapsClass && base.GetFieldClassName().length() == 0;
    adopted->SetFieldClass(takesClass && base.fieldClass == nullptr ? fieldClass : base.fieldClass);
    return adopted;
}

void TZoClassFieldPointerMap::SavePair(TBinOutStream* stream, TBinOutStreamer*, ZoStreamableBase* object) {
    FieldCodec::SaveUids(VirtualSink{*stream}, *this, object);
}

void TZoClassFieldPointerMap::GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) {
    RecordOrder::ForEachHalf(*this, [&](TZoClassFieldPointerBase& half) {
        if (half.HoldsChildren()) half.GetFieldMetaData(object, action);
    });
}

void TZoClassFieldPointerMap::LoadPair(TBinInStream* stream, ZoStreamableBase* object) {
    FieldCodec::Load(VirtualSource{*stream}, static_cast<TZoClassFieldPointerMap*>(GetOriginal()), object);
}

void TZoClassFieldPointerMap::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    FieldCodec::LoadFileField(*stream, *this, object);
}

void TZoClassFieldPointerMap::DeleteReferences(ZoStreamableBase* object,
                                               bool (*isRemoved)(const void*, const ZoStreamableBase*),
                                               const void* context) {
    TZoClassFieldPointerList* keys = FieldCodec::AsList(key.get());
    TZoClassFieldPointerList* values = FieldCodec::AsList(value.get());
    if (keys == nullptr || values == nullptr) {
        return RecordOrder::ForEachHalf(*this, [&](TZoClassFieldPointerBase& half) {
            half.DeleteReferences(object, isRemoved, context);
        });
    }
    const std::vector<ZoStreamableBase*> gatheredKeys = FieldCodec::ItemsOf(*keys, object);
    const std::vector<ZoStreamableBase*> gatheredValues = FieldCodec::ItemsOf(*values, object);
    const RemovedTest removed{isRemoved, context};
    std::vector<std::pair<ZoStreamableBase*, ZoStreamableBase*>> kept;
    const std::size_t count = std::min(gatheredKeys.size(), gatheredValues.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (!removed(gatheredKeys[i]) && !removed(gatheredValues[i])) {
            kept.emplace_back(gatheredKeys[i], gatheredValues[i]);
        }
    }
    if (kept.size() == count) return;
    HeldItems heldKeys(gatheredKeys, removed);
    HeldItems heldValues(gatheredValues, removed);
    keys->CreateList(object, 0, 0, 0);
    values->CreateList(object, 0, 0, 0);
    for (const auto& [keyObject, valueObject] : kept) {
        keys->Add(object, keyObject);
        values->Add(object, valueObject);
    }
    heldKeys.Succeed();
    heldValues.Succeed();
}

} // namespace ZoPrimitives
