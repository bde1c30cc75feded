#pragma once

#include "Persistence/instances/ClassNames.h"
#include "Persistence/instances/FieldLayout.h"
#include "Persistence/instances/HandleAccess.h"
#include "Persistence/instances/InstanceTables.h"
#include "Persistence/records/RecordChecks.h"
#include "Persistence/records/RecordCursors.h"
#include "Persistence/records/RecordFormat.h"
#include "Persistence/schema/FieldKinds.h"
#include "Persistence/schema/FieldOffset.h"
#include "Persistence/schema/PointerResolver.h"
#include "Persistence/schema/RecordOrder.h"
#include "Platform/Compiler.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoClassField.h"
#include "ZoPrimitives/ZoSources.h"
#include "ZoPrimitives/dvector.h"

#include <array>
#include <type_traits>
#include <vector>

namespace ZoPrimitives {

/// Writes values through the stream's virtual operations, which an application may have replaced.
struct VirtualSink {
    TBinOutStream& stream;
    template <class T>
    void operator()(const T& value) const {
        stream << value;
    }
};

/// Reads values through the stream's virtual operations.
struct VirtualSource {
    TBinInStream& stream;
    template <class T>
    void operator()(T& value) const {
        stream >> value;
    }
    unsigned Position() const { return stream.GetRecordPosition(); }
    unsigned Remaining() const { return stream.GetRemaining(); }
    void Skip(unsigned size) const { stream.SetRecordPosition(stream.GetRecordPosition() + size); }
};

/// Reads and writes each kind of field: the one place that knows how it stands in a record.
class FieldCodec {
public:
    /// Copies all items of a list, null ones included, so that the list may change while they are walked.
    static std::vector<ZoStreamableBase*> ItemsOf(TZoClassField& field, ZoStreamableBase* object);

    // Writing

    template <class Sink, class T>
    static void Save(const Sink& put, TZoClassFieldValue<T>& field, ZoStreamableBase* object) {
        put(field.get(object, &field));
    }

    template <class Sink, class T>
    static void Save(const Sink& put, TZoClassFieldList<T>& field, ZoStreamableBase* object) {
        const auto& access = field.access;
        const unsigned long long count = access.nItems(object, &field);
        SaveListHead(put, count, access.first, access.second, object, field);
        for (int i = 1; i <= static_cast<int>(count); ++i) put(access.elementAt(object, &field, i));
    }

    template <class Sink>
    static void SaveUids(const Sink& put, TZoClassFieldPointer& field, ZoStreamableBase* object) {
        SaveUids(put, field, object, field);
    }

    /// `told`: the field that an exception names; for a map's sub-field it is the map.
    template <class Sink>
    static void SaveUids(const Sink& put, TZoClassFieldPointer& field, ZoStreamableBase* object,
                         const TZoClassField& told) {
        ZoStreamableBase* target = field.Get(object);
        int uid = 0;
        if (target != nullptr) {
            uid = HandleAccess::Get(put.stream, target);
            if (uid == 0) ThrowDangling(told, object, target);
        }
        put(uid);
    }

    template <class Sink>
    static void SaveUids(const Sink& put, TZoClassFieldPointerList& field, ZoStreamableBase* object) {
        const unsigned long long count = field.NItems(object);
        SaveListHead(put, count, field.access.first, field.access.second, object, field);
        SavePointerFunc<Sink> save(put, field);
        field.GetFieldMetaData(object, save);
        save.Finish();
        ZO_ASSERT(save.Count() == count,
                  "save.Count() == count && \"[zoerror] the list gave another number of items\"",
                  ZoSources::ZOMETADATA);
    }

    template <class Sink>
    static void SaveUids(const Sink& put, TZoClassFieldPointerMap& field, ZoStreamableBase* object) {
        for (TZoClassFieldPointerBase* half : HalvesOf(field)) {
            if (TZoClassFieldPointerList* list = AsList(half)) {
                SaveUids(put, *list, object);
            } else {
                SaveUids(put, static_cast<TZoClassFieldPointer&>(*half), object, field);
            }
        }
    }

