#pragma once

#include "ZoPrimitives/IList.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/ZoClassField.h"
#include "ZoPrimitives/ZoStreamableRegister.h"
#include "ZoPrimitives/dvector.h"

#include <atomic>
#include <memory>
#include <typeinfo>
#include <utility>
#include <vector>

namespace ZoPrimitives {

class TBinInStream;
class TBinOutStream;
class TBinOutStreamer;
class TZoMetaData;
struct ReadPlan;

/// The virtual operations of `ZoStreamableBase` that would cost a call for each object; the streamers skip
/// those that a class does not override.
enum ZoHooks : unsigned {
    hookOnRead = 1,
    hookOnReadPointer = 2,
    hookGetIsValid = 4,
    hookCheckForExcludedFields = 8,
    hookWillWrite = 16,
    hookCreateInstance = 32, ///< the class's factory does more than create an empty object
};

/// A new number, from 1 upward, for a C++ class. Objects look their registered class up by it.
ZO_API unsigned ZoNewClassSlot();

/// Data that an application keeps for a class and looks up by the class's name. Applications derive from it.
class ZO_API TZoCadastre : public ZoObject {
public:
    explicit TZoCadastre(const ZoString& className);
    ~TZoCadastre() override;
    const ZoString& GetName() const { return className; }

private:
    ZoString className;
};

/// Creates an empty object of the application's class; null for an abstract class.
using TZoCreateFunction = ZoStreamableBase* (*)(TZoMetaData* fileSchema, TZoMetaData* applicationSchema,
                                                TZoClass* objectClass);

/// The registration that an object was made for: factories set it, `TZoMetaData::FindClassOf` reads it.
struct ZoMadeFor {
    static constexpr unsigned MOST = (1U << 23) - 1; ///< the largest registration number

    static void Set(ZoStreamableBase& object, const TZoClass* registered);
    static unsigned Get(const ZoStreamableBase& object) { return static_cast<unsigned>(object.madeFor); }
};

/// One class of a schema: id, name, parents and fields.
class ZO_API TZoClass : public ZoObject {
public:
    using Parents = TIVector<TZoClass, pointer<TZoClass>>;
    using Fields = TIVector<TZoClassField, pointer<TZoClassField>>;

    /// `parents` is copied and may be null.
    TZoClass(TZoMetaData* schema, Parents* parents, const ZoString& name, TZoCreateFunction create,
             bool abstract, TZoCadastre* cadastre);
    ~TZoClass() override;
    TZoClass(const TZoClass&) = delete;
    TZoClass& operator=(const TZoClass&) = delete;

    /// Positive once the class is in a schema; 0 before.
    int GetClassId() const { return classId; }
    const ZoString& GetName() const { return name; }
    bool GetAbstract() const { return abstract; }
    TZoMetaData* GetMetaData() const { return schema; }
    TZoCadastre* GetCadastre() const { return cadastre; }
    const Parents* GetParentClasses() const { return &parents; }
    /// The first parent; null if there is none.
    TZoClass* GetParentClass() const { return parents.NItems() == 0 ? nullptr : parents[1].get(); }
    /// In a file's schema: the application's class of the same name; null if it has none.
    TZoClass* GetOriginal() const { return original; }
    /// Links this class of a file to the application's class, and its fields to the fields of the same name
    /// and encoding that the application's class has or inherits.
    void SetOriginal(TZoClass* applicationClass);
    /// The C++ type of the class's objects; null if not given.
    const std::type_info* GetType() const { return type; }
    /// Binds the class to its C++ type and to that type's number in the process (`ZoNewClassSlot`).
    void SetType(const std::type_info& newType, unsigned newSlot);
    /// Tells which operations of `ZoHooks` the C++ type overrides. Without this call all count as overridden.
    void SetHooks(unsigned overridden) { hooks = overridden; }
    /// Gives the test for objects of the C++ type, by which `TZoMetaData::Check` finds bases left out.
    void SetTypeTest(TZoTypeTest test) {
        typeTest = test;
        ++changes;
    }
    /// Whether the C++ type overrides the operation.
    bool Answers(ZoHooks hook) const { return (hooks & hook) != 0; }
    /// Notes that a parent named at registration is missing from the schema; `TZoMetaData::Check` reports it.
    void NoteMissingParent() {
        parentMissing = true;
        ++changes;
    }

