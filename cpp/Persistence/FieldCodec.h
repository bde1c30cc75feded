#pragma once

#include "Persistence/ClassNames.h"
#include "Persistence/HandleAccess.h"
#include "Persistence/PointerResolver.h"
#include "Persistence/RecordChecks.h"
#include "Persistence/RecordFormat.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoClassField.h"

#include <type_traits>

namespace ZoPrimitives {

/// Writes values straight into a stream's open record.
struct DirectSink {
    TBinOutStream& stream;
    template <class T>
    void operator()(const T& value) const {
        stream.Put(value);
    }
};

/// Writes values through the stream's virtual operations, which an application may have replaced.
struct VirtualSink {
    TBinOutStream& stream;
    template <class T>
    void operator()(const T& value) const {
        stream << value;
    }
};

/// Reads values straight from a stream's current record.
struct DirectSource {
    TBinInStream& stream;
    template <class T>
    void operator()(T& value) const {
        stream.Get(value);
    }
};

/// Reads values through the stream's virtual operations.
struct VirtualSource {
    TBinInStream& stream;
    template <class T>
    void operator()(T& value) const {
        stream >> value;
    }
};

/// How each kind of field stands in a record: the one place that both directions share.
class FieldCodec {
public:
    // The fewest bytes that a value takes in a record: of strings and blobs the length.
    template <class T>
    static constexpr unsigned StoredSize = std::is_class_v<T> ? 4 : static_cast<unsigned>(sizeof(T));

    // Writing

    template <class Sink, class T>
    static void Save(Sink put, TZoClassFieldValue<T>& field, ZoStreamableBase* object) {
        put(field.get(object, &field));
    }

    template <class Sink, class T>
    static void Save(Sink put, TZoClassFieldList<T>& field, ZoStreamableBase* object) {
        const auto& access = field.access;
        const unsigned long long count = access.nItems(object, &field);
        SaveListHead(put, count, access.first, access.second, object, field);
        for (int i = 1; i <= static_cast<int>(count); ++i) put(access.elementAt(object, &field, i));
    }

    template <class Sink>
    static void SaveUids(Sink put, TZoClassFieldPointer& field, ZoStreamableBase* object) {
        ZoStreamableBase* target = field.Get(object);
        int uid = 0;
        if (target != nullptr) {
            uid = HandleAccess::Get(put.stream, target);
            if (uid == 0) ThrowDangling(field, object, target);
        }
        put(uid);
    }

    template <class Sink>
    static void SaveUids(Sink put, TZoClassFieldPointerList& field, ZoStreamableBase* object) {
        const unsigned long long count = field.NItems(object);
        SaveListHead(put, count, field.access.first, field.access.second, object, field);
        SavePointerFunc<Sink> save(put, field);
        field.GetFieldMetaData(object, save);
        ZO_ASSERT(save.Count() == count,
                  "save.Count() == count && \"[zoerror] the list gave another number of items\"", SOURCE);
    }

    template <class Sink>
    static void SaveUids(Sink put, TZoClassFieldPointerMap& field, ZoStreamableBase* object) {
        for (TZoClassField* half : {field.GetKeyField(), field.GetValueField()}) {
            if (half != nullptr) SaveField(put, *half, object);
        }
    }

    /// Writes a field's part of the record: pointers as uids.
    template <class Sink>
    static void SaveField(Sink put, TZoClassField& field, ZoStreamableBase* object) {
        Dispatch(field, [&](auto& exact) {
            if constexpr (std::is_base_of_v<TZoClassFieldPointerBase, std::decay_t<decltype(exact)>>) {
                SaveUids(put, exact, object);
            } else {
                Save(put, exact, object);
            }
        });
    }

    // Reading: into the application's field, null to pass the value over

    template <class Source, class T>
    static void Load(Source take, TZoClassFieldValue<T>* application, ZoStreamableBase* object) {
        CheckBytes(take.stream, StoredSize<T>);
        Scratch<T> value(take.stream);
        take(value.Get());
        if (application != nullptr && application->set != nullptr) {
            application->set(object, application, value.Get());
        }
    }

