#pragma once

#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/ZoString.h"
#include "ZoPrimitives/pointer.h"

#include <memory>
#include <type_traits>
#include <typeinfo>

namespace ZoPrimitives {

class FieldCodec;
class TBinInStream;
class TBinOutStream;
class TBinOutStreamer;
class TZoClass;
class TZoMetaData;
struct ReadPlan;
struct TBinUnresolved;
template <class T>
class TDVector;

/// Kinds of field, as stored in files; negative, to differ from class ids.
enum TZoClassFieldType : int {
    ftInt = -1,
    ftFloat = -2,
    ftDouble = -3,
    ftString = -4,
    ftBlob = -5,
    ftChildPointer = -6,     ///< an owned object
    ftChildPointerList = -7, ///< a list of owned objects
    ftPointer = -8,          ///< an object that another object owns
    ftPointerList = -9,      ///< a list of such objects
    ftBool = -10,
    ftListInt = -11,
    ftListFloat = -12,
    ftListDouble = -13,
    ftListString = -14,
    ftPointerEx = -15,     ///< an object that need not be owned in the graph: written after the main graph
    ftPointerListEx = -16, ///< a list of such objects
    ftUnsigned = -17,
    ftChildValue = -18,      ///< an object that is a member of its owner
    ftChildPointerMap = -19, ///< owned objects under owned keys
};

/// How accessors pass a value: strings and blobs by reference.
template <class T>
using TZoParameter = std::conditional_t<std::is_class_v<T>, const T&, T>;

// Accessors are plain functions. `object` is of the class that declared the field; `field` is the
// application's field, never the file's. Item indices count from 1.
template <class T>
using TZoSetter = void (*)(ZoStreamableBase* object, TZoClassField* field, TZoParameter<T> value);
template <class T>
using TZoGetter = TZoParameter<T> (*)(ZoStreamableBase* object, TZoClassField* field);
template <class T>
using TZoItemGetter = TZoParameter<T> (*)(ZoStreamableBase* object, TZoClassField* field, int index);
using TZoItemCount = unsigned long long (*)(ZoStreamableBase* object, TZoClassField* field);
/// An application's integer that is stored with a list, between its count and its items. Files do not tell
/// whether a list has one: adding or removing it makes older files unreadable.
using TZoListInteger = int (*)(ZoStreamableBase* object, TZoClassField* field);
/// Prepares a list for `count` items: empties it and may reserve room. `first` and `second` are the list's
/// integers, 0 if it has none.
using TZoListCreator = void (*)(ZoStreamableBase* object, int count, int first, int second);
using TZoPointerSetter = void (*)(ZoStreamableBase* object, TZoClassField* field, ZoStreamableBase* target);
using TZoPointerGetter = ZoStreamableBase* (*)(ZoStreamableBase* object, TZoClassField* field);
using TZoPointerItemGetter = ZoStreamableBase* (*)(ZoStreamableBase* object, TZoClassField* field, int index);
/// Applies the functor to every item, in order.
using TZoListIterator = void (*)(ZoStreamableBase* object, TZoClassField* field,
                                 ZoStreamableBaseFunctor& action);
/// Whether an object is of the C++ type that the setter expects.
using TZoTypeTest = bool (*)(const ZoStreamableBase* target);

/// The address of the member that holds a field; null if the object's accessors must be called instead.
using TZoMemberAddress = void* (*)(ZoStreamableBase* object);

/// One field of a class: its name and kind and, in an application's schema, its accessors.
///
/// A field of a file's schema has no accessors; it is linked to the application's field of the same name, if
/// any.
class ZO_API TZoClassField : public ZoObject {
public:
    ~TZoClassField() override;
    TZoClassField(const TZoClassField&) = delete;
    TZoClassField& operator=(const TZoClassField&) = delete;

