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
// Each field line declares the member and its accessors, anywhere behind REGISTER_ZO_BEGIN; a class has up to
// 128. Members after REGISTER_ZO_END are public. The class needs a constructor that takes
// `ZoStreamableBase::StreamableInit`, or a default constructor. Abstract classes are recognised. Call
// `Storey::Register(&schema)` once, parents first.
//
// clang-format off
//     REGISTER_ZO_BEGIN(Class, Parent, ...)        up to three parents, each registered and a base in C++; no
//                                                  registered base may be left out
//     DECLARE_ZO_FIELD(Type, field)                int, unsigned, bool, float, double, ZoString, ZoBlob; an
//                                                  enumeration (stored as an int), an integer of 64 bits (as
//                                                  digits), TTimestamp (as text of ISO 8601)
//     DECLARE_ZO_FIELD(Type, field, initial)       the same, with its value in a new object
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
#include "ZoPrimitives/TTimestamp.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/dvector.h"

#include <cstddef>
#include <initializer_list>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace ZoPrimitives {

/// Tags the registration of a field; fields count from 0, in the order of their lines.
template <int Index>
struct ZoFieldIndex {
    static constexpr int value = Index;
};

inline constexpr int ZoMostFields = 128;

/// Converts to all lower ranks: a call with the highest one picks the overload that was declared last.
template <int N>
struct ZoFieldRank : ZoFieldRank<N - 1> {};
template <>
struct ZoFieldRank<0> {};

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

// The texts that files hold for types without a kind of their own. A returned text is valid until the
// thread's next call.

ZO_API const ZoString& ZoToStored(long long value);
ZO_API const ZoString& ZoToStored(unsigned long long value);
ZO_API const ZoString& ZoToStored(const TTimestamp& value);
// These throw `XReadStream` when the text is not such a value.
ZO_API void ZoFromStored(const ZoString& stored, long long& value, const TZoClassField* field);
ZO_API void ZoFromStored(const ZoString& stored, unsigned long long& value, const TZoClassField* field);
ZO_API void ZoFromStored(const ZoString& stored, TTimestamp& value, const TZoClassField* field);
[[noreturn]] ZO_API void ZoRefuseStored(const ZoString& stored, const TZoClassField* field);

/// Map C++ types to the kinds of value and list fields. The macros report a type without a kind; the primary
/// templates then stand in with an int, so that the compiler reports nothing else.
template <class T, class = void>
struct ZoValueField {
    using Stored = int;
    static constexpr TZoClassFieldType kind = ftInt;
    static constexpr const char* name = nullptr;
    static constexpr bool isStored = false;
    static void Set(const T&, int, const TZoClassField*) {}
    static int Get(const T&) { return 0; }
    static TZoClassField* Add(TZoClass*, const char*, TZoSetter<int>, TZoGetter<int>) { return nullptr; }
};
template <class T>
struct ZoListField {
    using Item = int;
    static constexpr TZoClassFieldType kind = ftListInt;
    static constexpr const char* name = nullptr;
    static TZoClassField* Add(TZoClass*, const char*, const TZoListAccessors<int>&) { return nullptr; }
};

// What the macros' accessors do with the members that hold values. A text that finds no memory throws
// `std::bad_alloc` instead of getting lost.