    /// Writes a list of pointers that has these uids instead of those of its items.
    template <class Sink>
    static void SaveUids(const Sink& put, TZoClassFieldPointerList& field, ZoStreamableBase* object,
                         const std::vector<int>& uids) {
        SaveListHead(put, uids.size(), field.access.first, field.access.second, object, field);
        for (const int uid : uids) put(uid);
    }
    /// The uid of an item of a list. Throws `XStream` if it has none.
    static int UidOf(const TBinOutStream& stream, const TZoClassField& field, const ZoStreamableBase* item) {
        if (item == nullptr) return 0;
        const int uid = HandleAccess::Get(stream, item);
        if (uid == 0) ThrowDanglingItem(field, item);
        return uid;
    }

    /// How values of the application's field stand in a record.
    static FieldLayout LayoutOf(TZoClassField& application) {
        FieldLayout layout;
        Dispatch(application, [&](auto& exact) { layout = Layout(exact); });
        return layout;
    }

    /// Writes a field's part of the record: pointers as uids.
    template <class Sink>
    static void SaveField(const Sink& put, TZoClassField& field, ZoStreamableBase* object) {
        Dispatch(field, [&](auto& exact) {
            if constexpr (std::is_base_of_v<TZoClassFieldPointerBase, std::decay_t<decltype(exact)>>) {
                SaveUids(put, exact, object);
            } else {
                Save(put, exact, object);
            }
        });
    }

    // Reading into the application's field; null passes the value over

    template <class Source, class T>
    static void Load(const Source& take, TZoClassFieldValue<T>* application, ZoStreamableBase* object) {
        CheckBytes(take, STORED_SIZE<T>);
        Scratch<T> value(take.stream);
        take(value.Get());
        if (application != nullptr && application->set != nullptr) Set(*application, object, value.Get());
    }

    template <class T>
    static void Set(TZoClassFieldValue<T>& application, ZoStreamableBase* object, const T& value) {
        application.set(object, &application, value);
    }
    /// A setter that has no memory for its copy of a text loses the text without a word. If memory for a copy
    /// can be had, an empty text is what the setter wants.
    static void Set(TZoClassFieldString& application, ZoStreamableBase* object, const ZoString& value) {
        application.set(object, &application, value);
        if (application.get == nullptr || IsWhole(application.get(object, &application), value.c_str()))
            return;
        const ZoString copy = WholeText(value);
        application.set(object, &application, copy);
    }

    template <class Source, class T>
    static void Load(const Source& take, TZoClassFieldList<T>* application, ZoStreamableBase* object) {
        static constexpr TZoListAccessors<T> NONE{};
        const TZoListAccessors<T>& access = application != nullptr ? application->access : NONE;
        const ListHead head(take, access.first != nullptr, access.second != nullptr, STORED_SIZE<T>);
        if (access.createList != nullptr) access.createList(object, head.count, head.first, head.second);
        Scratch<T> value(take.stream);
        for (int i = 0; i < head.count; ++i) {
            CheckBytes(take, STORED_SIZE<T>);
            take(value.Get());
            if (access.add != nullptr) access.add(object, application, value.Get());
        }
    }

    template <class Source>
    static void Load(const Source& take, TZoClassFieldPointer* application, ZoStreamableBase*) {
        CheckBytes(take, sizeof(std::int32_t));
        int uid = 0;
        take(uid);
        InstanceTables& tables = InstanceTables::Of(take.stream);
        if (application != nullptr)
            tables.unresolved.LoadPointer(application, uid);
        else
            tables.passedUids.push_back(uid);
    }

    template <class Source>
    static void Load(const Source& take, TZoClassFieldPointerList* application, ZoStreamableBase* object) {
        LoadUids(take, object, application);
    }