    /// For a map's sub-field, "<unresolve>" while its class is unknown.
    const ZoString& GetFieldName() const {
        return half != Half::No && fieldClass == nullptr ? Unresolved() : name;
    }
    TZoClassFieldType GetFieldType() const { return kind; }
    bool IsPointerKind() const;
    /// The class that declares the field.
    TZoClass* GetOwnerClass() const { return owner; }
    /// The class that a pointer field points to; null while unknown and for value fields.
    TZoClass* GetFieldClass() const { return fieldClass; }
    /// The name of that class as declared in code. Empty for value fields and for fields of a file, which
    /// give its id.
    const ZoString& GetFieldClassName() const { return className == nullptr ? NoName() : *className; }
    /// The id of that class as read from a file; 0 if there is none.
    int GetFieldClassId() const { return fieldClassId; }
    /// In a file's schema: the application's field that receives the value; null if there is none.
    TZoClassField* GetOriginal() const { return original; }
    void SetFieldClass(TZoClass* newClass);
    void SetFieldClassName(const ZoString& newName);
    /// For a value field whose accessors only read and write a member of the value's own type (`TDVector` for
    /// lists): gives the member's address, so that the streamers need not call the accessors.
    void SetMember(TZoMemberAddress memberOf) {
        member = memberOf;
        SetPlain();
    }
    /// Declares that the accessors only read and write a member. The writer assumes that other accessors may
    /// change other objects.
    void SetPlain() { plain = true; }
    /// Whether the accessors only read and write a member; for a map, those of both halves.
    bool IsPlain() const;

    /// Writes a value into the open record. For pointer kinds, writes the records of the owned objects that
    /// the field holds, unless already written.
    virtual void SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object) = 0;
    /// Reads the field's part of the current record and passes a value to the application's setter; uids are
    /// kept until all records are read. Without an application's field the value is skipped and kept as
    /// excluded.
    virtual void LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) = 0;
    /// Applies the functor to every target of the field, nulls included; for a map, to everything that it
    /// owns. Does nothing for value fields.
    virtual void GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action);
    /// Collects the names that a file needs for a field without targets: its class and all classes that this
    /// one declares.
    void GetUninstantiatedFieldMetaData(TZoMetaData* schema, TDVector<ZoString>* names) const;
    /// A field as stored in a schema record; `TZoClass::AddField` makes a field from it.
    struct Entry {
        int classId; ///< of the field's class; 0 if it has none
        int kind;    ///< as stored, known or not
        ZoString name;
    };
    static Entry LoadMetaFromStream(TBinInStream* stream);

protected:
    TZoClassField(const ZoString& name, TZoClassFieldType kind);
    static void SetOriginal(TZoClassField* field, TZoClassField* application) {
        if (field != nullptr) field->original = application;
    }

    TZoClassField* original = nullptr;

private:
    friend class FieldOffset;
    friend class MergedSchema;
    friend class SchemaReader;
    friend class UsedClasses;
    friend class TZoClass;
    friend class TZoClassFieldPointerMap;
    friend class SchemaCheck;
    friend class TZoMetaData;

    /// Whether the field is a map's sub-field, and which of the two declares its class.
    enum class Half : unsigned char { No, OfItsOwnClass, OfTheMapsClass };
    static const ZoString& Unresolved();
    static const ZoString& NoName();
    /// The name of the class that the field waits for; `holder` is the field itself or the map around it.
    const ZoString& WantedClass(const TZoClassField& holder) const {
        const bool ofMap = half == Half::OfTheMapsClass && GetFieldClassName().length() == 0;
        return (ofMap ? holder : *this).GetFieldClassName();
    }

    // Keep fields small: a file may declare very many.
    TZoClassFieldType kind;
    ZoString name;
    std::unique_ptr<const ZoString> className; // null if empty
    int fieldClassId = 0;
    Half half = Half::No;
    bool plain = false;
    TZoMemberAddress member = nullptr;
    TZoClass* owner = nullptr;
    TZoClass* fieldClass = nullptr;
};

/// A single value: int, unsigned, bool, float, double, `ZoString` or `ZoBlob`.
template <class T>
class TZoClassFieldValue : public TZoClassField {
public:
    TZoClassFieldValue(const ZoString& name, TZoSetter<T> set, TZoGetter<T> get);
    void SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object) override;
    void LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) override;

private:
    friend class FieldCodec;

    TZoSetter<T> set;
    TZoGetter<T> get;
};

/// Accessors of a list of values; those after `nItems` may be null.
template <class T>
struct TZoListAccessors {
    TZoSetter<T> add;
    TZoItemGetter<T> elementAt;
    TZoItemCount nItems;
    TZoListCreator createList = nullptr;
    TZoListInteger first = nullptr;
    TZoListInteger second = nullptr;
};