template <class T>
void ZoAssign(T& member, const T& value) {
    member = value;
}
inline void ZoAssign(ZoString& member, const ZoString& value) {
    member = value;
    if (value.c_str()[0] != '\0' && member.c_str()[0] == '\0') throw std::bad_alloc();
}
#define ZO_VALUE_FIELD(Type, Kind, TypeName)                                                                 \
    template <>                                                                                              \
    struct ZoValueField<Type> {                                                                              \
        using Stored = Type;                                                                                 \
        static constexpr bool isStored = true;                                                               \
        static void Set(Type& member, TZoParameter<Type> value, const TZoClassField*) {                      \
            ZoAssign(member, value);                                                                         \
        }                                                                                                    \
        static TZoParameter<Type> Get(const Type& member) { return member; }                                 \
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
        using Item = Type;                                                                                   \
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

/// Stored as an int.
template <class T>
struct ZoValueField<T, std::enable_if_t<std::is_enum_v<T> && sizeof(T) <= sizeof(int)>> : ZoValueField<int> {
    static constexpr bool isStored = false;
    static void Set(T& member, int value, const TZoClassField* field) {
        if (static_cast<int>(static_cast<T>(value)) != value) ZoRefuseStored(value, field);
        member = static_cast<T>(value);
    }
    static int Get(T member) { return static_cast<int>(member); }
};
/// Stored as a text, which anyone can read.
template <class T, class Wide = T>
struct ZoTextField : ZoValueField<ZoString> {
    static constexpr bool isStored = false;
    static void Set(T& member, const ZoString& text, const TZoClassField* field) {
        Wide value{};
        ZoFromStored(text, value, field);
        member = value;
    }
    static const ZoString& Get(const T& member) { return ZoToStored(static_cast<Wide>(member)); }
};
/// `long` is one of them where it has 64 bits.
template <class T>
struct ZoValueField<T, std::enable_if_t<std::is_integral_v<T> && sizeof(T) == 8>>
    : ZoTextField<T, std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>> {};
template <>
struct ZoValueField<TTimestamp> : ZoTextField<TTimestamp> {};

template <class T>
void ZoAddValue(TDVector<T>& list, const T& value) {
    list.Add(value);
}
inline void ZoAddValue(TDVector<ZoString>& list, const ZoString& value) {
    list.Add(ZoString());
    ZoAssign(list.Last(), value);
}

#define ZO_BASE_TEXT_                                                                                        \
    "REGISTER_ZO_BEGIN: the class must derive from ZoStreamableBase or ZoObjectStreamable, publicly; from "  \
    "several streamable parents, and they from their common base, virtually"
// GCC and clang know the bases of a class that they are still reading, and can report a wrong one first.
#if defined(__GNUC__)
template <class Class, class = void>
struct ZoDerives : std::false_type {};
template <class Class>
struct ZoDerives<Class, std::void_t<decltype(static_cast<const ZoStreamableBase*>(std::declval<Class*>()))>>
    : std::true_type {};
#define ZO_CHECK_BASE_(Class) static_assert(::ZoPrimitives::ZoDerives<Class>::value, ZO_BASE_TEXT_);
#else
#define ZO_CHECK_BASE_(Class)
#endif

// What the macros' accessors do with the members that hold pointers.

/// Reports a class whose objects no field can hold, once: the accessors then do nothing.
template <class T>
constexpr bool ZoIsStreamable() {
    constexpr bool is = std::is_base_of_v<ZoStreamableBase, T>;
    static_assert(is, "a field's objects must derive from ZoStreamableBase: use DECLARE_ZO_FIELD for values");
    return is;
}
template <class T>
T* ZoAs(ZoStreamableBase* target) {
    if constexpr (ZoIsStreamable<T>()) return target == nullptr ? nullptr : ZoDowncast<T>::To(target);
    return nullptr;
}
template <class T>
ZoStreamableBase* ZoTarget(T* target) {
    if constexpr (ZoIsStreamable<T>()) return target;
    return nullptr;
}
template <class T>
ZoStreamableBase* ZoTarget(const pointer<T>& holder) {
    return ZoTarget(holder.get());
}
template <class T>
ZoStreamableBase* ZoTarget(const crossRef<T>& holder) {
    return ZoTarget(holder.get());
}
template <class T>
void ZoPut(pointer<T>& member, ZoStreamableBase* target) {
    member = ZoAs<T>(target);
}
template <class T>
void ZoPut(crossRef<T>& member, ZoStreamableBase* target) {
    member = ZoAs<T>(target);
}
template <class T, class P>
void ZoAppend(TIVector<T, P>& list, ZoStreamableBase* target) {
    list.Add(ZoAs<T>(target));
}
template <class T>
void ZoAppend(TDVector<T*>& list, ZoStreamableBase* target) {
    list.Add(ZoAs<T>(target));
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
    if constexpr (ZoIsStreamable<T>()) field->SetTypeTest(ZoIsA<T>);
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
        Map(object).Append(ZoAs<K>(key), nullptr);
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
    void SetTypeTest(TZoTypeTest test) { made->SetTypeTest(test); }
    void AddField(FieldClassFunction fieldClassOf, AddFieldFunction add);
    void FieldWas(const char* field, std::initializer_list<const char*> formerNames);
    void ClassWas(std::initializer_list<const char*> formerNames);
    /// Adds the class to the schema and returns it; returns the existing class if the name is taken.
    TZoClass* Finish();

private:
    TZoMetaData* schema;
    pointer<TZoClass> made;
    TDVector<TZoClassField*> unresolved;
};

/// Converts to `StreamableInit` alone, so that a constructor that takes an int does not match.
struct ZoInitProbe {
    template <class T, class = std::enable_if_t<std::is_same_v<T, ZoStreamableBase::StreamableInit>>>
    operator T() const;
};
template <class T>
constexpr bool ZoTakesInit = std::is_constructible_v<T, ZoInitProbe>;

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
    if constexpr (ZoTakesInit<T>) {
        object = new T(ZoStreamableBase::InitEmpty);
    } else {
        object = new T();
    }
    ZoMadeFor::Set(*object, objectClass);
    return object;
}

