#pragma once

// How an application's class registers: two lines, and one line for each field.
//
//     class Storey : public Entity {
//         REGISTER_ZO_BEGIN(Storey, Entity)
//         DECLARE_ZO_FIELD(double, height)
//         DECLARE_ZO_FIELD_CHILD_LIST(Member, members)
//         DECLARE_ZO_FIELD_REFERENCE(Building, building)
//         REGISTER_ZO_END
//     };
//
// Each field line declares the member and its accessors; no two field lines may share a source line. Members
// after REGISTER_ZO_END are public. The class needs a constructor that takes
// `ZoStreamableBase::StreamableInit`, or a default constructor. Abstract classes are recognised. Call
// `Storey::Register(&schema)` once, parents first.
//
// clang-format off
//     REGISTER_ZO_BEGIN(Class, Parent, ...)        up to three parents, each registered and a base in C++
//     DECLARE_ZO_FIELD(Type, field)                int, unsigned, bool, float, double, ZoString, ZoBlob
//     DECLARE_ZO_FIELD_LIST(Type, field)           int, float, double, ZoString: TDVector<Type>
//     DECLARE_ZO_FIELD_CHILD(Class, field)         owned: pointer<Class>
//     DECLARE_ZO_FIELD_CHILD_VALUE(Class, field)   a member that is an object: Class
//     DECLARE_ZO_FIELD_CHILD_LIST(Class, field)    owned: TIVector<Class, pointer<Class>>
//     DECLARE_ZO_FIELD_CHILD_MAP(Key, Class, field)          owned: TIMap<Key, Class, pointer<Class>>; Key complete
//     DECLARE_ZO_FIELD_REFERENCE(Class, field)               owned elsewhere in the graph: crossRef<Class>
//     DECLARE_ZO_FIELD_REFERENCE_LIST(Class, field)          the same: TDVector<Class*>
//     DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Class, field)      need not be owned in the graph: crossRef<Class>
//     DECLARE_ZO_FIELD_EXTERNAL_REFERENCE_LIST(Class, field) the same: TDVector<Class*>
// clang-format on
//
// A class with several streamable parents must derive from each of them virtually, and they from their common
// base. The accessors find the right part of the object.

#include "ZoPrimitives/IMap.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/dvector.h"

#include <cstddef>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace ZoPrimitives {

/// Tags the registration of the field declared on one source line.
template <int Line>
struct ZoFieldLine {};

/// Casts a streamable object to its class; uses `dynamic_cast` only where the language requires it.
template <class T, class = void>
struct ZoDowncast {
    static T* To(ZoStreamableBase* object) { return dynamic_cast<T*>(object); }
};
template <class T>
struct ZoDowncast<T, std::void_t<decltype(static_cast<T*>(std::declval<ZoStreamableBase*>()))>> {
    static T* To(ZoStreamableBase* object) { return static_cast<T*>(object); }
};

template <class T>
T& ZoSelf(ZoStreamableBase* object) {
    return *ZoDowncast<T>::To(object);
}

/// Whether an object is of class `T`, as a setter for `T` requires.
template <class T>
bool ZoIsA(const ZoStreamableBase* object) {
    return typeid(*object) == typeid(T) || dynamic_cast<const T*>(object) != nullptr;
}

/// Map C++ types to the kinds of value and list fields.
template <class T>
struct ZoValueField {
    static_assert(sizeof(T) == 0,
                  "DECLARE_ZO_FIELD takes int, unsigned, bool, float, double, ZoString or ZoBlob; use "
                  "DECLARE_ZO_FIELD_CHILD, ..._VALUE or ..._REFERENCE for objects");
};
template <class T>
struct ZoListField {
    static_assert(sizeof(T) == 0, "DECLARE_ZO_FIELD_LIST takes int, float, double or ZoString; use "
                                  "DECLARE_ZO_FIELD_CHILD_LIST or ..._REFERENCE_LIST for objects");
};

#define ZO_VALUE_FIELD(Type, Kind, TypeName)                                                                 \
    template <>                                                                                              \
    struct ZoValueField<Type> {                                                                              \
        static constexpr TZoClassFieldType kind = ft##Kind;                                                  \
        static constexpr const char* name = TypeName;                                                        \
        static TZoClassField* Add(TZoClass* owner, const char* field, TZoSetter<Type> set,                   \
                                  TZoGetter<Type> get) {                                                     \
            return owner->AddField##Kind(field, set, get);                                                   \
        }                                                                                                    \
    };
