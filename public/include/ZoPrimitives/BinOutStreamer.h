#pragma once

#include "ZoPrimitives/ZoProgress.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/dvector.h"

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace ZoPrimitives {

class ObjectWriter;
struct KeptFile;
class UsedClasses;
class TBinOutStream;
class TZoClass;
class TZoMetaData;

/// Writes a graph of objects: the schema record of the classes that it uses, then one record for each object,
/// in ascending uid order, with pointers as uids.
///
/// Construct, write the schema (`WriteObjectMetaData`), then the objects (`WriteObject`), or both in one call
/// (`WriteObjectWithMetaData`); one streamer writes one file. Every object that is referred to must be owned
/// by an object of the graph, or be referred to by a field declared with DECLARE_ZO_FIELD_EXTERNAL_REFERENCE,
/// which writes it after the main graph.
class ZO_API TBinOutStreamer : public ZoObject {
public:
    /// Neither is owned.
    TBinOutStreamer(TBinOutStream* stream, TZoMetaData* schema);
    ~TBinOutStreamer() override;
    TBinOutStreamer(const TBinOutStreamer&) = delete;
    TBinOutStreamer& operator=(const TBinOutStreamer&) = delete;

    /// Called after an object's record was written.
    virtual void OnAfterSaveInstance(ZoStreamableBase* object);
    /// Called after all records were written; puts the record count into the header.
    virtual void RewriteHeader();

    TZoMetaData* GetMetaData() const { return schema; }
    TBinOutStream* GetStream() const { return stream; }
    /// Has writing objects tell how far it has come. When it is cancelled the stream's resources are freed: a
    /// file that was written in place keeps what was written so far.
    void SetProgress(const pointer<TZoProgress>& newProgress) { progress = newProgress; }
    template <class Callable,
              class = std::enable_if_t<!std::is_convertible_v<Callable, pointer<TZoProgress>>>>
    void SetProgress(Callable callable) {
        SetProgress(ZoProgress(std::move(callable)));
    }
    /// The file handle of a file stream; null for other streams.
    void* GetFile() const;
    void SetFile(void* file);

    /// Write the schema record of the classes that the graph under one root, or under several, uses, with the
    /// application's order and ids. A null root uses no class.
    void WriteObjectMetaData(ZoStreamableBase* root);
    void WriteObjectsMetaData(TDList<ZoStreamableBase*>* roots);
    /// Writes the application's complete schema, without what is kept of opened files.
    void WriteMetaData();

    /// Write the records. An object whose class is not registered, or registered only by its base, fails an
    /// assertion; a reference to an object that is not written throws `XStream`, and so does an object with
    /// kept parts (`TBinInStreamer::KeepUnknown`) that the schema was not written for. After any failure the
    /// stream's resources are freed. An object that already has a uid keeps it.
    ///
    /// Application code that runs meanwhile (`WillWrite`, accessors, `OnAfterSaveInstance`) may change the
    /// graph: an object that no owner holds when the turn of its record comes is not written. An object that
    /// no `pointer` owns must outlive its own turn and those of the objects it owns, unless it is let go of
    /// first.
    void WriteObject(ZoStreamableBase* object);
    void WriteObjects(TDList<ZoStreamableBase*>* objects);
    /// Write the schema record and the records: the same bytes as `WriteObjectMetaData` and then
    /// `WriteObject`, faster, because the graph is walked once.
    void WriteObjectWithMetaData(ZoStreamableBase* root);
    void WriteObjectsWithMetaData(TDList<ZoStreamableBase*>* roots);
    /// Gives uids to the targets of external references and to the objects they own. Both lists are as in
    /// `WriteObjects`; `externals` may grow meanwhile.
    void AlocateExternalInstancesHandles(TDList<ZoStreamableBase*>* objects,
                                         TDList<ZoStreamableBase*>* externals);

    /// Whether the object's record was written since the stream's handles were last reset.
    bool InstanceIsAlreadySaved(const ZoStreamableBase* object) const;
    /// Writes the records of an object and of the objects it owns, unless already written. All must have
    /// uids.
    void SaveInstance(TBinOutStream* target, ZoStreamableBase* object);

private:
    friend class ObjectWriter;

    void CheckBegun() const;
    void WriteSchemaOf(const UsedClasses& classes,
                       const std::vector<std::shared_ptr<const KeptFile>>& keptFiles);
    template <class Action>
    void Write(Action writeAll);

    TBinOutStream* stream;
    TZoMetaData* schema;
    pointer<TZoProgress> progress;
    std::unique_ptr<ObjectWriter> writer;
    std::size_t expected = 0; // number of objects found while the schema was collected
};

} // namespace ZoPrimitives