    // Declare fields in streaming order. The class owns each field that it returns.
    TZoClassField* AddFieldInt(const ZoString& name, TZoSetter<int> set, TZoGetter<int> get);
    TZoClassField* AddFieldUnsigned(const ZoString& name, TZoSetter<unsigned> set, TZoGetter<unsigned> get);
    TZoClassField* AddFieldBool(const ZoString& name, TZoSetter<bool> set, TZoGetter<bool> get);
    TZoClassField* AddFieldFloat(const ZoString& name, TZoSetter<float> set, TZoGetter<float> get);
    TZoClassField* AddFieldDouble(const ZoString& name, TZoSetter<double> set, TZoGetter<double> get);
    TZoClassField* AddFieldString(const ZoString& name, TZoSetter<ZoString> set, TZoGetter<ZoString> get);
    TZoClassField* AddFieldBlob(const ZoString& name, TZoSetter<ZoBlob> set, TZoGetter<ZoBlob> get);
    TZoClassField* AddFieldListInt(const ZoString& name, const TZoListAccessors<int>& access);
    TZoClassField* AddFieldListFloat(const ZoString& name, const TZoListAccessors<float>& access);
    TZoClassField* AddFieldListDouble(const ZoString& name, const TZoListAccessors<double>& access);
    TZoClassField* AddFieldListString(const ZoString& name, const TZoListAccessors<ZoString>& access);
    TZoClassFieldPointer* AddFieldChildPointer(const ZoString& name, TZoClass* fieldClass,
                                               TZoPointerSetter set, TZoPointerGetter get);
    /// The setter copies the object that it receives; the getter returns the member's address. A reader fills
    /// the member in place, without the setter, if the accessors are plain and have a type test, and the
    /// record is of the member's own class, whose factory only creates empty objects. Parts of the member
    /// that the file lacks then stay as the owner's constructor left them.
    TZoClassFieldPointer* AddFieldChildValue(const ZoString& name, TZoClass* fieldClass, TZoPointerSetter set,
                                             TZoPointerGetter get);
    TZoClassFieldPointer* AddFieldPointer(const ZoString& name, TZoClass* fieldClass, TZoPointerSetter set,
                                          TZoPointerGetter get);
    TZoClassFieldPointer* AddFieldPointerEx(const ZoString& name, TZoClass* fieldClass, TZoPointerSetter set,
                                            TZoPointerGetter get);
    TZoClassFieldPointerList* AddFieldChildPointerList(const ZoString& name, TZoClass* fieldClass,
                                                       const TZoPointerListAccessors& access);
    TZoClassFieldPointerList* AddFieldPointerList(const ZoString& name, TZoClass* fieldClass,
                                                  const TZoPointerListAccessors& access);
    TZoClassFieldPointerList* AddFieldPointerListEx(const ZoString& name, TZoClass* fieldClass,
                                                    const TZoPointerListAccessors& access);
    /// Takes over both sub-fields, as `TZoClassFieldPointerMap::AddFields` does; if they are null, call
    /// `AddFields` afterwards.
    TZoClassFieldPointerMap* AddFieldChildPointerMap(const ZoString& name, TZoClass* fieldClass,
                                                     TZoClassField* key, TZoClassField* value);
    /// Adds a field without accessors, as a file declares it; null for an unknown kind.
    TZoClassField* AddField(int fieldClassId, TZoClassFieldType kind, const ZoString& name);

    /// A field of this class or of an ancestor, the class's own first. Null if there is none.
    TZoClassField* FindField(const ZoString& name);

    /// A name that the class had in an earlier version of the application: what a file holds under it is read
    /// as this class's, unless the application has a class of that name. The present name is written.
    void AddFormerName(const ZoString& name);
    /// The same for an own field. A file that has the present name too is read under that one alone.
    void AddFormerName(TZoClassField* field, const ZoString& name);
    bool HadName(const ZoString& name) const;
    /// The field of this class or of an ancestor that had the name; null if there is none.
    TZoClassField* FindFormerField(const ZoString& name) const;
    /// The class's own fields in streaming order; `index` counts from 1.
    TZoClassField* GetField(int index);
    int GetFieldCount() const;
    /// Number of pointer fields of all kinds, inherited ones included; a map counts twice.
    unsigned long long GetFieldPointerCount() const;
    /// Own and inherited fields, the parents' first.
    void FillAllClassFields(TIList<TZoClassField>* list);
    /// Whether the argument is this class or one of its ancestors.
    bool IsInherited(const TZoClass* ancestor) const;
    bool IsInherited(const ZoString& ancestorName) const;