/// A class and the parents that its registration names.
template <class Class, class... Parents>
struct ZoNamed {};
/// Whether a registered base has its place in a registration: as the class, as a parent or behind one.
template <class Base, class Class, class... Parents>
constexpr bool ZoHasPlace = std::is_same_v<Base, Class> || (std::is_base_of_v<Base, Parents> || ...);
/// A registered base that has no place in a registration; void for none. Each registered class adds an
/// overload of `ZoFindLeftOut` as a friend.
template <class Base>
struct ZoLeftOut {
    using Class = Base;
};
ZoLeftOut<void> ZoFindLeftOut(const volatile void*, ...);

template <class Named, class = void>
struct ZoNamesAllBases : std::false_type {}; // several are left out
template <class Class, class... Parents>
struct ZoNamesAllBases<
    ZoNamed<Class, Parents...>,
    std::void_t<decltype(ZoFindLeftOut(std::declval<const Class*>(), ZoNamed<Class, Parents...>()))>>
    : std::is_void<typename decltype(ZoFindLeftOut(std::declval<const Class*>(),
                                                   ZoNamed<Class, Parents...>()))::Class> {};

template <class Class, class... Parents>
constexpr bool ZoParentsAreRight() {
    static_assert((std::is_base_of_v<Parents, Class> && ...),
                  "REGISTER_ZO_BEGIN: a parent must be a base of the class in C++ too");
    static_assert(
        ZoNamesAllBases<ZoNamed<Class, Parents...>>::value,
        "REGISTER_ZO_BEGIN: the class has a registered base that is not named as a parent: its fields "
        "would not be saved. Name it, or use ZO_BEGIN_NAMES to leave it out");
    return true;
}

/// The class of an object, by the number of its C++ class.
template <class T>
TZoClass* ZoClassOf(const T* object, unsigned slot) {
    constexpr bool derives = std::is_convertible_v<const T*, const ZoStreamableBase*>;
    static_assert(derives, ZO_BASE_TEXT_);
    if constexpr (derives) return TZoMetaData::FindClassOf(*object, slot);
    return nullptr;
}