/// A list of values: int, float, double or `ZoString`.
template <class T>
class TZoClassFieldList : public TZoClassField {
public:
    TZoClassFieldList(const ZoString& name, const TZoListAccessors<T>& access);
    void SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object) override;
    void LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) override;

private:
    friend class FieldCodec;

    TZoListAccessors<T> access;
};

extern template class ZO_API_DECLARED TZoClassFieldValue<int>;
extern template class ZO_API_DECLARED TZoClassFieldValue<unsigned>;
extern template class ZO_API_DECLARED TZoClassFieldValue<bool>;
extern template class ZO_API_DECLARED TZoClassFieldValue<float>;
extern template class ZO_API_DECLARED TZoClassFieldValue<double>;
extern template class ZO_API_DECLARED TZoClassFieldValue<ZoString>;
extern template class ZO_API_DECLARED TZoClassFieldValue<ZoBlob>;
extern template class ZO_API_DECLARED TZoClassFieldList<int>;
extern template class ZO_API_DECLARED TZoClassFieldList<float>;
extern template class ZO_API_DECLARED TZoClassFieldList<double>;
extern template class ZO_API_DECLARED TZoClassFieldList<ZoString>;

using TZoClassFieldInt = TZoClassFieldValue<int>;
using TZoClassFieldUnsigned = TZoClassFieldValue<unsigned>;
using TZoClassFieldBool = TZoClassFieldValue<bool>;
using TZoClassFieldFloat = TZoClassFieldValue<float>;
using TZoClassFieldDouble = TZoClassFieldValue<double>;
using TZoClassFieldString = TZoClassFieldValue<ZoString>;
using TZoClassFieldBlob = TZoClassFieldValue<ZoBlob>;
using TZoClassFieldListInt = TZoClassFieldList<int>;
using TZoClassFieldListFloat = TZoClassFieldList<float>;
using TZoClassFieldListDouble = TZoClassFieldList<double>;
using TZoClassFieldListString = TZoClassFieldList<ZoString>;

/// Resolves the uids of one object, in reading order.
class TZoPointerResolver;

/// Base of the fields that point to objects.
class ZO_API TZoClassFieldPointerBase : public TZoClassField {
public:
    ~TZoClassFieldPointerBase() override;
    /// Clears every reference of the field to an object for which `isRemoved` returns true.
    virtual void DeleteReferences(ZoStreamableBase* object,
                                  bool (*isRemoved)(const void*, const ZoStreamableBase*),
                                  const void* context) = 0;
    /// Whether an object may be passed to the setter: by the C++ type test bound with the accessors or,
    /// without one, by the declared class, registered or named. A field with neither accepts any object.
    bool Accepts(const ZoStreamableBase* target) const;
    void SetTypeTest(TZoTypeTest test) { typeTest = test; }
    /// Whether the field owns its targets.
    bool Owns() const;
    /// Whether the field's targets are written together with the object: those that it owns, and members.
    bool HoldsChildren() const;

protected:
    TZoClassFieldPointerBase(const ZoString& name, TZoClassFieldType kind);

private:
    friend class TZoPointerResolver;
    friend struct ReadPlan;

    TZoTypeTest typeTest = nullptr;
};

/// A pointer to one object: owned, by value, or a reference. Other kinds fail an assertion.
class ZO_API TZoClassFieldPointer : public TZoClassFieldPointerBase {
public:
    TZoClassFieldPointer(const ZoString& name, TZoClassFieldType kind, TZoPointerSetter set,
                         TZoPointerGetter get);
    ~TZoClassFieldPointer() override;

    ZoStreamableBase* Get(ZoStreamableBase* object) { return get == nullptr ? nullptr : get(object, this); }
    void Set(ZoStreamableBase* object, ZoStreamableBase* target) {
        if (set != nullptr) set(object, this, target);
    }
    /// Writes the target's uid, 0 for null. Throws `XStream` when the target has no uid.
    void SavePointer(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Reads one uid.
    void LoadPointer(TBinInStream* stream);

    void SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object) override;
    void LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) override;
    void GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) override;
    void DeleteReferences(ZoStreamableBase* object, bool (*isRemoved)(const void*, const ZoStreamableBase*),
                          const void* context) override;

