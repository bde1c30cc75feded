#pragma once

#include "ZoPrimitives/IList.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/ZoClassField.h"
#include "ZoPrimitives/ZoStreamableRegister.h"
#include "ZoPrimitives/dvector.h"

#include <memory>
#include <typeinfo>
#include <vector>

namespace ZoPrimitives {

class TBinInStream;
class TBinOutStream;
class TBinOutStreamer;
class TZoMetaData;
struct ReadPlan;

/// The virtual operations of `ZoStreamableBase` that cost a call for each object; the streamers leave out
/// those that a class does not override.
enum ZoHooks : unsigned {
    hookOnRead = 1,
    hookOnReadPointer = 2,
    hookGetIsValid = 4,
    hookCheckForExcludedFields = 8,
    hookWillWrite = 16,
    hookCreateInstance = 32, ///< the class's factory does more than make an empty object
};

/// A new number, from 1 upward, for a C++ class that objects look their registered class up by.
ZO_API unsigned ZoNewClassSlot();

/// What an application keeps for a class, looked up by the class's name. Applications derive from it.
class ZO_API TZoCadastre : public ZoObject {
public:
    explicit TZoCadastre(const ZoString& className);
    ~TZoCadastre() override;
    const ZoString& GetName() const { return className; }

private:
    ZoString className;
};

/// Makes an empty object of the application's class; null for an abstract class.
using TZoCreateFunction = ZoStreamableBase* (*)(TZoMetaData* fileSchema, TZoMetaData* applicationSchema,
                                                TZoClass* objectClass);

/// The registration that an object was made for. A factory sets it; `TZoMetaData::FindClassOf` reads it.
struct ZoMadeFor {
    static constexpr unsigned MOST = (1U << 24) - 1; ///< the greatest number

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
    /// The first parent; null for none.
    TZoClass* GetParentClass() const { return parents.NItems() == 0 ? nullptr : parents[1].get(); }
    /// In a file's schema: the application's class of the same name; null when it has none.
    TZoClass* GetOriginal() const { return original; }
    /// Links this class of a file to the application's, and its fields to the fields that the application's
    /// class has or inherits under the same name in the same encoding.
    void SetOriginal(TZoClass* applicationClass);
    /// The C++ type of the class's objects; null when it was not given.
    const std::type_info* GetType() const { return type; }
    /// Binds the class to its C++ type and to that type's number in the process (`ZoNewClassSlot`).
    void SetType(const std::type_info& newType, unsigned newSlot);
    /// Tells which of the streamers' calls the C++ type answers in its own way (`ZoHooks`); all, when not
    /// told.
    void SetHooks(unsigned overridden) { hooks = overridden; }
    /// Whether the C++ type answers one of those calls in its own way.
    bool Answers(ZoHooks hook) const { return (hooks & hook) != 0; }
    /// Notes that a parent named at registration was not in the schema; `TZoMetaData::Check` reports it.
    void NoteMissingParent() { parentMissing = true; }

    // Fields are declared in the order in which they are streamed. Each belongs to the class; the result
    // stays its.
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
    /// The setter copies the object that it is given; the getter gives the address of the member. A reader
    /// fills the member where it stands, and calls no setter, when the accessors are plain and have a type
    /// test, and the record is one of the member's own class, whose factory only makes empty objects: what
    /// the file does not hold of the member stays as its owner's constructor left it.
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
    /// Both sub-fields are taken over, as by `TZoClassFieldPointerMap::AddFields`; without them (null),
    /// `AddFields` must follow.
    TZoClassFieldPointerMap* AddFieldChildPointerMap(const ZoString& name, TZoClass* fieldClass,
                                                     TZoClassField* key, TZoClassField* value);
    /// A field without accessors, as a file declares it; null for a kind that is none of the 19.
    TZoClassField* AddField(int fieldClassId, TZoClassFieldType kind, const ZoString& name);

    /// A field of this class or of an ancestor; the class's own come first. Null when there is none.
    TZoClassField* FindField(const ZoString& name);
    /// The class's own fields, in the order in which they are streamed; `index` counts from 1.
    TZoClassField* GetField(int index);
    int GetFieldCount() const;
    /// Number of pointer fields of all kinds, those of the ancestors included; a map counts twice.
    unsigned long long GetFieldPointerCount() const;
    /// Own and inherited fields, those of the parents first.
    void FillAllClassFields(TIList<TZoClassField>* list);
    /// Whether the argument is this class or one of its ancestors.
    bool IsInherited(const TZoClass* ancestor) const;
    bool IsInherited(const ZoString& ancestorName) const;

    /// A new, empty object of the application's class, owned by the caller; null when there is none to make.
    ZoStreamableBase* CreateInstance(TZoMetaData* fileSchema, TZoMetaData* applicationSchema);

    void SaveMetaToStream(TBinOutStream* stream);
    /// Reads what `SaveMetaToStream` wrote. Parents stay ids until the whole schema is read.
    void LoadMetaFromStream(TBinInStream* stream);