    template <class Source, class T>
    static void Load(Source take, TZoClassFieldList<T>* application, ZoStreamableBase* object) {
        static constexpr TZoListAccessors<T> NONE{};
        const TZoListAccessors<T>& access = application != nullptr ? application->access : NONE;
        const ListHead head(take, access.first != nullptr, access.second != nullptr, StoredSize<T>);
        if (access.createList != nullptr) access.createList(object, head.count, head.first, head.second);
        Scratch<T> value(take.stream);
        for (int i = 0; i < head.count; ++i) {
            CheckBytes(take.stream, StoredSize<T>);
            take(value.Get());
            if (access.add != nullptr) access.add(object, application, value.Get());
        }
    }

    template <class Source>
    static void Load(Source take, TZoClassFieldPointer* application, ZoStreamableBase*) {
        CheckBytes(take.stream, sizeof(std::int32_t));
        int uid = 0;
        take(uid);
        if (application != nullptr) take.stream.UnresolvedPointers().LoadPointer(application, uid);
    }

    template <class Source>
    static void Load(Source take, TZoClassFieldPointerList* application, ZoStreamableBase* object) {
        LoadUids(take, object, application);
    }

    template <class Source>
    static void Load(Source take, TZoClassFieldPointerMap* application, ZoStreamableBase* object) {
        if (application != nullptr) {
            for (TZoClassField* half : {application->GetKeyField(), application->GetValueField()}) {
                if (half != nullptr) LoadField(take, *half, half, object);
            }
        } else {
            LoadUids(take, object, nullptr);
            LoadUids(take, object, nullptr);
        }
    }

    /// Reads a list of uids and prepares the application's list.
    template <class Source>
    static void LoadUids(Source take, ZoStreamableBase* object, TZoClassFieldPointerList* application) {
        const bool hasFirst = application != nullptr && application->HasFirst();
        const bool hasSecond = application != nullptr && application->HasSecond();
        const ListHead head(take, hasFirst, hasSecond, sizeof(std::int32_t));
        TBinInStream& stream = take.stream;
        if (application == nullptr) {
            stream.SetRecordPosition(stream.GetRecordPosition() + static_cast<unsigned>(head.count) * 4);
            return;
        }
        application->CreateList(object, head.count, head.first, head.second);
        stream.UnresolvedPointers().LoadPointers(application, head.count, &stream);
    }

    /// Reads a field's part of the record into the application's field. Without one it is kept as excluded.
    template <class Source>
    static void LoadField(Source take, TZoClassField& field, TZoClassField* application,
                          ZoStreamableBase* object) {
        const unsigned begin = take.stream.GetRecordPosition();
        Dispatch(field, [&](auto& exact) {
            Load(take, static_cast<std::decay_t<decltype(exact)>*>(application), object);
        });
        if (application == nullptr) take.stream.AddExcludedField(&field, begin);
    }

    /// The fewest bytes that a field takes in a record. A map may hold plain values, the smallest is a bool.
    static unsigned SmallestSize(const TZoClassField& field) {
        switch (field.GetFieldType()) {
        case ftBool:
            return 1;
        case ftDouble:
            return 8;
        case ftChildPointerMap:
            return 1;
        case ftInt:
        case ftUnsigned:
        case ftFloat:
        case ftString:
        case ftBlob:
        case ftListInt:
        case ftListFloat:
        case ftListDouble:
        case ftListString:
        case ftChildPointer:
        case ftPointer:
        case ftPointerEx:
        case ftChildValue:
        case ftChildPointerList:
        case ftPointerList:
        case ftPointerListEx:
            return 4;
        }
        return 0;
    }

    // Resolving

    /// Hands the objects that the field's uids name to the application's field.
    static void Resolve(TZoPointerResolver& resolver, TZoClassFieldPointerBase& field,
                        ZoStreamableBase* object) {
        Dispatch(field, [&](auto& exact) {
            if constexpr (std::is_base_of_v<TZoClassFieldPointerBase, std::decay_t<decltype(exact)>>) {
                ResolveExact(resolver, exact,
                             static_cast<std::decay_t<decltype(exact)>&>(*field.GetOriginal()), object);
            }
        });
    }

private:
    static constexpr const char* SOURCE = "cpp/Persistence/ZoMetaData";