#define ZO_LIST_FIELD(Type, Kind, TypeName)                                                                  \
    template <>                                                                                              \
    struct ZoListField<Type> {                                                                               \
        static constexpr TZoClassFieldType kind = ftList##Kind;                                              \
        static constexpr const char* name = TypeName;                                                        \
        static TZoClassField* Add(TZoClass* owner, const char* field,                                        \
                                  const TZoListAccessors<Type>& access) {                                    \
            return owner->AddFieldList##Kind(field, access);                                                 \
        }                                                                                                    \
    };
ZO_VALUE_FIELD(int, Int, "int")
ZO_VALUE_FIELD(unsigned, Unsigned, "unsigned")
ZO_VALUE_FIELD(bool, Bool, "bool")
ZO_VALUE_FIELD(float, Float, "float")
ZO_VALUE_FIELD(double, Double, "double")
ZO_VALUE_FIELD(ZoString, String, "ZoString")
ZO_VALUE_FIELD(ZoBlob, Blob, "ZoBlob")
ZO_LIST_FIELD(int, Int, "list<int>")
ZO_LIST_FIELD(float, Float, "list<float>")
ZO_LIST_FIELD(double, Double, "list<double>")
ZO_LIST_FIELD(ZoString, String, "list<ZoString>")
#undef ZO_VALUE_FIELD
#undef ZO_LIST_FIELD

// The macros' accessors use these for members that hold values. A text that finds no memory throws
// `std::bad_alloc` instead of becoming empty.

template <class T>
void ZoAssign(T& member, const T& value) {
    member = value;
}
inline void ZoAssign(ZoString& member, const ZoString& value) {
    member = value;
    if (value.c_str()[0] != '\0' && member.c_str()[0] == '\0') throw std::bad_alloc();
}
template <class T>
void ZoAddValue(TDVector<T>& list, const T& value) {
    list.Add(value);
}
inline void ZoAddValue(TDVector<ZoString>& list, const ZoString& value) {
    list.Add(ZoString());
    ZoAssign(list.Last(), value);
}

// The macros' accessors use these for members that hold pointers.

template <class T>
void ZoPut(pointer<T>& member, ZoStreamableBase* target) {
    member = target == nullptr ? nullptr : ZoDowncast<T>::To(target);
}
template <class T>
void ZoPut(crossRef<T>& member, ZoStreamableBase* target) {
    member = target == nullptr ? nullptr : ZoDowncast<T>::To(target);
}
template <class T, class P>
void ZoAppend(TIVector<T, P>& list, ZoStreamableBase* target) {
    list.Add(target == nullptr ? nullptr : ZoDowncast<T>::To(target));
}
template <class T>
void ZoAppend(TDVector<T*>& list, ZoStreamableBase* target) {
    list.Add(target == nullptr ? nullptr : ZoDowncast<T>::To(target));
}
template <class T>
ZoStreamableBase* ZoTarget(const pointer<T>& holder) {
    return holder.get();
}
template <class T>
ZoStreamableBase* ZoTarget(T* target) {
    return target;
}
template <class List>
bool ZoDelete(List& list, ZoStreamableBase* target) {
    const auto count = list.NItems();
    for (unsigned long long i = 1; i <= count; ++i) {
        if (ZoTarget(list[i]) == target) return list.RemoveAt(i), true;
    }
    return false;
}
template <class List>
void ZoIterate(List& list, ZoStreamableBaseFunctor& action) {
    for (auto& item : list) action(ZoTarget(item));
}
template <class List>
void ZoPrepare(List& list, int count) {
    list.RemoveAll();
    list.Reserve(static_cast<unsigned long long>(count));
}

/// The class of a field's objects, usable in member functions of a class that is still incomplete.
template <class Member>
struct ZoMemberTarget;
template <class T>
struct ZoMemberTarget<pointer<T>> {
    using Object = T;
};
template <class T>
struct ZoMemberTarget<crossRef<T>> {
    using Object = T;
};
template <class T, class P>
struct ZoMemberTarget<TIVector<T, P>> {
    using Object = T;
};
template <class T>
struct ZoMemberTarget<TDVector<T*>> {
    using Object = T;
};

template <class T, class Field>
Field* ZoBind(Field* field) {
    static_assert(std::is_base_of_v<ZoStreamableBase, T>,
                  "a field's objects must derive from ZoStreamableBase: use DECLARE_ZO_FIELD for values");
    field->SetTypeTest(ZoIsA<T>);
    field->SetPlain();
    return field;
}

/// A class's name as registered: without namespaces.
ZO_API ZoString ZoRegisteredName(const char* qualifiedName);