    // Objects are taken as ones of this class, which their own class may derive from.
    /// Collects the names of the classes that the graph under `root` uses, with their ancestors.
    void GetClassMetaData(TZoMetaData* schema, ZoStreamableBase* root, TDVector<ZoString>* names);
    /// Collects the names of this class, of its ancestors, and of all classes that their fields declare;
    /// nothing for a generic base.
    void GetClassStaticMetaData(TZoMetaData* schema, TDVector<ZoString>* names);
    /// Gives a uid to `object`, and to every object of the graph under it, that has none, depth first, and
    /// collects the external instances that it refers to.
    void AllocateHandles(TBinOutStream* stream, ZoStreamableBase* object,
                         TDList<ZoStreamableBase*>* externals);
    /// Writes the record of `object`, under this class's id, and the records of what it owns, each once until
    /// the stream's handles are reset.
    void SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Writes the object's fields into the open record: ancestors' first.
    void SaveToStreamPre(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Writes the records of what the object owns.
    void SaveToStreamPos(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object);
    /// Applies the functor to what the object owns through the fields of this class and of its ancestors, in
    /// the order of the records: nulls included.
    void ChildsReferences(ZoStreamableBase* object, ZoStreamableBaseFunctor& action);

    /// Reads the current record into `object`; this is the file's class.
    void LoadFromStream(TBinInStream* stream, ZoStreamableBase* object);
    void LoadFromStreamPre(TBinInStream* stream, ZoStreamableBase* object);
    /// Hands the objects that the uids of one object name to its setters.
    void LoadResolvePointers(TZoPointerResolver& resolver, ZoStreamableBase* object);
    /// Takes every reference to an object that `isRemoved` names out of the object's fields.
    void DeleteReferences(ZoStreamableBase* object, bool (*isRemoved)(const void*, const ZoStreamableBase*),
                          const void* context);

private:
    friend class TZoMetaData;
    friend struct ZoMadeFor;
    friend class RecordOrder;
    friend class ObjectReader;
    friend class ObjectRemoval;
    friend class SchemaReader;
    friend class SchemaWalk;
    friend struct ReadPlan;
    friend class TBinInStreamer;
    friend class TBinOutStreamer;

    using FieldList = std::vector<pointer<TZoClassField>>;

    template <class Field>
    Field* Adopt(Field* field, TZoClass* fieldClass);
    void PutInOrder();
    FieldList& ListOf(const TZoClassField& field);
    /// Makes room for so many fields in all of the kind of this one.
    void ReserveLike(const TZoClassField& field, std::size_t count);
    using Listed = std::vector<const TZoClass*>; // the classes of the schema that is written, sorted

    void SaveBlock(TBinOutStream* stream, const FieldList& list, const char* countCheck,
                   const Listed* listed);
    void SaveMetaToStream(TBinOutStream* stream, const Listed* listed);
    template <class Action>
    void ForEachMember(Action action) const;
    bool HasValueChildren() const;
    /// Whether the class is another schema's.
    bool BelongsElsewhere(const TZoMetaData* here) const { return schema != here && schema != nullptr; }

    /// What a record of the class holds, ancestors' levels included: at least so many bytes, so many fields.
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
    std::unique_ptr<ReadPlan> readPlan; // of a class read from a file
    mutable Extent extent;
    unsigned hooks = ~0u;
    bool loading = false; // fields are put in order at the end
    Parents parents;
    FieldList fields;
    FieldList fieldsChilds;
    FieldList fieldsReferences;
    FieldList fieldsChildLists;
    FieldList fieldsReferencesLists;
    FieldList fieldsChildMaps;
    std::vector<TZoClassField*> inOrder; // all of them, in the order in which they are streamed
    TZoCreateFunction create = nullptr;
    TZoCadastre* cadastre = nullptr;
    TZoClass* original = nullptr;
    TZoMetaData* schema = nullptr;
    const std::type_info* type = nullptr;
    unsigned slot = 0;                // of the application's class in the process; 0 for none
    unsigned registration = 0;        // of this very class in the process; 0 for none
    std::vector<int> storedParentIds; // of a class read from a file
};

inline void ZoMadeFor::Set(ZoStreamableBase& object, const TZoClass* registered) {
    if (registered != nullptr) object.madeFor = registered->registration & MOST;
}

/// The run-time description of all classes of an application, or of those that a file uses.
///
/// Reading a schema from several threads at once is safe as long as none registers or excludes classes.
class ZO_API TZoMetaData : public ZoObject {
public:
    TZoMetaData();
    ~TZoMetaData() override;
    TZoMetaData(const TZoMetaData&) = delete;
    TZoMetaData& operator=(const TZoMetaData&) = delete;