    /// Calls the action with the field as what it is.
    template <class Action>
    static void Dispatch(TZoClassField& field, Action action) {
        switch (field.GetFieldType()) {
        case ftInt:
            return action(static_cast<TZoClassFieldInt&>(field));
        case ftUnsigned:
            return action(static_cast<TZoClassFieldUnsigned&>(field));
        case ftBool:
            return action(static_cast<TZoClassFieldBool&>(field));
        case ftFloat:
            return action(static_cast<TZoClassFieldFloat&>(field));
        case ftDouble:
            return action(static_cast<TZoClassFieldDouble&>(field));
        case ftString:
            return action(static_cast<TZoClassFieldString&>(field));
        case ftBlob:
            return action(static_cast<TZoClassFieldBlob&>(field));
        case ftListInt:
            return action(static_cast<TZoClassFieldListInt&>(field));
        case ftListFloat:
            return action(static_cast<TZoClassFieldListFloat&>(field));
        case ftListDouble:
            return action(static_cast<TZoClassFieldListDouble&>(field));
        case ftListString:
            return action(static_cast<TZoClassFieldListString&>(field));
        case ftChildPointer:
        case ftPointer:
        case ftPointerEx:
        case ftChildValue:
            return action(static_cast<TZoClassFieldPointer&>(field));
        case ftChildPointerList:
        case ftPointerList:
        case ftPointerListEx:
            return action(static_cast<TZoClassFieldPointerList&>(field));
        case ftChildPointerMap:
            return action(static_cast<TZoClassFieldPointerMap&>(field));
        }
    }

    template <class Sink>
    static void SaveListHead(Sink put, unsigned long long count, TZoListInteger first, TZoListInteger second,
                             ZoStreamableBase* object, TZoClassField& field) {
        ZO_ASSERT(count <= RecordFormat::MAX_INT_SIZE, "portableNItems <= MAX_INT_SIZE", SOURCE);
        put(static_cast<int>(count));
        if (first != nullptr) put(first(object, &field));
        if (second != nullptr) put(second(object, &field));
    }

    /// Writes the uid of each item of a list.
    template <class Sink>
    class SavePointerFunc final : public ZoStreamableBaseFunctor {
    public:
        SavePointerFunc(Sink sink, const TZoClassField& listField) : put(sink), field(listField) {}
        void operator()(ZoStreamableBase* item) override {
            int uid = 0;
            if (item != nullptr) {
                uid = HandleAccess::Get(put.stream, item);
                if (uid == 0) ThrowDanglingItem(field, item);
            }
            put(uid);
            ++count;
        }
        unsigned long long Count() const { return count; }

    private:
        Sink put;
        const TZoClassField& field;
        unsigned long long count = 0;
    };

    [[noreturn]] static void ThrowDangling(const TZoClassField& field, const ZoStreamableBase* object,
                                           const ZoStreamableBase* target);
    [[noreturn]] static void ThrowDanglingItem(const TZoClassField& field, const ZoStreamableBase* item);

    /// What a uid means to a field: null, an object, or an object that was dropped.
    struct Resolved {
        ZoStreamableBase* target;
        bool dropped;

        Resolved(const TZoPointerResolver& resolver, TZoClassFieldPointerBase& fileField,
                 const TZoClassFieldPointerBase& application, int uid)
            : target(resolver.Find(uid)), dropped(uid != 0 && target == nullptr) {
            if (target != nullptr && !resolver.Allows(fileField, application, target)) {
                target = nullptr;
                dropped = true;
            }
        }
    };

    static void ResolveExact(TZoPointerResolver& resolver, TZoClassFieldPointer& field,
                             TZoClassFieldPointer& application, ZoStreamableBase* object) {
        const int uid = resolver.Next();
        if (application.GetFieldType() == ftChildValue) {
            resolver.ResolveValue(application, object, uid);
            if (!resolver.ResolvesReferences()) return;
            const ZoStreamableBase* value = resolver.Find(uid);
            if (value == nullptr || !application.Accepts(value)) return;
            resolver.Tell(object, application, application.Get(object), uid);
            return;
        }
        if (!resolver.ResolvesReferences()) return;
        const Resolved resolved(resolver, field, application, uid);
        application.Set(object, resolved.target);
        resolver.Tell(object, application, resolved.target, uid);
    }