    template <class Source>
    static void Load(const Source& take, TZoClassFieldPointerMap* application, ZoStreamableBase* object) {
        if (application != nullptr) {
            for (TZoClassFieldPointerBase* half : HalvesOf(*application)) {
                if (TZoClassFieldPointerList* list = AsList(half)) {
                    LoadUids(take, object, list);
                } else {
                    Load(take, static_cast<TZoClassFieldPointer*>(half), object);
                }
            }
        } else {
            LoadUids(take, object, nullptr);
            LoadUids(take, object, nullptr);
        }
    }

    /// Reads a list of uids and prepares the application's list.
    template <class Source>
    static void LoadUids(const Source& take, ZoStreamableBase* object,
                         TZoClassFieldPointerList* application) {
        const bool hasFirst = application != nullptr && application->HasFirst();
        const bool hasSecond = application != nullptr && application->HasSecond();
        const ListHead head(take, hasFirst, hasSecond, sizeof(std::int32_t));
        if (application == nullptr) {
            std::vector<int>& passed = InstanceTables::Of(take.stream).passedUids;
            for (int i = 0; i < head.count; ++i) take(passed.emplace_back());
            return;
        }
        application->CreateList(object, head.count, head.first, head.second);
        InstanceTables::Of(take.stream).unresolved.TakePointers(application, head.count, take);
    }

    /// Reads a field's part of the record into the application's field.
    template <class Source>
    static void LoadField(const Source& take, TZoClassField& application, ZoStreamableBase* object) {
        Dispatch(application, [&](auto& exact) { Load(take, &exact, object); });
    }
    /// Passes over the value of a file's field that the application does not know, and notes the field as
    /// excluded.
    template <class Source>
    static void PassOver(const Source& take, TZoClassField& field) {
        const unsigned begin = take.Position();
        Dispatch(field, [&](auto& exact) {
            Load(take, static_cast<std::decay_t<decltype(exact)>*>(nullptr), nullptr);
        });
        take.stream.AddExcludedField(&field, begin);
    }
    /// Loads the value of a file's field, or passes it over.
    static void LoadFileField(TBinInStream& stream, TZoClassField& field, ZoStreamableBase* object) {
        if (field.GetOriginal() != nullptr) {
            LoadField(VirtualSource{stream}, *field.GetOriginal(), object);
        } else {
            PassOver(VirtualSource{stream}, field);
        }
    }

    // Members that the macros declared, without their accessors

    template <class Sink>
    static void SaveMember(const Sink& put, TZoClassFieldType kind, const void* member) {
        MemberAs(kind, member, [&](const auto& value) { SaveValue(put, value); });
    }

    template <class Source>
    static void LoadMember(const Source& take, TZoClassFieldType kind, void* member) {
        MemberAs(kind, member, [&](auto& value) { LoadValue(take, value); });
    }

    /// Whether such a member keeps its value in a buffer.
    static bool IsBuffered(TZoClassFieldType kind) { return FlatSizeOf(kind) == 0 && kind != ftBool; }
    /// Returns that buffer, null if there is none; any address for other kinds.
    static const void* BufferOf(TZoClassFieldType kind, const void* member) {
        const void* buffer = nullptr;
        MemberAs(kind, member, [&](const auto& value) { buffer = BufferOf(value); });
        return buffer;
    }

    // Resolving

    using TypesTaken = TZoPointerResolver::TypesTaken;

    /// Passes the objects that the field's uids name to the application's field.
    static void Resolve(TZoPointerResolver& resolver, TypesTaken& taken,
                        TZoClassFieldPointerBase& application, ZoStreamableBase* object) {
        Dispatch(application, [&](auto& exact) {
            if constexpr (std::is_base_of_v<TZoClassFieldPointerBase, std::decay_t<decltype(exact)>>) {
                ResolveExact(resolver, taken, exact, object);
            }
        });
    }