    /// Takes the class over and returns it. A class without id gets the next one, from 1 upward; ids are
    /// never used twice in one schema. When a class of that name is there already, that one stays and is
    /// returned. A class of another schema is borrowed: it keeps its id, which fails an assertion when a
    /// class here has it, and it changes as its own schema changes it.
    TZoClass* AddClass(TZoClass* newClass);
    TZoClass* FindClass(const ZoString& name) const;
    TZoClass* FindClass(int id) const;
    /// The class bound to the process-wide number of a C++ class; when none is, the class of that name,
    /// unless it is bound to another C++ type.
    TZoClass* FindClass(unsigned slot, const char* name, const std::type_info& type) const {
        TZoClass* bound = slot < slots.size() ? slots[slot] : nullptr;
        return bound != nullptr ? bound : FindUnbound(name, type);
    }
    bool DoesClassExist(const ZoString& name) const { return FindClass(name) != nullptr; }
    /// `index` counts from 1, in the order of registration.
    TZoClass* GetClass(int index) const;
    int GetClassCount() const;
    /// The first class that derives from the named one; null for none.
    TZoClass* FindInherited(const ZoString& ancestorName) const;
    /// Whether the first class is the second or derives from it.
    bool IsClassInherited(const ZoString& name, const ZoString& ancestorName) const;
    /// Removes a class. Fields that point to it wait for a class of its name again. Classes that derive from
    /// it go on without that parent, as if registered before it, until they are registered anew. Classes that
    /// this schema borrows stay as they are: `Check` tells what they miss here, and writing the schema
    /// without a parent fails an assertion.
    void ExcludeClass(const ZoString& name);
    void Clear();

    void AddCadastre(TZoCadastre* cadastre);
    TZoCadastre* FindCadastre(const ZoString& className) const;

    /// Keeps how a class registers and takes it over, unless one for a class of that name is kept already:
    /// then the new one is dropped.
    void Register(ZoStreamableRegister* newRegister);
    /// Registers the kept classes that are ready and not registered, in the order in which they were kept,
    /// again and again until none becomes ready; each once in a call. Those that stay back are reported by
    /// `Check`. What is kept stays so: a class excluded since registers anew.
    void ClassesRegister();

    /// Remembers a pointer field whose class, by the name set with `SetFieldClassName`, is not registered
    /// yet, or a map of whose sub-fields that holds. Other fields are ignored, those of classes of another
    /// schema too.
    void AddToResolveCrossRefs(TZoClassField* field);
    void ResolveCrossRefs();
    /// Whether all parents, field classes and classes kept for `ClassesRegister` are registered. `report`
    /// (may be null) gets one line for each that is not. Fields declared with a generic base
    /// ("ZoStreamableBase", "ZoObjectStreamable", "Streamable") count as resolved.
    bool Check(ZoString* report) const;

    /// Writes the schema record: uid 0, class 0.
    void SaveToStream(TBinOutStream* stream);
    /// Clears this schema, reads the schema record, which is current in `stream`, and links its classes to
    /// the application's of the same name. False when the record contradicts itself: an unknown parent or
    /// field class, an id that is not positive or stands twice, a class among its own ancestors, more than
    /// 1,000 class levels for one object; or when its last values lie beyond its end. Counts and texts that
    /// it cannot hold throw `XReadStream`. What was read until then stays in the schema, of no use but to be
    /// cleared.
    bool LoadFromStream(TBinInStream* stream, TZoMetaData* application);

    /// Whether an object is written under its registered class even though its C++ type is a subclass.
    /// Process-wide.
    static bool WritingGenericFile();
    static void WritingGenericFile(bool writing);
    /// Whether the name is "ZoStreamableBase", "ZoObjectStreamable" or "Streamable".
    static bool IsGenericBase(const ZoString& className);
    /// The class that was registered last under a C++ class's number, of those that still stand in a schema;
    /// null for none.
    static TZoClass* FindLatestClass(unsigned slot);
    /// What `GetClass` answers: the class that the object was made for, while that stands in its schema, or
    /// else the latest.
    static TZoClass* FindClassOf(const ZoStreamableBase& object, unsigned slot);

    /// Appends what hangs from the objects of the list: everything that they own, to any depth, each once.
    void FillObjectsCascade(TDVector<ZoStreamableBase*>* objects);

private:
    friend class SchemaReader;
    friend class TBinOutStreamer;
    friend class TZoClass;
    class TClassNameAndIdMap;

    static void SaveClasses(TBinOutStream* stream, const std::vector<TZoClass*>& written);

    TZoClass* FindUnbound(const char* name, const std::type_info& type) const;
    void IndexClasses();
    void Unbind(TZoClass* leaving);
    void ForgetUnresolved(const TZoClass* leaving);
    int NewId() const;
    /// Moves the next id behind one that is in use.
    void NoteId(int id);

    TIVector<TZoClass, pointer<TZoClass>> classes;
    TIVector<TZoCadastre, pointer<TZoCadastre>> cadastres;
    TDVector<TZoClassField*> unresolved;
    std::unique_ptr<TClassNameAndIdMap> index;
    long long nextId = 1;         // beyond `int` behind the greatest
    std::vector<TZoClass*> slots; // by process-wide number of the C++ class
    TIVector<ZoStreamableRegister, pointer<ZoStreamableRegister>> registers;
    bool registersClasses = false; // `ClassesRegister` is under way
};

} // namespace ZoPrimitives