    static void ResolveExact(TZoPointerResolver& resolver, TZoClassFieldPointerList& field,
                             TZoClassFieldPointerList& application, ZoStreamableBase* object) {
        const int count = resolver.Next();
        const std::int32_t* uids = resolver.Take(count);
        if (!resolver.ResolvesReferences()) return;
        for (int i = 0; i < count; ++i) {
            const Resolved resolved(resolver, field, application, uids[i]);
            if (resolved.dropped) continue;
            application.Add(object, resolved.target);
            resolver.Tell(object, application, resolved.target, uids[i]);
        }
    }

    static void ResolveExact(TZoPointerResolver& resolver, TZoClassFieldPointerMap&,
                             TZoClassFieldPointerMap& application, ZoStreamableBase* object) {
        TZoClassField* halves[] = {application.GetKeyField(), application.GetValueField()};
        if (AsList(halves[0]) != nullptr && AsList(halves[1]) != nullptr) {
            ResolvePairs(resolver, *AsList(halves[0]), *AsList(halves[1]), object);
            return;
        }
        for (TZoClassField* half : halves) {
            if (half == nullptr || !half->IsPointerKind()) continue;
            // Application's fields belong to no reading: what they took is not noted on them.
            TZoClassFieldPointer noted("", ftPointer, nullptr, nullptr);
            TZoClassFieldPointerList notedItems("", ftPointerList, {});
            if (TZoClassFieldPointerList* list = AsList(half)) {
                ResolveExact(resolver, notedItems, *list, object);
            } else {
                ResolveExact(resolver, noted, static_cast<TZoClassFieldPointer&>(*half), object);
            }
        }
    }

    /// Two lists of one length: both halves of a pair or none.
    static void ResolvePairs(TZoPointerResolver& resolver, TZoClassFieldPointerList& keys,
                             TZoClassFieldPointerList& values, ZoStreamableBase* object) {
        const int keyCount = resolver.Next();
        const std::int32_t* keyUids = resolver.Take(keyCount);
        const int valueCount = resolver.Next();
        const std::int32_t* valueUids = resolver.Take(valueCount);
        if (!resolver.ResolvesReferences()) return;
        TZoClassFieldPointerList notedKeys("", ftPointerList, {});
        TZoClassFieldPointerList notedValues("", ftPointerList, {});
        for (int i = 0; i < keyCount && i < valueCount; ++i) {
            const Resolved key(resolver, notedKeys, keys, keyUids[i]);
            const Resolved value(resolver, notedValues, values, valueUids[i]);
            if (key.dropped || value.dropped) continue;
            keys.Add(object, key.target);
            values.Add(object, value.target);
            resolver.Tell(object, keys, key.target, keyUids[i]);
            resolver.Tell(object, values, value.target, valueUids[i]);
        }
    }

    static TZoClassFieldPointerList* AsList(TZoClassField* field) {
        return field != nullptr && field->GetFieldType() == ftChildPointerList
                   ? static_cast<TZoClassFieldPointerList*>(field)
                   : nullptr;
    }

    /// A place to read a value into; strings use one whose buffer is kept.
    template <class T>
    class Scratch {
    public:
        explicit Scratch(TBinInStream&) {}
        T& Get() { return value; }

    private:
        T value{};
    };

    /// The count of a list, checked against what is left of the record, and its integers.
    struct ListHead {
        int count = 0;
        int first = 0;
        int second = 0;

        template <class Source>
        ListHead(Source take, bool hasFirst, bool hasSecond, unsigned itemSize) {
            CheckBytes(take.stream, 4);
            take(count);
            if (hasFirst) take(first);
            if (hasSecond) take(second);
            CheckRemaining(take.stream, count, itemSize);
        }
    };
};

template <>
class FieldCodec::Scratch<ZoString> {
public:
    explicit Scratch(TBinInStream& stream) : value(stream.ScratchString()) {}
    ZoString& Get() { return value; }

private:
    ZoString& value;
};

} // namespace ZoPrimitives
