#include "ZoPrimitives/ZoClassField.h"

#include "Persistence/ClassNames.h"
#include "Persistence/HandleAccess.h"
#include "Persistence/PointerResolver.h"
#include "Persistence/RecordChecks.h"
#include "Persistence/RecordFormat.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <climits>
#include <vector>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Persistence/ZoMetaData";

template <class T>
struct ValueKind;
template <>
struct ValueKind<int> {
    static constexpr TZoClassFieldType value = ftInt, list = ftListInt;
};
template <>
struct ValueKind<unsigned> {
    static constexpr TZoClassFieldType value = ftUnsigned;
};
template <>
struct ValueKind<bool> {
    static constexpr TZoClassFieldType value = ftBool;
};
template <>
struct ValueKind<float> {
    static constexpr TZoClassFieldType value = ftFloat, list = ftListFloat;
};
template <>
struct ValueKind<double> {
    static constexpr TZoClassFieldType value = ftDouble, list = ftListDouble;
};
template <>
struct ValueKind<ZoString> {
    static constexpr TZoClassFieldType value = ftString, list = ftListString;
};
template <>
struct ValueKind<ZoBlob> {
    static constexpr TZoClassFieldType value = ftBlob;
};

/// The fewest bytes that a value takes in a record: of strings and blobs the length.
template <class T>
constexpr unsigned StoredSize = std::is_class_v<T> ? 4 : static_cast<unsigned>(sizeof(T));

int StoredCount(unsigned long long count) {
    ZO_ASSERT(count <= RecordFormat::MAX_INT_SIZE, "portableNItems <= MAX_INT_SIZE", SOURCE);
    return static_cast<int>(count);
}

/// The count of a list, checked against what is left of the record, and its integers.
struct ListHead {
    int count = 0;
    int first = 0;
    int second = 0;

    ListHead(TBinInStream& stream, bool hasFirst, bool hasSecond, unsigned itemSize) {
        CheckRemaining(stream, 1, 4);
        stream >> count;
        if (hasFirst) stream >> first;
        if (hasSecond) stream >> second;
        CheckRemaining(stream, count, itemSize);
    }
};

void SaveListHead(TBinOutStream& stream, unsigned long long count, TZoListInteger first,
                  TZoListInteger second, ZoStreamableBase* object, TZoClassField* field) {
    stream << StoredCount(count);
    if (first != nullptr) stream << first(object, field);
    if (second != nullptr) stream << second(object, field);
}

} // namespace

TZoClassField::TZoClassField(const ZoString& name, TZoClassFieldType kind) : name(name), kind(kind) {}
TZoClassField::~TZoClassField() = default;

TZoClassField* TZoClassField::GetOriginal(const TBinInStream& stream) const {
    return stream.GetPassingOver() ? nullptr : original;
}

bool TZoClassField::IsPointerKind() const {
    switch (kind) {
    case ftChildPointer:
    case ftChildPointerList:
    case ftPointer:
    case ftPointerList:
    case ftPointerEx:
    case ftPointerListEx:
    case ftChildValue:
    case ftChildPointerMap:
        return true;
    case ftInt:
    case ftFloat:
    case ftDouble:
    case ftString:
    case ftBlob:
    case ftBool:
    case ftListInt:
    case ftListFloat:
    case ftListDouble:
    case ftListString:
    case ftUnsigned:
        return false;
    }
    return false;
}

void TZoClassField::GetFieldMetaData(ZoStreamableBase*, ZoStreamableBaseFunctor&) {}

void TZoClassField::LoadMetaFromStream(TBinInStream* stream, int& classId, int& kind, ZoString& name) {
    *stream >> classId >> kind >> name;
}

// Values

template <class T>
TZoClassFieldValue<T>::TZoClassFieldValue(const ZoString& name, TZoSetter<T> set, TZoGetter<T> get)
    : TZoClassField(name, ValueKind<T>::value), set(set), get(get) {}