/// The accessors of a map's two lists of equal length. When reading, a key is added before its value.
template <class Owner, auto Member>
struct ZoMapAccessors;
template <class Owner, class K, class V, class P, TIMap<K, V, P> Owner::*Member>
struct ZoMapAccessors<Owner, Member> {
    static TIMap<K, V, P>& Map(ZoStreamableBase* object) { return ZoSelf<Owner>(object).*Member; }

    static unsigned long long NItems(ZoStreamableBase* object, TZoClassField*) {
        return Map(object).NItems();
    }
    static void Clear(ZoStreamableBase* object, int, int, int) { Map(object).RemoveAll(); }
    static void ClearNothing(ZoStreamableBase*, int, int, int) {}
    static void AddKey(ZoStreamableBase* object, TZoClassField*, ZoStreamableBase* key) {
        Map(object).Append(key == nullptr ? nullptr : ZoDowncast<K>::To(key), nullptr);
    }
    static void AddValue(ZoStreamableBase* object, TZoClassField*, ZoStreamableBase* value) {
        TIMap<K, V, P>& map = Map(object);
        if (map.NItems() != 0) ZoPut(map.ValueAt(map.NItems()), value);
    }
    static ZoStreamableBase* KeyAt(ZoStreamableBase* object, TZoClassField*, int index) {
        return ZoTarget(Map(object).KeyAt(static_cast<unsigned long long>(index)));
    }
    static ZoStreamableBase* ValueAt(ZoStreamableBase* object, TZoClassField*, int index) {
        return ZoTarget(Map(object).ValueAt(static_cast<unsigned long long>(index)));
    }

    /// `keyClass`: the name of the keys' class.
    static TZoClassFieldPointerMap* AddField(TZoClass* owner, const char* name, TZoClass* fieldClass,
                                             const char* keyClass) {
        auto* keys = new TZoClassFieldPointerList(name, ftChildPointerList,
                                                  {AddKey, KeyAt, NItems, nullptr, Clear, nullptr, nullptr});
        auto* values = new TZoClassFieldPointerList(
            name, ftChildPointerList, {AddValue, ValueAt, NItems, nullptr, ClearNothing, nullptr, nullptr});
        const ZoString keyName = ZoRegisteredName(keyClass);
        keys->SetFieldClass(owner->GetMetaData()->FindClass(keyName));
        keys->SetFieldClassName(keyName);
        return owner->AddFieldChildPointerMap(name, fieldClass, ZoBind<K>(keys), ZoBind<V>(values));
    }
};

/// "class " and the run-time type's name without "ZoPrimitives::".
ZO_API ZoString ZoStreamableClassName(const std::type_info& type);
/// Implements every `Getfieldclassfor_<field>`: finds the class of that name, null if it is not registered.
ZO_API ZoString ZoFieldClass(TZoMetaData* schema, TZoClass** fieldClass, TZoClassFieldType* kind,
                             const char* name, TZoClassFieldType fieldKind);

// Whether a class overrides one of the streamers' calls: the operation is then a member of another type.
// Undecidable cases (an overload, an operation that is not public) count as overridden.
#define ZO_HOOK_(Hook)                                                                                       \
    template <class T, class = void>                                                                         \
    struct ZoOverrides##Hook : std::true_type {};                                                            \
    template <class T>                                                                                       \
    struct ZoOverrides##Hook<T, std::void_t<decltype(&T::Hook)>>                                             \
        : std::negation<std::is_same<decltype(&T::Hook), decltype(&ZoStreamableBase::Hook)>> {};
ZO_HOOK_(OnRead)
ZO_HOOK_(OnReadPointer)
ZO_HOOK_(GetIsValid)
ZO_HOOK_(HandleExcludedField)
ZO_HOOK_(CheckForExcludedFields)
ZO_HOOK_(WillWrite)
#undef ZO_HOOK_

template <class T>
constexpr unsigned ZoHooksOf() {
    return (ZoOverridesOnRead<T>::value ? hookOnRead : 0u) |
           (ZoOverridesOnReadPointer<T>::value ? hookOnReadPointer : 0u) |
           (ZoOverridesGetIsValid<T>::value ? hookGetIsValid : 0u) |
           (ZoOverridesCheckForExcludedFields<T>::value || ZoOverridesHandleExcludedField<T>::value
                ? hookCheckForExcludedFields
                : 0u) |
           (ZoOverridesWillWrite<T>::value ? hookWillWrite : 0u);
}

