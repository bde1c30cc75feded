#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <memory>
#include <vector>

namespace ZoPrimitives {

class MadeObjects;
class ObjectReader;
class TBinInStream;

/// Reads what `TBinOutStreamer` wrote: one object for each record, with its fields filled through the file's
/// schema and its pointers resolved.
///
/// An object of a class that the application does not know is replaced by one of the class's first ancestor
/// that it knows, or dropped; pointers to it become null. The objects belong to the caller: the first one is
/// the root, which usually owns the rest, and `TBinInStream::Objects` lists them all. What hung from an
/// object that was dropped hangs from nothing: `TBinInStream::TakeObjects` takes all objects over at once. A
/// file in which objects own each other in a circle is legal; such objects are never released by `pointer`s
/// alone.
class ZO_API TBinInStreamer : public ZoObject {
public:
    /// Neither is owned.
    TBinInStreamer(TBinInStream* stream, TZoMetaData* schema);
    ~TBinInStreamer() override;
    TBinInStreamer(const TBinInStreamer&) = delete;
    TBinInStreamer& operator=(const TBinInStreamer&) = delete;

    /// Called when an object's fields were read, pointers excepted.
    virtual void OnAfterLoadInstance(ZoStreamableBase* object);
    /// Called when an object's pointers were resolved.
    virtual void OnAfterResolveInstance(ZoStreamableBase* object);

protected:
    /// Makes the empty object for a record of the file's class `fileClass`; null drops the record.
    virtual ZoStreamableBase* CreateInstance(TZoClass* fileClass, TZoMetaData* fileSchema,
                                             TZoMetaData* appSchema);

public:
    TBinInStream* GetStream() const { return stream; }
    /// The file handle of a file stream; null for other streams.
    void* GetFile() const;
    TZoMetaData* GetFileMetaData() { return &fileSchema; }
    /// The file's classes that the application does not know, as far as records of them were met.
    TIList<TZoClass, pointer<TZoClass>>* GetUnknowObjects() { return &unknown; }

    /// Reads the whole file and returns the root, null when it holds no objects; when the root was dropped,
    /// the first object that was not. Throws `XStream` "Metadado corrompido" (#1) or "Metadado inválido" (#2,
    /// #3) with the failure point in "TBinInStreamer::ReadObjects", and whatever the stream throws.
    ///
    /// Until all records are read a failure deletes the objects made; later failures (thrown by setters and
    /// hooks while pointers are resolved) leave them to the caller, in the stream's list.
    ZoStreamableBase* ReadObjects();

    /// Whether the object may stay: it was not found `invalid` before, it says so itself (`GetIsValid`), and
    /// so do the objects that are members of it.
    bool OnReadInstance(ZoStreamableBase* object, bool invalid);
    /// The objects that are members of another (`ftChildValue`).
    TDVector<ZoStreamableBase*> ChildsByValueOfInstance(ZoStreamableBase* object);
    /// Deletes the objects of the list and what they own, unless an object that stays owns it too. References
    /// to them become null and they leave the lists that hold them.
    void RemoveInvalidObjects(TDList<ZoStreamableBase*>* invalid);

private:
    friend class TFilteredBinInStreamer;
    struct Use;
    class Uses;

    /// Throws with one of the locations when there is no schema record, or when it contradicts itself.
    void LoadSchema(const char* noRecord, const char* noSchema);
    /// `classIds`, rising: reads the records of these classes only; null: all.
    void ReadRecords(const std::vector<int>* classIds);
    Use& UseOf(int classId);
    void Decide(Use& use);
    bool IsValid(ZoStreamableBase* object, bool invalid, bool mayHaveValues);
    void ReadRecord(const ObjectReader& reader, int uid, int classId, MadeObjects& made);
    /// Fills an object; `owner` is the outermost one around it, or itself.
    void ReadFields(const ObjectReader& reader, const Use& use, int uid, ZoStreamableBase* object,
                    ZoStreamableBase* owner, MadeObjects& made);
    void ReadMember(const ObjectReader& reader, const Use& use, int uid, ZoStreamableBase* member,
                    ZoStreamableBase* owner, MadeObjects& made);
    void Resolve(MadeObjects& made);
    void Validate(MadeObjects& made);

    TBinInStream* stream;
    TZoMetaData* schema;
    TZoMetaData fileSchema;
    TIList<TZoClass, pointer<TZoClass>> unknown;
    std::unique_ptr<Uses> uses;
    bool plain = false;    // no operation of this streamer is overridden
    bool filtered = false; // some classes only: what hangs together may not be there
};

} // namespace ZoPrimitives