template <class T>
void TZoClassFieldValue<T>::SaveToStream(TBinOutStream* stream, TBinOutStreamer*, ZoStreamableBase* object) {
    *stream << get(object, this);
}

template <class T>
void TZoClassFieldValue<T>::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    const unsigned begin = stream->GetRecordPosition();
    CheckRemaining(*stream, 1, StoredSize<T>);
    auto* application = static_cast<TZoClassFieldValue*>(GetOriginal(*stream));
    if constexpr (std::is_same_v<T, ZoString>) {
        ZoString& value = stream->ScratchString();
        *stream >> value;
        if (application != nullptr && application->set != nullptr)
            application->set(object, application, value);
    } else {
        T value{};
        *stream >> value;
        if (application != nullptr && application->set != nullptr)
            application->set(object, application, value);
    }
    if (application == nullptr) stream->AddExcludedField(this, begin);
}

template <class T>
TZoClassFieldList<T>::TZoClassFieldList(const ZoString& name, const TZoListAccessors<T>& access)
    : TZoClassField(name, ValueKind<T>::list), access(access) {}

template <class T>
void TZoClassFieldList<T>::SaveToStream(TBinOutStream* stream, TBinOutStreamer*, ZoStreamableBase* object) {
    const unsigned long long count = access.nItems(object, this);
    SaveListHead(*stream, count, access.first, access.second, object, this);
    for (int i = 1; i <= static_cast<int>(count); ++i) *stream << access.elementAt(object, this, i);
}

template <class T>
void TZoClassFieldList<T>::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    const unsigned begin = stream->GetRecordPosition();
    auto* application = static_cast<TZoClassFieldList*>(GetOriginal(*stream));
    const TZoListAccessors<T> none{};
    const TZoListAccessors<T>& target = application != nullptr ? application->access : none;
    const ListHead head(*stream, target.first != nullptr, target.second != nullptr, StoredSize<T>);
    if (target.createList != nullptr) target.createList(object, head.count, head.first, head.second);
    std::conditional_t<std::is_same_v<T, ZoString>, ZoString&, T> value = [stream]() -> decltype(auto) {
        if constexpr (std::is_same_v<T, ZoString>) {
            return static_cast<ZoString&>(stream->ScratchString());
        } else {
            return T{};
        }
    }();
    for (int i = 0; i < head.count; ++i) {
        CheckRemaining(*stream, 1, StoredSize<T>);
        *stream >> value;
        if (target.add != nullptr) target.add(object, application, value);
    }
    if (application == nullptr) stream->AddExcludedField(this, begin);
}

template class TZoClassFieldValue<int>;
template class TZoClassFieldValue<unsigned>;
template class TZoClassFieldValue<bool>;
template class TZoClassFieldValue<float>;
template class TZoClassFieldValue<double>;
template class TZoClassFieldValue<ZoString>;
template class TZoClassFieldValue<ZoBlob>;
template class TZoClassFieldList<int>;
template class TZoClassFieldList<float>;
template class TZoClassFieldList<double>;
template class TZoClassFieldList<ZoString>;

// Pointers

TZoClassFieldPointerBase::TZoClassFieldPointerBase(const ZoString& name, TZoClassFieldType kind)
    : TZoClassField(name, kind) {}
TZoClassFieldPointerBase::~TZoClassFieldPointerBase() = default;

bool TZoClassFieldPointerBase::Accepts(const ZoStreamableBase* target) const {
    if (typeTest != nullptr) return typeTest(target);
    const TZoClass* declared = GetFieldClass();
    if (declared == nullptr) return true;
    const TZoClass* targetClass = target->GetOriginalClass(declared->GetMetaData());
    return targetClass != nullptr && targetClass->IsInherited(declared);
}

bool TZoClassFieldPointerBase::Owns() const {
    return GetFieldType() == ftChildPointer || GetFieldType() == ftChildPointerList ||
           GetFieldType() == ftChildPointerMap;
}

namespace {

/// What a uid means to a field: null, an object, or an object that was dropped.
struct Resolved {
    ZoStreamableBase* target;
    bool dropped;