/// The part of the macros' `Register` that needs no templates.
class ZO_API ZoRegistration {
public:
    using FieldClassFunction = ZoString (*)(TZoMetaData*, TZoClass**, TZoClassFieldType*);
    using AddFieldFunction = TZoClassField* (*)(TZoClass*, TZoClass*, const ZoString&);

    /// `parents`: up to three names, "0" or "NULL" for none. Unregistered parents are skipped.
    ZoRegistration(TZoMetaData* schema, const char* name, const char* const (&parents)[3],
                   TZoCreateFunction create, bool abstract, const std::type_info& type, unsigned slot);
    ~ZoRegistration();
    ZoRegistration(const ZoRegistration&) = delete;
    ZoRegistration& operator=(const ZoRegistration&) = delete;

    void SetHooks(unsigned overridden) { made->SetHooks(overridden); }
    void AddField(FieldClassFunction fieldClassOf, AddFieldFunction add);
    /// Adds the class to the schema and returns it; returns the existing class if the name is taken.
    TZoClass* Finish();

private:
    TZoMetaData* schema;
    pointer<TZoClass> made;
    TDVector<TZoClassField*> unresolved;
};

/// An empty object, for initialising a member.
template <class T>
T ZoEmpty() {
    if constexpr (std::is_default_constructible_v<T>) {
        return T();
    } else {
        return T(ZoStreamableBase::InitEmpty);
    }
}

/// The factory of every registered class: an empty object of the given class (may be null).
template <class T>
ZoStreamableBase* ZoCreateInstance(TZoMetaData*, TZoMetaData*, TZoClass* objectClass) {
    ZoStreamableBase* object = nullptr;
    if constexpr (std::is_constructible_v<T, ZoStreamableBase::StreamableInit>) {
        object = new T(ZoStreamableBase::InitEmpty);
    } else {
        object = new T();
    }
    ZoMadeFor::Set(*object, objectClass);
    return object;
}

template <class Class, class Parent>
constexpr bool ZoIsParent() {
    static_assert(std::is_base_of_v<Parent, Class>,
                  "REGISTER_ZO_BEGIN: a parent must be a base of the class in C++ too");
    return true;
}

template <class T, int... Lines>
void AddFieldsOfLines(ZoRegistration& registration, std::integer_sequence<int, Lines...>) {
    (T::ZoAddField(ZoFieldLine<T::ZoFirstLine + Lines>(), registration), ...);
}

template <class T>
TZoClass* ZoRegisterClass(TZoMetaData* schema, const char* name, const char* const (&parents)[3]) {
    static_assert(std::is_base_of_v<ZoStreamableBase, T>,
                  "REGISTER_ZO_BEGIN: the class must derive from ZoStreamableBase or ZoObjectStreamable");
    static_assert(
        std::is_convertible_v<T*, ZoStreamableBase*>,
        "REGISTER_ZO_BEGIN: a class with several streamable parents must derive from them, and they "
        "from their common base, virtually and publicly");
    static_assert(T::template ZoParentsHold<T>());
    constexpr bool abstract = std::is_abstract_v<T>;
    TZoCreateFunction create = nullptr;
    if constexpr (!abstract) {
        static_assert(std::is_constructible_v<T, ZoStreamableBase::StreamableInit> ||
                          std::is_default_constructible_v<T>,
                      "REGISTER_ZO_BEGIN: the class needs a public constructor that takes "
                      "ZoStreamableBase::StreamableInit, or a default constructor");
        create = ZoCreateInstance<T>;
    }
    ZoRegistration registration(schema, name, parents, create, abstract, typeid(T), T::ZoSlot);
    registration.SetHooks(ZoHooksOf<T>());
    AddFieldsOfLines<T>(registration, std::make_integer_sequence<int, T::ZoLastLine - T::ZoFirstLine>());
    return registration.Finish();
}

} // namespace ZoPrimitives

#define ZO_EXPAND_(x) x
#define ZO_FIFTH_(a, b, c, d, e, ...) e
#define ZO_PARENTS_(...)                                                                                     \
    template <class ZoThis>                                                                                  \
    static constexpr bool ZoParentsHold() {                                                                  \
        return __VA_ARGS__;                                                                                  \
    }