    /// Whether the field holds one object that is no member of its owner.
    static bool IsReference(const TZoClassField& application) {
        const TZoClassFieldType kind = application.GetFieldType();
        return IsKindOf<TZoClassFieldPointer>(kind) && FieldKindOf(kind).holds != FieldHold::Member;
    }

    static void ResolveReference(TZoPointerResolver& resolver, TypesTaken& taken,
                                 TZoClassFieldPointer& application, ZoStreamableBase* object) {
        const int uid = resolver.Next();
        if (!resolver.ResolvesReferences()) return;
        const Resolved resolved(resolver, taken, application, uid);
        application.Set(object, resolved.target);
        resolver.Tell(object, application, resolved.target, uid);
    }

    /// Returns a map's sub-field as a list; null if it is a single pointer.
    static TZoClassFieldPointerList* AsList(TZoClassFieldPointerBase* half) {
        return half != nullptr && half->GetFieldType() == ftChildPointerList
                   ? static_cast<TZoClassFieldPointerList*>(half)
                   : nullptr;
    }

private:
    template <class Field>
    static FieldLayout Layout(Field& field) {
        FieldLayout layout;
        if constexpr (std::is_same_v<Field, TZoClassFieldPointerMap>) {
            const Halves halves = HalvesOf(field);
            for (std::size_t i = 0; i < halves.size(); ++i) {
                TZoClassFieldPointerList* list = AsList(halves[i]);
                layout.integers[i] = list == nullptr ? FieldLayout::SINGLE : Layout(*list).integers[0];
            }
        } else if constexpr (requires { field.access; }) {
            const auto& access = field.access;
            layout.integers[0] =
                static_cast<signed char>((access.first != nullptr) + (access.second != nullptr));
        }
        return layout;
    }

    static constexpr int RESOLVE_AHEAD = 12; // items

    using Halves = std::array<TZoClassFieldPointerBase*, 2>;
    static Halves HalvesOf(const TZoClassFieldPointerMap& map) {
        const Halves halves = RecordOrder::HalvesOf(map);
        if (halves[0] == nullptr || halves[1] == nullptr) FailWithoutHalves(map);
        return halves;
    }
    [[noreturn]] static void FailWithoutHalves(const TZoClassFieldPointerMap& map);

    /// Calls the action with the field as its own C++ class.
    template <class Action>
    static void Dispatch(TZoClassField& field, Action action) {
        switch (field.GetFieldType()) {
#define ZO_ROW(Kind, Class, Place, Hold, Encoding, Member)                                                   \
    case ft##Kind:                                                                                           \
        return action(static_cast<Class&>(field));
            ZO_FIELD_KINDS(ZO_ROW)
#undef ZO_ROW
        }
    }

    template <class T, class Pointer, class Action>
    static void As(Pointer* member, Action action) {
        if constexpr (!std::is_void_v<T>) {
            action(*static_cast<std::conditional_t<std::is_const_v<Pointer>, const T, T>*>(member));
        }
    }

    /// Calls the action with a member as the C++ type that its kind tells.
    template <class Pointer, class Action>
    static void MemberAs(TZoClassFieldType kind, Pointer* member, Action action) {
        switch (kind) {
#define ZO_ROW(Kind, Class, Place, Hold, Encoding, Member)                                                   \
    case ft##Kind:                                                                                           \
        return As<Member>(member, action);
            ZO_FIELD_KINDS(ZO_ROW)
#undef ZO_ROW
        }
    }

    template <class T>
    static const void* BufferOf(const T& value) {
        return &value;
    }
    static const void* BufferOf(const ZoString& value) { return value.c_str(); }
    static const void* BufferOf(const ZoBlob& value) { return value.Data(); }
    template <class T>
    static const void* BufferOf(const TDVector<T>& list) {
        return list.data();
    }