    Resolved(const TZoPointerResolver& resolver, const TZoClassFieldPointerBase& field, int uid)
        : target(resolver.Find(uid)), dropped(uid != 0 && target == nullptr) {
        if (target != nullptr && !resolver.Allows(field, target)) {
            target = nullptr;
            dropped = true;
        }
    }
};

} // namespace

TZoClassFieldPointer::TZoClassFieldPointer(const ZoString& name, TZoClassFieldType kind, TZoPointerSetter set,
                                           TZoPointerGetter get)
    : TZoClassFieldPointerBase(name, kind), set(set), get(get) {}
TZoClassFieldPointer::~TZoClassFieldPointer() = default;

void TZoClassFieldPointer::SavePointer(TBinOutStream* stream, TBinOutStreamer*, ZoStreamableBase* object) {
    ZoStreamableBase* target = Get(object);
    int uid = 0;
    if (target != nullptr) {
        uid = stream->GetHandle(target);
        if (uid == 0) {
            throw XStream(
                ZoString::FormatString("[zoerror] child reference '%s' (%p) in class '%s' (%p) not found. "
                                       "See DECLARE_ZO_FIELD_EXTERNAL_REFERENCE or DECLARE_ZO_FIELD_CHILD.",
                                       GetFieldName().c_str(), static_cast<const void*>(target),
                                       ClassText(typeid(*object)).c_str(), static_cast<const void*>(object)),
                "TZoClassFieldPointer::SavePointer");
        }
    }
    *stream << uid;
}

void TZoClassFieldPointer::SaveUids(TBinOutStream* stream, TBinOutStreamer* streamer,
                                    ZoStreamableBase* object) {
    SavePointer(stream, streamer, object);
}

void TZoClassFieldPointer::SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer,
                                        ZoStreamableBase* object) {
    if (ZoStreamableBase* target = Get(object)) streamer->SaveInstance(stream, target);
}

void TZoClassFieldPointer::GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) {
    action(Get(object));
}

void TZoClassFieldPointer::LoadPointer(TBinInStream* stream) {
    CheckRemaining(*stream, 1, sizeof(std::int32_t));
    int uid = 0;
    *stream >> uid;
    if (GetOriginal(*stream) != nullptr) stream->UnresolvedPointers().LoadPointer(this, uid);
}

void TZoClassFieldPointer::LoadFromStream(TBinInStream* stream, ZoStreamableBase*) {
    const unsigned begin = stream->GetRecordPosition();
    LoadPointer(stream);
    if (GetOriginal(*stream) == nullptr) stream->AddExcludedField(this, begin);
}