private:
    TZoPointerSetter set;
    TZoPointerGetter get;
};

/// Accessors of a list of pointers; those after `iterateOver` may be null. `createList` must empty the list.
struct TZoPointerListAccessors {
    TZoPointerSetter add = nullptr;
    TZoPointerItemGetter elementAt = nullptr;
    TZoItemCount nItems = nullptr;
    TZoListIterator iterateOver = nullptr;
    TZoListCreator createList = nullptr;
    TZoListInteger first = nullptr;
    TZoListInteger second = nullptr;
};

/// A list of pointers: owned, or references. Other kinds fail an assertion.
class ZO_API TZoClassFieldPointerList : public TZoClassFieldPointerBase {
public:
    TZoClassFieldPointerList(const ZoString& name, TZoClassFieldType kind,
                             const TZoPointerListAccessors& access);
    ~TZoClassFieldPointerList() override;

    unsigned long long NItems(ZoStreamableBase* object);
    void Add(ZoStreamableBase* object, ZoStreamableBase* target) {
        if (access.add != nullptr) access.add(object, this, target);
    }
    void CreateList(ZoStreamableBase* object, int count, int first, int second) {
        if (access.createList != nullptr) access.createList(object, count, first, second);
    }
    /// Null if the list has no such accessor or no such item; `index` counts from 1.
    ZoStreamableBase* ElementAt(ZoStreamableBase* object, unsigned long long index);
    bool HasFirst() const { return access.first != nullptr; }
    bool HasSecond() const { return access.second != nullptr; }
    /// Writes the count, the list's integers, and each item's uid, 0 for null. Throws `XStream` when an item
    /// has no uid.
    void SavePointers(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Reads a list of uids and prepares the application's list; a null `application` skips the list.
    static void LoadPointers(TBinInStream* stream, ZoStreamableBase* object,
                             TZoClassFieldPointerList* application);

    void SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object) override;
    void LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) override;
    void GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) override;
    void DeleteReferences(ZoStreamableBase* object, bool (*isRemoved)(const void*, const ZoStreamableBase*),
                          const void* context) override;

private:
    friend class FieldCodec;

    TZoPointerListAccessors access;
};

/// Objects under keys: two sub-fields, one for the keys and one for the values, each a list of owned objects
/// (`ftChildPointerList`) or a single pointer of any kind. Targets that a sub-field does not own are saved as
/// for an ordinary field of its kind.
class ZO_API TZoClassFieldPointerMap : public TZoClassFieldPointerBase {
public:
    explicit TZoClassFieldPointerMap(const ZoString& name);
    ~TZoClassFieldPointerMap() override;

    /// Creates both sub-fields without accessors; they take the map's class and its name. Fails an assertion
    /// for kinds that a sub-field cannot have: values, reference lists, maps.
    void AddFields(TZoClassFieldType keyKind, TZoClassFieldType valueKind);
    /// Takes over both sub-fields; refuses the same kinds. The values have the map's class unless they
    /// declare their own; the keys must declare theirs (`SetFieldClass`, or `SetFieldClassName` until it is
    /// registered).
    void AddFields(TZoClassField* key, TZoClassField* value);
    TZoClassField* GetKeyField() const { return key.get(); }
    TZoClassField* GetValueField() const { return value.get(); }

    /// Writes the key sub-field, then the value sub-field, into the open record.
    void SavePair(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Reads both; as two lists if the application has no such map.
    void LoadPair(TBinInStream* stream, ZoStreamableBase* object);

    void SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object) override;
    void LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) override;
    void GetFieldMetaData(ZoStreamableBase* object, ZoStreamableBaseFunctor& action) override;
    void DeleteReferences(ZoStreamableBase* object, bool (*isRemoved)(const void*, const ZoStreamableBase*),
                          const void* context) override;

private:
    friend class FieldCodec;

    TZoClassFieldPointerBase* Adopt(TZoClassField* half, Half classOf);
    void Adopt(TZoClassField* newKey, Half keyClass, TZoClassField* newValue);

    pointer<TZoClassFieldPointerBase> key;
    pointer<TZoClassFieldPointerBase> value;
};

} // namespace ZoPrimitives