#define ZO_IS_PARENT_(Parent) ::ZoPrimitives::ZoIsParent<ZoThis, Parent>()
#define ZO_BEGIN_1_(Class, unused) ZO_BEGIN_NAMES(Class, "NULL", "NULL", "NULL")
#define ZO_BEGIN_2_(Class, P1, unused) ZO_BEGIN_CHECKED_(Class, #P1, "NULL", "NULL", ZO_IS_PARENT_(P1))
#define ZO_BEGIN_3_(Class, P1, P2, unused)                                                                   \
    ZO_BEGIN_CHECKED_(Class, #P1, #P2, "NULL", ZO_IS_PARENT_(P1) && ZO_IS_PARENT_(P2))
#define ZO_BEGIN_4_(Class, P1, P2, P3, unused)                                                               \
    ZO_BEGIN_CHECKED_(Class, #P1, #P2, #P3, ZO_IS_PARENT_(P1) && ZO_IS_PARENT_(P2) && ZO_IS_PARENT_(P3))

/// Opens a class's registration; takes the class and up to three parents.
#define REGISTER_ZO_BEGIN(...)                                                                               \
    ZO_EXPAND_(ZO_FIFTH_(__VA_ARGS__, ZO_BEGIN_4_, ZO_BEGIN_3_, ZO_BEGIN_2_, ZO_BEGIN_1_, )(__VA_ARGS__, ))

/// As above, with the parents' names as texts, which are not checked; "0" and "NULL" mean none.
#define ZO_BEGIN_NAMES(Class, Parent1, Parent2, Parent3)                                                     \
    ZO_BEGIN_CHECKED_(Class, Parent1, Parent2, Parent3, true)

#define ZO_BEGIN_CHECKED_(Class, Parent1, Parent2, Parent3, ...)                                             \
public:                                                                                                      \
    using ZoClass = Class;                                                                                   \
    [[maybe_unused]] static constexpr int ZoFirstLine = __LINE__;                                            \
    static constexpr const char* ZoName() { return #Class; }                                                 \
    /* The number of this class in the process; 0 before its module is initialised, when names are */        \
    /* looked up instead. A member, so that modules share the number of an exported class. */                \
    static inline const unsigned ZoSlot = ::ZoPrimitives::ZoNewClassSlot();                                  \
    static const char* const(&ZoParents())[3] {                                                              \
        static constexpr const char* parents[3] = {Parent1, Parent2, Parent3};                               \
        return parents;                                                                                      \
    }                                                                                                        \
    template <int ZoLine>                                                                                    \
    static void ZoAddField(::ZoPrimitives::ZoFieldLine<ZoLine>, ::ZoPrimitives::ZoRegistration&) {}          \
    ZO_PARENTS_(__VA_ARGS__)

/// Closes a class's registration.
#define REGISTER_ZO_END                                                                                      \
    [[maybe_unused]] static constexpr int ZoLastLine = __LINE__;                                             \
    template <class ZoThis = ZoClass>                                                                        \
    static ::ZoPrimitives::TZoClass* Register(::ZoPrimitives::TZoMetaData* schema) {                         \
        return ::ZoPrimitives::ZoRegisterClass<ZoThis>(schema, ZoName(), ZoParents());                       \
    }                                                                                                        \
    static void Unregister(::ZoPrimitives::TZoMetaData* schema) { schema->ExcludeClass(ZoName()); }          \
    ::ZoPrimitives::TZoClass* GetOriginalClass(::ZoPrimitives::TZoMetaData* schema) const override {         \
        return schema->FindClass(ZoSlot, ZoName(), typeid(ZoClass));                                         \
    }                                                                                                        \
    ::ZoPrimitives::TZoClass* GetClass() const override {                                                    \
        return ::ZoPrimitives::TZoMetaData::FindClassOf(*this, ZoSlot);                                      \
    }                                                                                                        \
    ::ZoPrimitives::ZoString StreamableClassName() const override {                                          \
        return ::ZoPrimitives::ZoStreamableClassName(typeid(*this));                                         \
    }

#define ZO_FIELD_LINE_(field)                                                                                \
    static void ZoAddField(::ZoPrimitives::ZoFieldLine<__LINE__>,                                            \
                           ::ZoPrimitives::ZoRegistration& registration) {                                   \
        registration.AddField(Getfieldclassfor_##field, Addfieldfor_##field);                                \
    }
#define ZO_MEMBER_(field)                                                                                    \
    static void* Member##field(::ZoPrimitives::ZoStreamableBase* object) {                                   \
        return &::ZoPrimitives::ZoSelf<ZoClass>(object).field;                                               \
    }
#define ZO_FIELD_CLASS_(field, typeName, fieldKind)                                                          \
    static ::ZoPrimitives::ZoString Getfieldclassfor_##field(::ZoPrimitives::TZoMetaData* schema,            \
                                                             ::ZoPrimitives::TZoClass** fieldClass,          \
                                                             ::ZoPrimitives::TZoClassFieldType* kind) {      \
        return ::ZoPrimitives::ZoFieldClass(schema, fieldClass, kind, typeName, fieldKind);                  \
    }

#define DECLARE_ZO_FIELD(Type, field)                                                                        \
    Type field{};                                                                                            \
    static void Set##field(::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*,         \
                           ::ZoPrimitives::TZoParameter<Type> value) {                                       \
        ::ZoPrimitives::ZoAssign(::ZoPrimitives::ZoSelf<ZoClass>(object).field, value);                      \
    }                                                                                                        \
    static ::ZoPrimitives::TZoParameter<Type> Get##field(::ZoPrimitives::ZoStreamableBase* object,           \
                                                         ::ZoPrimitives::TZoClassField*) {                   \
        return ::ZoPrimitives::ZoSelf<ZoClass>(object).field;                                                \
    }                                                                                                        \
    ZO_MEMBER_(field)                                                                                        \
    ZO_FIELD_CLASS_(field, ::ZoPrimitives::ZoValueField<Type>::name,                                         \
                    ::ZoPrimitives::ZoValueField<Type>::kind)                                                \
    static ::ZoPrimitives::TZoClassField* Addfieldfor_##field(                                               \
        ::ZoPrimitives::TZoClass* owner, ::ZoPrimitives::TZoClass*, const ::ZoPrimitives::ZoString&) {       \
        auto* newField = ::ZoPrimitives::ZoValueField<Type>::Add(owner, #field, Set##field, Get##field);     \
        newField->SetMember(Member##field);                                                                  \
        return newField;                                                                                     \
    }                                                                                                        \
    ZO_FIELD_LINE_(field)

#define DECLARE_ZO_FIELD_LIST(Type, field)                                                                   \
    ::ZoPrimitives::TDVector<Type> field;                                                                    \
    static void Add##field(::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*,         \
                           ::ZoPrimitives::TZoParameter<Type> value) {                                       \
        ::ZoPrimitives::ZoAddValue(::ZoPrimitives::ZoSelf<ZoClass>(object).field, value);                    \
    }                                                                                                        \
    static ::ZoPrimitives::TZoParameter<Type> ElementAt##field(::ZoPrimitives::ZoStreamableBase* object,     \
                                                               ::ZoPrimitives::TZoClassField*, int index) {  \
        return ::ZoPrimitives::ZoSelf<ZoClass>(object).field[static_cast<unsigned long long>(index)];        \
    }                                                                                                        \
    ZO_LIST_COUNT_(field, field)                                                                             \
    ZO_MEMBER_(field)                                                                                        \
    ZO_FIELD_CLASS_(field, ::ZoPrimitives::ZoListField<Type>::name, ::ZoPrimitives::ZoListField<Type>::kind) \
    static ::ZoPrimitives::TZoClassField* Addfieldfor_##field(                                               \
        ::ZoPrimitives::TZoClass* owner, ::ZoPrimitives::TZoClass*, const ::ZoPrimitives::ZoString&) {       \
        auto* newField = ::ZoPrimitives::ZoListField<Type>::Add(                                             \
            owner, #field,                                                                                   \
            {Add##field, ElementAt##field, NItems##field, CreateList_##field, nullptr, nullptr});            \
        newField->SetMember(Member##field);                                                                  \
        return newField;                                                                                     \
    }                                                                                                        \
    ZO_FIELD_LINE_(field)

#define ZO_LIST_COUNT_(field, member)                                                                        \
    static unsigned long long NItems##field(::ZoPrimitives::ZoStreamableBase* object,                        \
                                            ::ZoPrimitives::TZoClassField*) {                                \
        return ::ZoPrimitives::ZoSelf<ZoClass>(object).member.NItems();                                      \
    }                                                                                                        \
    static void CreateList_##field(::ZoPrimitives::ZoStreamableBase* object, int count, int, int) {          \
        ::ZoPrimitives::ZoPrepare(::ZoPrimitives::ZoSelf<ZoClass>(object).member, count);                    \
    }

// Accessors of pointers are templates, so that the target's class may be declared later.
#define ZO_POINTER_FIELD_(Member, Type, field, Kind)                                                         \
    Member field;                                                                                            \
    template <class ZoThis = ZoClass>                                                                        \
    static void Set##field(::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*,         \
                           ::ZoPrimitives::ZoStreamableBase* target) {                                       \
        ::ZoPrimitives::ZoPut(::ZoPrimitives::ZoSelf<ZoThis>(object).field, target);                         \
    }                                                                                                        \
    template <class ZoThis = ZoClass>                                                                        \
    static ::ZoPrimitives::ZoStreamableBase* Get##field(::ZoPrimitives::ZoStreamableBase* object,            \
                                                        ::ZoPrimitives::TZoClassField*) {                    \
        return ::ZoPrimitives::ZoSelf<ZoThis>(object).field.get();                                           \
    }                                                                                                        \
    ZO_FIELD_CLASS_(field, #Type, ::ZoPrimitives::ft##Kind)                                                  \
    template <class ZoThis = ZoClass>                                                                        \
    static ::ZoPrimitives::TZoClassField* Addfieldfor_##field(::ZoPrimitives::TZoClass* owner,               \
                                                              ::ZoPrimitives::TZoClass* fieldClass,          \
                                                              const ::ZoPrimitives::ZoString& typeName) {    \
        using Target = typename ::ZoPrimitives::ZoMemberTarget<decltype(ZoThis::field)>::Object;             \
        auto* newField = ::ZoPrimitives::ZoBind<Target>(                                                     \
            owner->AddField##Kind(#field, fieldClass, Set##field<ZoThis>, Get##field<ZoThis>));              \
        newField->SetFieldClassName(typeName);                                                               \
        return newField;                                                                                     \
    }                                                                                                        \
    ZO_FIELD_LINE_(field)

#define ZO_POINTER_LIST_FIELD_(Member, Type, field, Kind)                                                    \
    Member field;                                                                                            \
    template <class ZoThis = ZoClass>                                                                        \
    static void Add##field(::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*,         \
                           ::ZoPrimitives::ZoStreamableBase* target) {                                       \
        ::ZoPrimitives::ZoAppend(::ZoPrimitives::ZoSelf<ZoThis>(object).field, target);                      \
    }                                                                                                        \
    template <class ZoThis = ZoClass>                                                                        \
    static bool Del##field(::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*,         \
                           ::ZoPrimitives::ZoStreamableBase* target) {                                       \
        return ::ZoPrimitives::ZoDelete(::ZoPrimitives::ZoSelf<ZoThis>(object).field, target);               \
    }                                                                                                        \
    template <class ZoThis = ZoClass>                                                                        \
    static ::ZoPrimitives::ZoStreamableBase* ElementAt##field(::ZoPrimitives::ZoStreamableBase* object,      \
                                                              ::ZoPrimitives::TZoClassField*, int index) {   \
        return ::ZoPrimitives::ZoTarget(                                                                     \
            ::ZoPrimitives::ZoSelf<ZoThis>(object).field[static_cast<unsigned long long>(index)]);           \
    }                                                                                                        \
    template <class ZoThis = ZoClass>                                                                        \
    static unsigned long long NItems##field(::ZoPrimitives::ZoStreamableBase* object,                        \
                                            ::ZoPrimitives::TZoClassField*) {                                \
        return ::ZoPrimitives::ZoSelf<ZoThis>(object).field.NItems();                                        \
    }                                                                                                        \
    template <class ZoThis = ZoClass>                                                                        \
    static void CreateList_##field(::ZoPrimitives::ZoStreamableBase* object, int count, int, int) {          \
        ::ZoPrimitives::ZoPrepare(::ZoPrimitives::ZoSelf<ZoThis>(object).field, count);                      \
    }                                                                                                        \
    template <class ZoThis = ZoClass>                                                                        \
    static void IterateOver##field(::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*, \
                                   ::ZoPrimitives::ZoStreamableBaseFunctor& action) {                        \
        ::ZoPrimitives::ZoIterate(::ZoPrimitives::ZoSelf<ZoThis>(object).field, action);                     \
    }                                                                                                        \
    ZO_FIELD_CLASS_(field, #Type, ::ZoPrimitives::ft##Kind)                                                  \
    template <class ZoThis = ZoClass>                                                                        \
    static ::ZoPrimitives::TZoClassField* Addfieldfor_##field(::ZoPrimitives::TZoClass* owner,               \
                                                              ::ZoPrimitives::TZoClass* fieldClass,          \
                                                              const ::ZoPrimitives::ZoString& typeName) {    \
        using Target = typename ::ZoPrimitives::ZoMemberTarget<decltype(ZoThis::field)>::Object;             \
        auto* newField = ::ZoPrimitives::ZoBind<Target>(owner->AddField##Kind(                               \
            #field, fieldClass,                                                                              \
            {Add##field<ZoThis>, ElementAt##field<ZoThis>, NItems##field<ZoThis>,                            \
             IterateOver##field<ZoThis>, CreateList_##field<ZoThis>, nullptr, nullptr}));                    \
        newField->SetFieldClassName(typeName);                                                               \
        return newField;                                                                                     \
    }                                                                                                        \
    ZO_FIELD_LINE_(field)

#define DECLARE_ZO_FIELD_CHILD(Type, field)                                                                  \
    ZO_POINTER_FIELD_(::ZoPrimitives::pointer<Type>, Type, field, ChildPointer)
#define DECLARE_ZO_FIELD_REFERENCE(Type, field)                                                              \
    ZO_POINTER_FIELD_(::ZoPrimitives::crossRef<Type>, Type, field, Pointer)
#define DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Type, field)                                                     \
    ZO_POINTER_FIELD_(::ZoPrimitives::crossRef<Type>, Type, field, PointerEx)

#define ZO_CHILD_VECTOR_(Type) ::ZoPrimitives::TIVector<Type, ::ZoPrimitives::pointer<Type>>
#define DECLARE_ZO_FIELD_CHILD_LIST(Type, field)                                                             \
    ZO_POINTER_LIST_FIELD_(ZO_CHILD_VECTOR_(Type), Type, field, ChildPointerList)
#define DECLARE_ZO_FIELD_REFERENCE_LIST(Type, field)                                                         \
    ZO_POINTER_LIST_FIELD_(::ZoPrimitives::TDVector<Type*>, Type, field, PointerList)
#define DECLARE_ZO_FIELD_EXTERNAL_REFERENCE_LIST(Type, field)                                                \
    ZO_POINTER_LIST_FIELD_(::ZoPrimitives::TDVector<Type*>, Type, field, PointerListEx)

#define DECLARE_ZO_FIELD_CHILD_VALUE(Type, field)                                                            \
    Type field = ::ZoPrimitives::ZoEmpty<Type>();                                                            \
    static void Set##field(::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*,         \
                           ::ZoPrimitives::ZoStreamableBase* value) {                                        \
        ::ZoPrimitives::ZoSelf<ZoClass>(object).field = ::ZoPrimitives::ZoSelf<Type>(value);                 \
    }                                                                                                        \
    static ::ZoPrimitives::ZoStreamableBase* Get##field(::ZoPrimitives::ZoStreamableBase* object,            \
                                                        ::ZoPrimitives::TZoClassField*) {                    \
        return &::ZoPrimitives::ZoSelf<ZoClass>(object).field;                                               \
    }                                                                                                        \
    ZO_FIELD_CLASS_(field, #Type, ::ZoPrimitives::ftChildValue)                                              \
    static ::ZoPrimitives::TZoClassField* Addfieldfor_##field(::ZoPrimitives::TZoClass* owner,               \
                                                              ::ZoPrimitives::TZoClass* fieldClass,          \
                                                              const ::ZoPrimitives::ZoString& typeName) {    \
        auto* newField = ::ZoPrimitives::ZoBind<Type>(                                                       \
            owner->AddFieldChildValue(#field, fieldClass, Set##field, Get##field));                          \
        newField->SetFieldClassName(typeName);                                                               \
        return newField;                                                                                     \
    }                                                                                                        \
    ZO_FIELD_LINE_(field)

#define ZO_CHILD_MAP_(Key, Type) ::ZoPrimitives::TIMap<Key, Type, ::ZoPrimitives::pointer<Type>>
#define DECLARE_ZO_FIELD_CHILD_MAP(Key, Type, field)                                                         \
    ZO_CHILD_MAP_(Key, Type) field;                                                                          \
    ZO_FIELD_CLASS_(field, #Type, ::ZoPrimitives::ftChildPointerMap)                                         \
    template <class ZoThis = ZoClass>                                                                        \
    static ::ZoPrimitives::TZoClassField* Addfieldfor_##field(::ZoPrimitives::TZoClass* owner,               \
                                                              ::ZoPrimitives::TZoClass* fieldClass,          \
                                                              const ::ZoPrimitives::ZoString& typeName) {    \
        using Accessors = ::ZoPrimitives::ZoMapAccessors<ZoThis, &ZoThis::field>;                            \
        auto* newField = Accessors::AddField(owner, #field, fieldClass, #Key);                               \
        newField->SetFieldClassName(typeName);                                                               \
        return newField;                                                                                     \
    }                                                                                                        \
    ZO_FIELD_LINE_(field)