void TZoClassFieldPointer::Resolve(TZoPointerResolver& resolver, ZoStreamableBase* object) {
    auto* application = static_cast<TZoClassFieldPointer*>(resolver.Original(*this));
    if (application == nullptr) return;
    const int uid = resolver.Next();
    if (application->GetFieldType() == ftChildValue) {
        resolver.ResolveValue(*application, object, uid);
        return;
    }
    if (!resolver.ResolvesReferences()) return;
    const Resolved resolved(resolver, *application, uid);
    application->Set(object, resolved.target);
    object->OnReadPointer(application, resolved.target, static_cast<unsigned>(uid));
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
    : TZoClassFieldPointerBase(name, kind), access(access) {}
TZoClassFieldPointerList::~TZoClassFieldPointerList() = default;

unsigned long long TZoClassFieldPointerList::NItems(ZoStreamableBase* object) {
    return access.nItems == nullptr ? 0 : access.nItems(object, this);
}

namespace {

/// Writes the uid of each item of a list.
class SavePointerFunc : public ZoStreamableBaseFunctor {
public:
    SavePointerFunc(TBinOutStream& stream, const TZoClassField& field) : stream(stream), field(field) {}

    void operator()(ZoStreamableBase* item) override {
        int uid = 0;
        if (item != nullptr) {
            uid = stream.GetHandle(item);
            if (uid == 0) {
                throw XStream(
                    ZoString::FormatString("[zoerror] child reference <%s> (%p) not found in %s. See "
                                           "DECLARE_ZO_FIELD_EXTERNAL_REFERENCE or DECLARE_ZO_FIELD_CHILD.",
                                           ClassText(typeid(*item)).c_str(), static_cast<const void*>(item),
                                           field.GetFieldName().c_str()),
                    "SavePointerFunc::operator()");
            }
        }
        stream << uid;
        ++count;
    }
    unsigned long long Count() const { return count; }

private:
    TBinOutStream& stream;
    const TZoClassField& field;
    unsigned long long count = 0;
};

/// Writes the record of each item of a list.
class SaveToStreamAction : public ZoStreamableBaseFunctor {
public:
    SaveToStreamAction(TBinOutStream* stream, TBinOutStreamer* streamer)
        : stream(stream), streamer(streamer) {}
    void operator()(ZoStreamableBase* item) override {
        if (item != nullptr) streamer->SaveInstance(stream, item);
    }

private:
    TBinOutStream* stream;
    TBinOutStreamer* streamer;
};

/// Gathers items, so that a list may change while they are looked at.
class GatherAction : public ZoStreamableBaseFunctor {
public:
    std::vector<ZoStreamableBase*> items;
    void operator()(ZoStreamableBase* item) override { items.push_back(item); }
};

} // namespace

void TZoClassFieldPointerList::SavePointers(TBinOutStream* stream, TBinOutStreamer*,
                                            ZoStreamableBase* object) {
    const unsigned long long count = NItems(object);
    SaveListHead(*stream, count, access.first, access.second, object, this);
    SavePointerFunc save(*stream, *this);
    GetFieldMetaData(object, save);
    ZO_ASSERT(save.Count() == count,
              "save.Count() == NItems && \"[zoerror] the list gave another number of items\"", SOURCE);
}

void TZoClassFieldPointerList::SaveUids(TBinOutStream* stream, TBinOutStreamer* streamer,
                                        ZoStreamableBase* object) {
    SavePointers(stream, streamer, object);
}

void TZoClassFieldPointerList::SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer,
                                            ZoStreamableBase* object) {
    SaveToStreamAction save(stream, streamer);
    GetFieldMetaData(object, save);
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
    const bool hasFirst = application != nullptr && application->HasFirst();
    const bool hasSecond = application != nullptr && application->HasSecond();
    const ListHead head(*stream, hasFirst, hasSecond, sizeof(std::int32_t));
    if (application == nullptr) {
        stream->SetRecordPosition(stream->GetRecordPosition() + static_cast<unsigned>(head.count) * 4);
        return;
    }
    application->CreateList(object, head.count, head.first, head.second);
    stream->UnresolvedPointers().LoadPointers(application, head.count, stream);
}

void TZoClassFieldPointerList::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    const unsigned begin = stream->GetRecordPosition();
    LoadPointers(stream, object, static_cast<TZoClassFieldPointerList*>(GetOriginal(*stream)));
    if (GetOriginal(*stream) == nullptr) stream->AddExcludedField(this, begin);
}

void TZoClassFieldPointerList::Resolve(TZoPointerResolver& resolver, ZoStreamableBase* object) {
    auto* application = static_cast<TZoClassFieldPointerList*>(resolver.Original(*this));
    if (application == nullptr) return;
    const int count = resolver.Next();
    const std::int32_t* uids = resolver.Take(count);
    if (!resolver.ResolvesReferences()) return;
    for (int i = 0; i < count; ++i) {
        const Resolved resolved(resolver, *application, uids[i]);
        if (resolved.dropped) continue;
        application->Add(object, resolved.target);
        object->OnReadPointer(application, resolved.target, static_cast<unsigned>(uids[i]));
    }
}