    template <class Sink, class T>
    static void SaveValue(const Sink& put, const T& value) {
        put(value);
    }
    template <class Sink, class T>
    static void SaveValue(const Sink& put, const TDVector<T>& list) {
        const auto count = static_cast<std::size_t>(list.end() - list.begin());
        ZO_ASSERT(count <= RecordFormat::MAX_INT_SIZE, "portableNItems <= MAX_INT_SIZE",
                  ZoSources::ZOMETADATA);
        put(static_cast<int>(count));
        SaveItems(put, list.begin(), count);
    }
    template <class Sink, class T>
    static void SaveItems(const Sink& put, const T* items, std::size_t count) {
        for (const T* item = items; item != items + count; ++item) put(*item);
    }
    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T>>>
    static void SaveItems(const WriteCursor& put, const T* items, std::size_t count) {
        FlatRun::Copy(put.Take(count * sizeof(T)), items, count * sizeof(T));
    }

    template <class Source, class T>
    static void LoadValue(const Source& take, T& value) {
        CheckBytes(take, STORED_SIZE<T>);
        take(value);
    }
    template <class Source, class T>
    static void LoadValue(const Source& take, TDVector<T>& list) {
        const ListHead head(take, false, false, STORED_SIZE<T>);
        list.RemoveAll();
        list.Reserve(static_cast<unsigned long long>(head.count));
        [[maybe_unused]] const T nothing{};
        for (int i = 0; i < head.count; ++i) {
            if constexpr (std::is_class_v<T>) { // read where it stays: a copy of a text could get lost
                list.TDVector<T>::Add(nothing);
                LoadValue(take, list.Last());
            } else {
                T value{};
                LoadValue(take, value);
                list.TDVector<T>::Add(value);
            }
        }
    }

    template <class Sink>
    static void SaveListHead(const Sink& put, unsigned long long count, TZoListInteger first,
                             TZoListInteger second, ZoStreamableBase* object, TZoClassField& field) {
        ZO_ASSERT(count <= RecordFormat::MAX_INT_SIZE, "portableNItems <= MAX_INT_SIZE",
                  ZoSources::ZOMETADATA);
        put(static_cast<int>(count));
        if (first != nullptr) put(first(object, &field));
        if (second != nullptr) put(second(object, &field));
    }

    /// Writes the uid of each item of a list. Items are fetched some places ahead, so that they are in the
    /// cache by then.
    template <class Sink>
    class SavePointerFunc final : public ZoStreamableBaseFunctor {
    public:
        SavePointerFunc(const Sink& sink, const TZoClassField& listField)
            : put(sink), field(listField), lags(std::is_same_v<Sink, WriteCursor> && listField.IsPlain()) {}
        void operator()(ZoStreamableBase* item) override {
            const std::size_t place = count++ % LAG;
            if (!lags) return PutUid(item);
            Prefetch(item);
            if (count > LAG) PutUid(late[place]);
            late[place] = item;
        }
        void Finish() {
            if (!lags) return;
            for (auto i = count > LAG ? count - LAG : 0; i < count; ++i) PutUid(late[i % LAG]);
        }
        unsigned long long Count() const { return count; }

    private:
        static constexpr std::size_t LAG = 16;

        void PutUid(const ZoStreamableBase* item) const { put(UidOf(put.stream, field, item)); }

        const Sink& put;
        const TZoClassField& field;
        bool lags;
        unsigned long long count = 0;
        ZoStreamableBase* late[LAG];
    };

    [[noreturn]] static void ThrowDangling(const TZoClassField& field, const ZoStreamableBase* object,
                                           const ZoStreamableBase* target);
    [[noreturn]] static void ThrowDanglingItem(const TZoClassField& field, const ZoStreamableBase* item);

    /// Tells what a uid means to a field: null, an object, or an object that was dropped.
    struct Resolved {
        ZoStreamableBase* target;
        bool dropped;

        Resolved(const TZoPointerResolver& resolver, TypesTaken& taken,
                 const TZoClassFieldPointerBase& application, int uid)
            : target(resolver.Find(uid)), dropped(uid != 0 && target == nullptr) {
            const bool wrongType = target != nullptr && !resolver.Allows(application, uid, target, taken);
            if (!dropped && !wrongType) return;
            target = nullptr;
            dropped = true;
            resolver.Lose(application, uid, wrongType);
        }
    };