    /// A new, empty object of the application's class, owned by the caller; null if none can be created.
    ZoStreamableBase* CreateInstance(TZoMetaData* fileSchema, TZoMetaData* applicationSchema);

    void SaveMetaToStream(TBinOutStream* stream);
    /// Reads what `SaveMetaToStream` wrote. Parents remain ids until the whole schema is read.
    void LoadMetaFromStream(TBinInStream* stream);

    // These treat an object as one of this class, even if its own class derives from this one.
    /// Collects the names of the classes that the graph under `root` uses, and of their ancestors.
    void GetClassMetaData(TZoMetaData* schema, ZoStreamableBase* root, TDVector<ZoString>* names);
    /// Collects the names of this class, of its ancestors, and of all classes that their fields declare. Does
    /// nothing for a generic base.
    void GetClassStaticMetaData(TZoMetaData* schema, TDVector<ZoString>* names);
    /// Gives a uid, depth first, to `object` and every object of the graph under it that has none, and
    /// collects the external instances that the graph refers to.
    void AllocateHandles(TBinOutStream* stream, ZoStreamableBase* object,
                         TDList<ZoStreamableBase*>* externals);
    /// Writes the record of `object` under this class's id and the records of the objects it owns, each once
    /// until the stream's handles are reset.
    void SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Writes the object's fields into the open record, the ancestors' first.
    void SaveToStreamPre(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Writes the records of the objects that the object owns.
    void SaveToStreamPos(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Applies the functor to the objects that the object owns through the fields of this class and its
    /// ancestors, in record order, nulls included.
    void ChildsReferences(ZoStreamableBase* object, ZoStreamableBaseFunctor& action);

    /// Reads the current record into `object`; this class is the file's.
    void LoadFromStream(TBinInStream* stream, ZoStreamableBase* object);
    void LoadFromStreamPre(TBinInStream* stream, ZoStreamableBase* object);
    /// Passes the objects behind the uids of one object to its setters.
    void LoadResolvePointers(TZoPointerResolver& resolver, ZoStreamableBase* object);
    /// Clears every reference of the object's fields to an object for which `isRemoved` returns true.
    void DeleteReferences(ZoStreamableBase* object, bool (*isRemoved)(const void*, const ZoStreamableBase*),
                          const void* context);

private:
    friend class TZoMetaData;
    friend struct ZoMadeFor;
    friend class RecordOrder;
    friend class ObjectReader;
    friend class ObjectRemoval;
    friend class MergedSchema;
    friend class SchemaCheck;
    friend class SchemaReader;
    friend class TZoClassField;
    friend class UsedClasses;
    friend struct ReadPlan;
    friend class TBinInStreamer;
    friend class TBinOutStreamer;

    using FieldList = std::vector<pointer<TZoClassField>>;

    template <class Field>
    Field* Adopt(Field* field, TZoClass* fieldClass);
    void PutInOrder();
    TZoClassField* FieldFor(const TZoClassField& field, TZoClass& applicationClass);
    FieldList& ListOf(const TZoClassField& field);
    /// Reserves room for `count` fields in the list for this field's kind.
    void ReserveLike(const TZoClassField& field, std::size_t count);
    using Listed = std::vector<const TZoClass*>; // the classes of the schema being written, sorted

    void SaveBlock(TBinOutStream* stream, const FieldList& list, const char* countCheck,
                   const Listed* listed);
    void SaveMetaToStream(TBinOutStream* stream, const Listed* listed);
    template <class Action>
    void ForEachMember(Action action) const;
    bool HasValueChildren() const;
    /// Whether the class belongs to another schema.
    bool BelongsElsewhere(const TZoMetaData* here) const { return schema != here && schema != nullptr; }

    /// The least number of bytes, and the number of fields, in a record of the class, ancestors included.
    struct Extent {
        bool known = false;
        unsigned fields = 0;
        unsigned pointers = 0;
        unsigned long long bytes = 0;
    };
    const Extent& RecordExtent() const;
    void FillValueChildren(ZoStreamableBase* object, TDVector<ZoStreamableBase*>* members);
    bool MembersMayBeInvalid(ZoStreamableBase* object) const;

    template <class Action>
    void ForEachPointerField(Action action) const {
        const auto maps = static_cast<std::size_t>(fieldsChildMaps.end() - fieldsChildMaps.begin());
        const auto values = static_cast<std::size_t>(fields.end() - fields.begin());
        for (std::size_t i = 0; i < inOrder.size(); ++i) {
            if (i < maps || i >= maps + values) action(*inOrder[i]);
        }
    }

    int classId = 0;
    ZoString name;
    bool abstract = false;
    bool parentMissing = false;
    unsigned changes = 0;               // of what `TZoMetaData::Check` looks at
    std::unique_ptr<ReadPlan> readPlan; // of a class read from a file
    mutable Extent extent;
    unsigned hooks = ~0u;
    bool loading = false;        // fields are put in order at the end
    bool hasUnknownKind = false; // of a class read from a file: no field was made of some entry
    Parents parents;
    FieldList fields;
    FieldList fieldsChilds;
    FieldList fieldsReferences;
    FieldList fieldsChildLists;
    FieldList fieldsReferencesLists;
    FieldList fieldsChildMaps;
    std::vector<TZoClassField*> inOrder; // all fields, in streaming order
    std::vector<ZoString> formerNames;
    std::vector<std::pair<ZoString, TZoClassField*>> formerFieldNames;
    TZoCreateFunction create = nullptr;
    TZoCadastre* cadastre = nullptr;
    TZoClass* original = nullptr;
    TZoMetaData* schema = nullptr;
    const std::type_info* type = nullptr;
    TZoTypeTest typeTest = nullptr;
    unsigned slot = 0;                // the C++ class's number in the process; 0 for none
    unsigned registration = 0;        // this registration's number in the process; 0 for none
    std::vector<int> storedParentIds; // of a class read from a file
};

inline void ZoMadeFor::Set(ZoStreamableBase& object, const TZoClass* registered) {
    if (registered != nullptr) object.madeFor = registered->registration & MOST;
}

/// The run-time description of all classes of an application, or of those that a file uses.
///
/// Several threads may read a schema at once as long as none registers or excludes classes.
class ZO_API TZoMetaData : public ZoObject {
public:
    TZoMetaData();
    ~TZoMetaData() override;
    TZoMetaData(const TZoMetaData&) = delete;
    TZoMetaData& operator=(const TZoMetaData&) = delete;

    /// Takes the class over and returns it. A class without an id gets the next one, from 1 upward; a schema
    /// never reuses ids. If a class of that name exists, that class stays and is returned. A class of another
    /// schema is borrowed: it keeps its id, which fails an assertion if a class here has it, and changes
    /// together with its own schema.
    TZoClass* AddClass(TZoClass* newClass);
    TZoClass* FindClass(const ZoString& name) const;
    TZoClass* FindClass(int id) const;
    /// The class that had the name (`TZoClass::AddFormerName`); null if there is none.
    TZoClass* FindFormerClass(const ZoString& name) const;
    /// The class bound to the number of a C++ class. If none is, the class of that name, unless that is bound
    /// to another C++ type.
    TZoClass* FindClass(unsigned slot, const char* name, const std::type_info& type) const {
        TZoClass* bound = slot < slots.size() ? slots[slot] : nullptr;
        return bound != nullptr ? bound : FindUnbound(name, type);
    }
    bool DoesClassExist(const ZoString& name) const { return FindClass(name) != nullptr; }
    /// `index` counts from 1, in registration order.
    TZoClass* GetClass(int index) const;
    int GetClassCount() const;
    /// The first class that derives from the named one; null if there is none.
    TZoClass* FindInherited(const ZoString& ancestorName) const;
    /// Whether the first class is the second or derives from it.
    bool IsClassInherited(const ZoString& name, const ZoString& ancestorName) const;
    /// Removes a class. Fields that point to it wait for a class of that name again. Derived classes continue
    /// without that parent, as if registered before it, until they are registered again. Borrowed classes are
    /// unchanged: `Check` reports the missing parent, and writing the schema without it fails an assertion.
    void ExcludeClass(const ZoString& name);
    void Clear();

    void AddCadastre(TZoCadastre* cadastre);
    TZoCadastre* FindCadastre(const ZoString& className) const;

    /// Takes over a class's register function for `ClassesRegister`. If one is kept for that class name,
    /// drops the new one.
    void Register(ZoStreamableRegister* newRegister);
    /// Registers the kept classes that are ready and not yet registered, in the order of `Register`,
    /// repeating until none becomes ready; each once a call. `Check` reports those that remain. The functions
    /// are kept: a class that was excluded since is registered again.
    void ClassesRegister();

    /// Remembers a pointer field whose class, named with `SetFieldClassName`, is not registered yet, or a map
    /// with such a sub-field. Ignores other fields and fields of another schema's classes.
    void AddToResolveCrossRefs(TZoClassField* field);
    void ResolveCrossRefs();
    /// Whether all parents, field classes and classes kept for `ClassesRegister` are registered. `report`
    /// (may be null) receives a line for each that is not. Fields declared with a generic base
    /// ("ZoStreamableBase", "ZoObjectStreamable", "Streamable") count as resolved.
    bool Check(ZoString* report) const;
    /// The same; `warnings` (may be null) receives a line for each registration that loses data although all
    /// is registered: a C++ base that is registered but not named as a parent, a class without fields that a
    /// field points to, a second C++ class under a name in use. Makes an object of each class to find out.
    bool Check(ZoString* report, ZoString* warnings) const;
    /// Throws `XStream` with all lines of `Check`, if there are any.
    void CheckOrThrow() const;
    /// The same, but does nothing if neither the schema nor one of its classes has changed since it last
    /// found them sound.
    void CheckChangesOrThrow() const;

    /// Writes the schema record: uid 0, class 0.
    void SaveToStream(TBinOutStream* stream);
    /// Clears this schema, reads the current record of `stream` as the schema record, and links its classes
    /// to the application's of the same name. False when the record contradicts itself: an unknown parent or
    /// field class, an id that is repeated or not positive, a class among its own ancestors, more than 1,000
    /// class levels for one object; also when its last values lie beyond its end. Counts and texts that
    /// exceed the record throw `XReadStream`. After a failure the schema must be cleared before use.
    bool LoadFromStream(TBinInStream* stream, TZoMetaData* application);

    /// Whether an object whose C++ type is an unregistered subclass is written under its registered class.
    /// Process-wide.
    static bool WritingGenericFile();
    static void WritingGenericFile(bool writing);
    /// Whether the name is "ZoStreamableBase", "ZoObjectStreamable" or "Streamable".
    static bool IsGenericBase(const ZoString& className);
    /// The class registered last under a C++ class's number, among those still in a schema; null if there is
    /// none.
    static TZoClass* FindLatestClass(unsigned slot);
    /// The answer of `GetClass`: the class that the object was made for, while it is in its schema, otherwise
    /// the latest.
    static TZoClass* FindClassOf(const ZoStreamableBase& object, unsigned slot);

    /// Appends every object that the objects of the list own, directly or indirectly, each once.
    void FillObjectsCascade(TDVector<ZoStreamableBase*>* objects);

private:
    friend class SchemaCheck;
    friend class SchemaReader;
    friend class TBinOutStreamer;
    friend class TZoClass;
    friend class MergedSchema;
    friend class ZoRegistration;
    class TClassNameAndIdMap;

    static void SaveClasses(TBinOutStream* stream, const std::vector<TZoClass*>& written);

    TZoClass* FindUnbound(const char* name, const std::type_info& type) const;
    void IndexClasses();
    /// Grows with every change of the schema or one of its classes.
    unsigned long long ChangeCount() const;
    void Unbind(TZoClass* leaving);
    void ForgetUnresolved(const TZoClass* leaving);
    int NewId() const;
    /// Remembers a name that two C++ classes were registered under.
    void NoteRival(const TZoClass& present, const TZoClass& rival);
    /// Moves the next id past one in use.
    void NoteId(int id);

    TIVector<TZoClass, pointer<TZoClass>> classes;
    TIVector<TZoCadastre, pointer<TZoCadastre>> cadastres;
    TDVector<TZoClassField*> unresolved;
    std::unique_ptr<TClassNameAndIdMap> index;
    long long nextId = 1;         // exceeds `int` after the greatest id
    std::vector<TZoClass*> slots; // indexed by the C++ class's number in the process
    TIVector<ZoStreamableRegister, pointer<ZoStreamableRegister>> registers;
    TDVector<ZoString> rivals;      // names of two C++ classes
    bool registersClasses = false;  // `ClassesRegister` is under way
    unsigned long long changes = 1; // of the schema, and of the classes that have left it
    mutable std::atomic<unsigned long long> checkedAt{0}; // `ChangeCount` when the check last succeeded
};

} // namespace ZoPrimitives