void TZoClassFieldPointerList::DeleteReferences(ZoStreamableBase* object,
                                                bool (*isRemoved)(const void*, const ZoStreamableBase*),
                                                const void* context) {
    GatherAction gather;
    GetFieldMetaData(object, gather);
    bool any = false;
    for (const ZoStreamableBase* item : gather.items)
        any = any || (item != nullptr && isRemoved(context, item));
    if (!any) return;
    const int first = access.first != nullptr ? access.first(object, this) : 0;
    const int second = access.second != nullptr ? access.second(object, this) : 0;
    // Emptying the list must not end the items that go back into it.
    for (const ZoStreamableBase* item : gather.items) ZoReferenceCount::Add(item);
    CreateList(object, 0, first, second);
    for (ZoStreamableBase* item : gather.items) {
        if (item == nullptr || !isRemoved(context, item)) Add(object, item);
    }
    for (const ZoStreamableBase* item : gather.items) ZoReferenceCount::Surrender(item);
}

// Maps

TZoClassFieldPointerMap::TZoClassFieldPointerMap(const ZoString& name)
    : TZoClassFieldPointerBase(name, ftChildPointerMap) {}
TZoClassFieldPointerMap::~TZoClassFieldPointerMap() = default;

void TZoClassFieldPointerMap::AddFields(TZoClassFieldType keyKind, TZoClassFieldType valueKind) {
    const ZoString subName =
        GetFieldClass() != nullptr ? GetFieldClass()->GetName() : ZoString("<unresolve>");
    const auto make = [&subName](TZoClassFieldType kind) -> TZoClassField* {
        if (kind == ftChildPointerList) return new TZoClassFieldPointerList(subName, kind, {});
        return new TZoClassFieldPointer(subName, kind, nullptr, nullptr);
    };
    AddFields(make(keyKind), make(valueKind));
}

void TZoClassFieldPointerMap::AddFields(TZoClassField* newKey, TZoClassField* newValue) {
    key = newKey;
    value = newValue;
    // A map that an application's field reads is read through that field's own sub-fields.
    for (TZoClassField* field : {newKey, newValue}) SetOriginal(field, field);
}

namespace {

TZoClassFieldPointerBase* AsPointers(TZoClassField* field) {
    return field != nullptr && field->IsPointerKind() ? static_cast<TZoClassFieldPointerBase*>(field)
                                                      : nullptr;
}

TZoClassFieldPointerList* AsList(TZoClassField* field) {
    return field != nullptr && field->GetFieldType() == ftChildPointerList
               ? static_cast<TZoClassFieldPointerList*>(field)
               : nullptr;
}

} // namespace

void TZoClassFieldPointerMap::SavePair(TBinOutStream* stream, TBinOutStreamer* streamer,
                                       ZoStreamableBase* object) {
    for (TZoClassField* field : {key.get(), value.get()}) {
        if (TZoClassFieldPointerBase* pointers = AsPointers(field)) {
            pointers->SaveUids(stream, streamer, object);
        } else if (field != nullptr) {
            field->SaveToStream(stream, streamer, object);
        }
    }
}

void TZoClassFieldPointerMap::SaveUids(TBinOutStream* stream, TBinOutStreamer* streamer,
                                       ZoStreamableBase* object) {
    SavePair(stream, streamer, object);
}

void TZoClassFieldPointerMap::SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer,
                                           ZoStreamableBase* object) {
    for (TZoClassField* field : {key.get(), value.get()}) {
        if (TZoClassFieldPointerBase* pointers = AsPointers(field))
            pointers->SaveToStream(stream, streamer, object);
    }
}

void TZoClassFieldPointerMap::GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) {
    for (TZoClassField* field : {key.get(), value.get()}) {
        if (field != nullptr) field->GetFieldMetaData(object, action);
    }
}

void TZoClassFieldPointerMap::LoadPair(TBinInStream* stream, ZoStreamableBase* object) {
    if (auto* application = static_cast<TZoClassFieldPointerMap*>(GetOriginal(*stream))) {
        for (TZoClassField* field : {application->key.get(), application->value.get()}) {
            if (field != nullptr) field->LoadFromStream(stream, object);
        }
    } else {
        TZoClassFieldPointerList::LoadPointers(stream, object, nullptr);
        TZoClassFieldPointerList::LoadPointers(stream, object, nullptr);
    }
}