    static void ResolveExact(TZoPointerResolver& resolver, TypesTaken& taken,
                             TZoClassFieldPointer& application, ZoStreamableBase* object) {
        if (application.GetFieldType() == ftChildValue) {
            const int uid = resolver.Next();
            resolver.ResolveValue(application, object, uid);
            if (!resolver.ResolvesReferences() || !resolver.Tells()) return;
            const ZoStreamableBase* value = resolver.Find(uid);
            if (value == nullptr || !application.Accepts(value)) return;
            resolver.Tell(object, application, application.Get(object), uid);
            return;
        }
        ResolveReference(resolver, taken, application, object);
    }

    static void ResolveExact(TZoPointerResolver& resolver, TypesTaken& taken,
                             TZoClassFieldPointerList& application, ZoStreamableBase* object) {
        const int count = resolver.Next();
        const std::int32_t* uids = resolver.Take(count);
        if (!resolver.ResolvesReferences()) return;
        for (int i = 0; i < count; ++i) {
            if (count - i > RESOLVE_AHEAD) Prefetch(resolver.Find(uids[i + RESOLVE_AHEAD]));
            const Resolved resolved(resolver, taken, application, uids[i]);
            if (resolved.dropped) continue;
            application.Add(object, resolved.target);
            resolver.Tell(object, application, resolved.target, uids[i]);
        }
    }

    static void ResolveExact(TZoPointerResolver& resolver, TypesTaken&, TZoClassFieldPointerMap& application,
                             ZoStreamableBase* object) {
        const Halves halves = HalvesOf(application);
        if (AsList(halves[0]) != nullptr && AsList(halves[1]) != nullptr) {
            ResolvePairs(resolver, *AsList(halves[0]), *AsList(halves[1]), object);
            return;
        }
        for (TZoClassFieldPointerBase* half : halves) {
            TypesTaken taken;
            Resolve(resolver, taken, *half, object);
        }
    }

    /// Resolves two lists of one length: both halves of a pair or neither.
    static void ResolvePairs(TZoPointerResolver& resolver, TZoClassFieldPointerList& keys,
                             TZoClassFieldPointerList& values, ZoStreamableBase* object) {
        const int keyCount = resolver.Next();
        const std::int32_t* keyUids = resolver.Take(keyCount);
        const int valueCount = resolver.Next();
        const std::int32_t* valueUids = resolver.Take(valueCount);
        if (!resolver.ResolvesReferences()) return;
        TypesTaken keysTaken;
        TypesTaken valuesTaken;
        for (int i = 0; i < keyCount && i < valueCount; ++i) {
            const Resolved key(resolver, keysTaken, keys, keyUids[i]);
            const Resolved value(resolver, valuesTaken, values, valueUids[i]);
            if (key.dropped || value.dropped) continue;
            keys.Add(object, key.target);
            values.Add(object, value.target);
            resolver.Tell(object, keys, key.target, keyUids[i]);
            resolver.Tell(object, values, value.target, valueUids[i]);
        }
    }

    /// Returns a place to read a value into; for strings it is one that keeps its buffer.
    template <class T>
    class Scratch {
    public:
        explicit Scratch(TBinInStream&) {}
        T& Get() { return value; }

    private:
        T value{};
    };

    /// Reads a list's count, which is checked against what is left of the record, and its integers.
    struct ListHead {
        int count = 0;
        int first = 0;
        int second = 0;

        template <class Source>
        ListHead(const Source& take, bool hasFirst, bool hasSecond, unsigned itemSize) {
            CheckBytes(take, 4);
            take(count);
            if (hasFirst) take(first);
            if (hasSecond) take(second);
            CheckCount(take.Remaining(), count, itemSize);
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
