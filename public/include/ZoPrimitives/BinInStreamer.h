#pragma once

#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoProgress.h"
#include "ZoPrimitives/ZoReadReport.h"

#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace ZoPrimitives {

class KeptReader;
class MadeObjects;
class ObjectReader;
class TBinInStream;

/// Reads what `TBinOutStreamer` wrote: makes one object for each record, fills its fields through the file's
/// schema and resolves its pointers.
///
/// An object of a class that the application does not know is replaced by an object of the first known
/// ancestor, or dropped; pointers to a dropped object become null. The objects belong to the caller: the
/// first one is the root, which usually owns the rest, and `TBinInStream::Objects` lists them all. Nothing
/// owns the children of a dropped object any more: `TBinInStream::TakeObjects` takes all objects over at
/// once. Objects in a file may own each other in a cycle; `pointer`s alone never release such objects.
class ZO_API TBinInStreamer : public ZoObject {
public:
    /// Neither is owned.
    TBinInStreamer(TBinInStream* stream, TZoMetaData* schema);
    ~TBinInStreamer() override;
    TBinInStreamer(const TBinInStreamer&) = delete;
    TBinInStreamer& operator=(const TBinInStreamer&) = delete;

    /// Called after an object's fields were read; its pointers are not resolved yet.
    virtual void OnAfterLoadInstance(ZoStreamableBase* object);
    /// Called after an object's pointers were resolved.
    virtual void OnAfterResolveInstance(ZoStreamableBase* object);

protected:
    /// Makes the empty object for a record of the file's class `fileClass`. Null drops the record, or has it
    /// kept (`KeepUnknown`).
    virtual ZoStreamableBase* CreateInstance(TZoClass* fileClass, TZoMetaData* fileSchema,
                                             TZoMetaData* appSchema);

public:
    TBinInStream* GetStream() const { return stream; }
    /// Has reading tell how far it has come, until all records are read. When it is cancelled the objects
    /// made are deleted.
    void SetProgress(const pointer<TZoProgress>& newProgress) { progress = newProgress; }
    template <class Callable,
              class = std::enable_if_t<!std::is_convertible_v<Callable, pointer<TZoProgress>>>>
    void SetProgress(Callable callable) {
        SetProgress(ZoProgress(std::move(callable)));
    }
    /// The file handle of a file stream; null for other streams.
    void* GetFile() const;
    TZoMetaData* GetFileMetaData() { return fileSchema.get(); }
    /// The classes of the records read that the application does not know.
    TIList<TZoClass, pointer<TZoClass>>* GetUnknowObjects() { return &unknown; }

    /// Reads the whole file and returns the root, or the first object that was not dropped; null when the
    /// file holds no objects. Throws `XStream` "Metadado corrompido" (#1) or "Metadado inválido" (#2, #3)
    /// with the failure point in "TBinInStreamer::ReadObjects", and whatever the stream throws.
    ///
    /// A failure before all records are read deletes the objects made. A later one (thrown by setters and
    /// hooks while pointers are resolved) leaves them to the caller, in the stream's list.
    ZoStreamableBase* ReadObjects();

    /// What the latest reading found, and what of it did not come into the model. The schemas must be there
    /// still. It is put together when it is asked for: a reading of clean data pays nothing for it.
    TZoReadReport Report() const;
    /// `TZoStrictness` bits: a reading that meets one of these faults ends in `XRefusedData`, with all
    /// objects released.
    void SetStrict(unsigned faults) { strict = faults; }
    /// Whether `ReadObjects` keeps what the application does not know, so that an older version of it can
    /// open, change and save the file of a newer one without loss: objects of unknown classes, fields that a
    /// class lacks and no `HandleExcludedField` read, and the references of both. All this stays with the
    /// objects that own it and ends with them; whatever writes these objects to records writes it, too. A
    /// reference or a value that the application sets itself counts instead. False by default.
    ///
    /// What cannot be kept throws `XCannotKeep`, and any failure deletes all objects then.
    void KeepUnknown(bool keep) { keepsUnknown = keep; }
    /// Deletes the objects that were read, also those that own each other in a circle.
    void ReleaseObjects() noexcept;

    /// The uid of the first record read behind the schema, which is the root's; 0 if there is none.
    int GetRootUid() const { return rootUid; }
    /// The number of records of which no object was made.
    unsigned long long GetDropped() const;

    /// Whether the object may stay: it was not found `invalid` before, its `GetIsValid` is true, and so is
    /// that of every object that is a member of it.
    bool OnReadInstance(ZoStreamableBase* object, bool invalid);
    /// The objects that are members of `object` (`ftChildValue`).
    TDVector<ZoStreamableBase*> ChildsByValueOfInstance(ZoStreamableBase* object);
    /// Deletes the objects of the list and what they own, except objects that a remaining object owns too.
    /// References to deleted objects become null; lists drop them.
    void RemoveInvalidObjects(TDList<ZoStreamableBase*>* invalid);

private:
    friend class Opening;
    friend class TFilteredBinInStreamer;
    struct Use;
    class Uses;
    enum class Operations { Library, Overridden };
    enum class Scope { AllClasses, SomeClasses };

    bool IsOverridden() const { return operations == Operations::Overridden; }
    bool IsFiltered() const { return scope == Scope::SomeClasses; }

    /// Throws at one of the locations when the schema record is missing or contradicts itself.
    void LoadSchema(const char* noRecord, const char* noSchema);
    /// `classIds`, ascending: reads only the records of these classes; null: all records.
    void ReadRecords(const std::vector<int>* classIds);
    void ReadAllRecords(const std::vector<int>* classIds, const ObjectReader& reader, MadeObjects& made);
    Use& UseOf(int classId);
    void Decide(Use& use);
    void Lose(Use& use, int uid);
    bool IsValid(ZoStreamableBase* object, bool invalid, bool mayHaveValues);
    void ReadRecord(const ObjectReader& reader, int uid, int classId, MadeObjects& made);
    /// Fills an object. `owner` is the outermost object that contains it, or the object itself.
    void ReadFields(const ObjectReader& reader, const Use& use, int uid, ZoStreamableBase* object,
                    ZoStreamableBase* owner, MadeObjects& made);
    void ReadMember(const ObjectReader& reader, const Use& use, int uid, ZoStreamableBase* member,
                    ZoStreamableBase* owner, MadeObjects& made);
    void Resolve(MadeObjects& made);
    void ResolveKept(MadeObjects& made);
    void FollowReplaced(MadeObjects& made);
    void Validate(MadeObjects& made);
    void Remove(const TDList<ZoStreamableBase*>& invalid);
    /// Throws when the reading has faults that are not accepted.
    void RefuseFaults(const char* location);

    TBinInStream* stream;
    TZoMetaData* schema;
    pointer<TZoProgress> progress;
    std::shared_ptr<TZoMetaData> fileSchema; // kept parts share it
    TIList<TZoClass, pointer<TZoClass>> unknown;
    std::unique_ptr<Uses> uses;
    bool keepsUnknown = false;
    std::unique_ptr<KeptReader> kept;               // while records are read, if it is wanted
    Operations operations = Operations::Overridden; // the virtual ones of this streamer
    Scope scope = Scope::AllClasses;                // what is read only in part may be incomplete
    int rootUid = 0;
    unsigned strict = strictNothing;
    bool acceptsDamage = false; // a wrong digest too: the report tells of it
    bool wrongDigest = false;
    TDVector<TZoReadReport::Removed> removed;
};

} // namespace ZoPrimitives