template <class T>
TZoClass* ZoRegisterClass(TZoMetaData* schema, const char* name, const char* const (&parents)[3]) {
    static_assert(T::template ZoParentsHold<T>());
    constexpr bool abstract = std::is_abstract_v<T>;
    TZoCreateFunction create = nullptr;
    if constexpr (!abstract) {
        static_assert(ZoTakesInit<T> || std::is_default_constructible_v<T>,
                      "REGISTER_ZO_BEGIN: the class needs a public constructor that takes "
                      "ZoStreamableBase::StreamableInit, or a default constructor");
        create = ZoCreateInstance<T>;
    }
    ZoRegistration registration(schema, name, parents, create, abstract, typeid(T), T::ZoSlot);
    registration.SetHooks(ZoHooksOf<T>());
    registration.SetTypeTest(ZoIsA<T>);
    T::template ZoAddFields<T>(registration,
                               std::make_integer_sequence<int, T::template ZoCountFields<T>()>());
    return registration.Finish();
}

} // namespace ZoPrimitives

#define ZO_EXPAND_(x) x
#define ZO_FIFTH_(a, b, c, d, e, ...) e
#define ZO_PARENTS_ARE_RIGHT_(...) ::ZoPrimitives::ZoParentsAreRight<__VA_ARGS__>()
#define ZO_BEGIN_1_(Class, unused)                                                                           \
    ZO_BEGIN_CHECKED_(Class, "NULL", "NULL", "NULL", ZO_PARENTS_ARE_RIGHT_(ZoThis))