void TZoClassFieldPointerMap::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    const unsigned begin = stream->GetRecordPosition();
    LoadPair(stream, object);
    if (GetOriginal(*stream) == nullptr) stream->AddExcludedField(this, begin);
}

void TZoClassFieldPointerMap::Resolve(TZoPointerResolver& resolver, ZoStreamableBase* object) {
    auto* application = static_cast<TZoClassFieldPointerMap*>(resolver.Original(*this));
    if (application == nullptr) return;
    TZoClassFieldPointerList* keys = AsList(application->key.get());
    TZoClassFieldPointerList* values = AsList(application->value.get());
    if (keys == nullptr || values == nullptr) {
        for (TZoClassField* field : {application->key.get(), application->value.get()}) {
            if (TZoClassFieldPointerBase* pointers = AsPointers(field)) pointers->Resolve(resolver, object);
        }
        return;
    }
    const int keyCount = resolver.Next();
    const std::int32_t* keyUids = resolver.Take(keyCount);
    const int valueCount = resolver.Next();
    const std::int32_t* valueUids = resolver.Take(valueCount);
    if (!resolver.ResolvesReferences()) return;
    // Pairs: both halves or none.
    for (int i = 0; i < keyCount && i < valueCount; ++i) {
        const Resolved resolvedKey(resolver, *keys, keyUids[i]);
        const Resolved resolvedValue(resolver, *values, valueUids[i]);
        if (resolvedKey.dropped || resolvedValue.dropped) continue;
        keys->Add(object, resolvedKey.target);
        values->Add(object, resolvedValue.target);
        object->OnReadPointer(keys, resolvedKey.target, static_cast<unsigned>(keyUids[i]));
        object->OnReadPointer(values, resolvedValue.target, static_cast<unsigned>(valueUids[i]));
    }
}

void TZoClassFieldPointerMap::DeleteReferences(ZoStreamableBase* object,
                                               bool (*isRemoved)(const void*, const ZoStreamableBase*),
                                               const void* context) {
    TZoClassFieldPointerList* keys = AsList(key.get());
    TZoClassFieldPointerList* values = AsList(value.get());
    if (keys == nullptr || values == nullptr) {
        for (TZoClassField* field : {key.get(), value.get()}) {
            if (TZoClassFieldPointerBase* pointers = AsPointers(field)) {
                pointers->DeleteReferences(object, isRemoved, context);
            }
        }
        return;
    }
    GatherAction gatheredKeys;
    GatherAction gatheredValues;
    keys->GetFieldMetaData(object, gatheredKeys);
    values->GetFieldMetaData(object, gatheredValues);
    const auto removed = [&](const ZoStreamableBase* item) {
        return item != nullptr && isRemoved(context, item);
    };
    std::vector<std::pair<ZoStreamableBase*, ZoStreamableBase*>> kept;
    const std::size_t count = std::min(gatheredKeys.items.size(), gatheredValues.items.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (!removed(gatheredKeys.items[i]) && !removed(gatheredValues.items[i])) {
            kept.emplace_back(gatheredKeys.items[i], gatheredValues.items[i]);
        }
    }
    if (kept.size() == count) return;
    for (const auto* gathered : {&gatheredKeys, &gatheredValues}) {
        for (const ZoStreamableBase* item : gathered->items) ZoReferenceCount::Add(item);
    }
    keys->CreateList(object, 0, 0, 0);
    values->CreateList(object, 0, 0, 0);
    for (const auto& [keyObject, valueObject] : kept) {
        keys->Add(object, keyObject);
        values->Add(object, valueObject);
    }
    for (const auto* gathered : {&gatheredKeys, &gatheredValues}) {
        for (const ZoStreamableBase* item : gathered->items) ZoReferenceCount::Surrender(item);
    }
}

} // namespace ZoPrimitives