#define ZO_BEGIN_2_(Class, P1, unused)                                                                       \
    ZO_BEGIN_CHECKED_(Class, #P1, "NULL", "NULL", ZO_PARENTS_ARE_RIGHT_(ZoThis, P1))
#define ZO_BEGIN_3_(Class, P1, P2, unused)                                                                   \
    ZO_BEGIN_CHECKED_(Class, #P1, #P2, "NULL", ZO_PARENTS_ARE_RIGHT_(ZoThis, P1, P2))
#define ZO_BEGIN_4_(Class, P1, P2, P3, unused)                                                               \
    ZO_BEGIN_CHECKED_(Class, #P1, #P2, #P3, ZO_PARENTS_ARE_RIGHT_(ZoThis, P1, P2, P3))

/// Opens a class's registration; takes the class and up to three parents.
#define REGISTER_ZO_BEGIN(...)                                                                               \
    ZO_EXPAND_(ZO_FIFTH_(__VA_ARGS__, ZO_BEGIN_4_, ZO_BEGIN_3_, ZO_BEGIN_2_, ZO_BEGIN_1_, )(__VA_ARGS__, ))

/// As above, with the parents' names as texts, which are not checked; "0" and "NULL" mean none.
#define ZO_BEGIN_NAMES(Class, Parent1, Parent2, Parent3)                                                     \
    ZO_BEGIN_CHECKED_(Class, Parent1, Parent2, Parent3, true)

#define ZO_BEGIN_CHECKED_(Class, Parent1, Parent2, Parent3, ...)                                             \
public:                                                                                                      \
    using ZoClass = Class;                                                                                   \
    ZO_CHECK_BASE_(Class)                                                                                    \
    static constexpr const char* ZoName() { return #Class; }                                                 \
    /* The number of this class in the process; 0 before its module is initialised, when names are */        \
    /* looked up instead. A member, so that modules share the number of an exported class. */                \
    static inline const unsigned ZoSlot = ::ZoPrimitives::ZoNewClassSlot();                                  \
    static const char* const(&ZoParents())[3] {                                                              \
        static constexpr const char* parents[3] = {Parent1, Parent2, Parent3};                               \
        return parents;                                                                                      \
    }                                                                                                        \
    template <class... ZoNames>                                                                              \
    friend std::enable_if_t<!::ZoPrimitives::ZoHasPlace<Class, ZoNames...>,                                  \
                            ::ZoPrimitives::ZoLeftOut<Class>>                                                \
    ZoFindLeftOut(const Class*, ::ZoPrimitives::ZoNamed<ZoNames...>);                                        \
    template <class ZoThis>                                                                                  \
    static constexpr bool ZoParentsHold() {                                                                  \
        return __VA_ARGS__;                                                                                  \
    }                                                                                                        \
    static ::ZoPrimitives::ZoFieldIndex<0> ZoNextField(::ZoPrimitives::ZoFieldRank<0>);                      \
    template <class ZoThis>                                                                                  \
    static constexpr int ZoCountFields() {                                                                   \
        return decltype(ZoThis::ZoNextField(                                                                 \
            ::ZoPrimitives::ZoFieldRank<::ZoPrimitives::ZoMostFields>()))::value;                            \
    }                                                                                                        \
    template <class ZoThis, int... ZoIndices>                                                                \
    static void ZoAddFields([[maybe_unused]] ::ZoPrimitives::ZoRegistration& registration,                   \
                            std::integer_sequence<int, ZoIndices...>) {                                      \
        (ZoThis::ZoAddField(::ZoPrimitives::ZoFieldIndex<ZoIndices>(), registration), ...);                  \
    }

/// Closes a class's registration.
#define REGISTER_ZO_END                                                                                      \
    template <class ZoThis = ZoClass>                                                                        \
    static ::ZoPrimitives::TZoClass* Register(::ZoPrimitives::TZoMetaData* schema) {                         \
        return ::ZoPrimitives::ZoRegisterClass<ZoThis>(schema, ZoName(), ZoParents());                       \
    }                                                                                                        \
    static void Unregister(::ZoPrimitives::TZoMetaData* schema) { schema->ExcludeClass(ZoName()); }          \
    ::ZoPrimitives::TZoClass* GetOriginalClass(::ZoPrimitives::TZoMetaData* schema) const override {         \
        return schema->FindClass(ZoSlot, ZoName(), typeid(ZoClass));                                         \
    }                                                                                                        \
    ::ZoPrimitives::TZoClass* GetClass() const override { return ::ZoPrimitives::ZoClassOf(this, ZoSlot); }  \
    ::ZoPrimitives::ZoString StreamableClassName() const override {                                          \
        return ::ZoPrimitives::ZoStreamableClassName(typeid(*this));                                         \
    }

/// A line of the registration, which does something to a `ZoRegistration& registration` in its turn.
#define ZO_LINE_(line, ...)                                                                                  \
    static constexpr int ZoIndexOf_##line =                                                                  \
        decltype(ZoNextField(::ZoPrimitives::ZoFieldRank<::ZoPrimitives::ZoMostFields>()))::value;           \
    static_assert(ZoIndexOf_##line < ::ZoPrimitives::ZoMostFields, "a class has 128 field lines at most");   \
    static ::ZoPrimitives::ZoFieldIndex<ZoIndexOf_##line + 1> ZoNextField(                                   \
        ::ZoPrimitives::ZoFieldRank<ZoIndexOf_##line + 1>);                                                  \
    static void ZoAddField(::ZoPrimitives::ZoFieldIndex<ZoIndexOf_##line>,                                   \
                           ::ZoPrimitives::ZoRegistration& registration) {                                   \
        __VA_ARGS__;                                                                                         \
    }
#define ZO_FIELD_LINE_(field)                                                                                \
    ZO_LINE_(field, registration.AddField(Getfieldclassfor_##field, Addfieldfor_##field))

/// Behind a field's line: names that the field had in earlier versions of the application. Files are read
/// under them, too; a file that has the present name is read under that one alone.
#define ZO_FIELD_WAS(field, ...)                                                                             \
    static_assert(ZoIndexOf_##field >= 0, "ZO_FIELD_WAS stands behind the field's line");                    \
    ZO_LINE_(ZoWas_##field, registration.FieldWas(#field, {__VA_ARGS__}))
/// Names that the class had in earlier versions. Files are read under them, too, unless the application has a
/// class of that name.
#define ZO_CLASS_WAS(...) ZO_LINE_(ZoClassWas, registration.ClassWas({__VA_ARGS__}))

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

#define ZO_FOURTH_(a, b, c, d, ...) d
#define DECLARE_ZO_FIELD(...)                                                                                \
    ZO_EXPAND_(ZO_FOURTH_(__VA_ARGS__, ZO_FIELD_OF_3_, ZO_FIELD_OF_2_, )(__VA_ARGS__, ))
#define ZO_FIELD_OF_2_(Type, field, unused) ZO_VALUE_FIELD_(Type, field, {})
#define ZO_FIELD_OF_3_(Type, field, initial, unused) ZO_VALUE_FIELD_(Type, field, = initial)
#define ZO_VALUE_FIELD_(Type, field, initial)                                                                \
    ZO_VALUE_ACCESSORS_(Type, field, initial)                                                                \
    ZO_FIELD_LINE_(field)
#define ZO_VALUE_ACCESSORS_(Type, field, initial)                                                            \
    static_assert(::ZoPrimitives::ZoValueField<Type>::name != nullptr,                                       \
                  "DECLARE_ZO_FIELD takes int, unsigned, bool, float, double, ZoString, ZoBlob, an "         \
                  "enumeration, long long, unsigned long long or TTimestamp; objects have "                  \
                  "DECLARE_ZO_FIELD_CHILD, ..._VALUE and ..._REFERENCE");                                    \
    Type field initial;                                                                                      \
    static void Set##field(::ZoPrimitives::ZoStreamableBase* object,                                         \
                           ::ZoPrimitives::TZoClassField* metaField,                                         \
                           ::ZoPrimitives::TZoParameter<::ZoPrimitives::ZoValueField<Type>::Stored> value) { \
        ::ZoPrimitives::ZoValueField<Type>::Set(::ZoPrimitives::ZoSelf<ZoClass>(object).field, value,        \
                                                metaField);                                                  \
    }                                                                                                        \
    static ::ZoPrimitives::TZoParameter<::ZoPrimitives::ZoValueField<Type>::Stored> Get##field(              \
        ::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*) {                          \
        return ::ZoPrimitives::ZoValueField<Type>::Get(::ZoPrimitives::ZoSelf<ZoClass>(object).field);       \
    }                                                                                                        \
    ZO_MEMBER_(field)                                                                                        \
    ZO_FIELD_CLASS_(field, ::ZoPrimitives::ZoValueField<Type>::name,                                         \
                    ::ZoPrimitives::ZoValueField<Type>::kind)                                                \
    static ::ZoPrimitives::TZoClassField* Addfieldfor_##field(                                               \
        ::ZoPrimitives::TZoClass* owner, ::ZoPrimitives::TZoClass*, const ::ZoPrimitives::ZoString&) {       \
        auto* newField = ::ZoPrimitives::ZoValueField<Type>::Add(owner, #field, Set##field, Get##field);     \
        newField->SetPlain();                                                                                \
        if constexpr (::ZoPrimitives::ZoValueField<Type>::isStored) newField->SetMember(Member##field);      \
        return newField;                                                                                     \
    }

#define DECLARE_ZO_FIELD_LIST(Type, field)                                                                   \
    static_assert(::ZoPrimitives::ZoListField<Type>::name != nullptr,                                        \
                  "DECLARE_ZO_FIELD_LIST takes int, float, double or ZoString; objects have "                \
                  "DECLARE_ZO_FIELD_CHILD_LIST and ..._REFERENCE_LIST");                                     \
    ::ZoPrimitives::TDVector<::ZoPrimitives::ZoListField<Type>::Item> field;                                 \
    static void Add##field(::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*,         \
                           ::ZoPrimitives::TZoParameter<::ZoPrimitives::ZoListField<Type>::Item> value) {    \
        ::ZoPrimitives::ZoAddValue(::ZoPrimitives::ZoSelf<ZoClass>(object).field, value);                    \
    }                                                                                                        \
    static ::ZoPrimitives::TZoParameter<::ZoPrimitives::ZoListField<Type>::Item> ElementAt##field(           \
        ::ZoPrimitives::ZoStreamableBase* object, ::ZoPrimitives::TZoClassField*, int index) {               \
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
        return ::ZoPrimitives::ZoTarget(::ZoPrimitives::ZoSelf<ZoThis>(object).field);                       \
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
