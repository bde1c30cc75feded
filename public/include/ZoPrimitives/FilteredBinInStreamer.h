#pragma once

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/dvector.h"

namespace ZoPrimitives {

/// Reads the objects of some classes only. Records of other classes are passed over by their heads, which is
/// how a few objects are fetched from a large file cheaply.
///
/// Each class is asked for by its own name: objects of classes that derive from it are read when their names
/// are given too. Objects of a class that the application does not know are left out. A pointer to an object
/// that was not read is null, and such an item is left out of its list. An object that was left incomplete
/// like that is not asked whether it is valid; one whose `OnRead` says false is removed.
class ZO_API TFilteredBinInStreamer : public ZoObject {
public:
    /// Stream and schema are not owned; the names are copied.
    TFilteredBinInStreamer(TBinInStream* stream, TZoMetaData* schema, const TDList<ZoString>* classNames);
    ~TFilteredBinInStreamer() override;
    TFilteredBinInStreamer(const TFilteredBinInStreamer&) = delete;
    TFilteredBinInStreamer& operator=(const TFilteredBinInStreamer&) = delete;

    /// Reads the objects; false when the file holds none of these classes. They are the caller's. Throws
    /// `XStream` "Metadado corrompido" (#1), "Metadado inválido" (#2) or, when no name is one of the file's
    /// classes, "Não existem classes com os nomes da filtragem no metadado" (#3), with the failure point in
    /// "TFilteredBinInStreamer::Read", and whatever the stream throws.
    ///
    /// Until all records are read a failure deletes the objects made; later failures (thrown by setters and
    /// hooks while pointers are resolved) leave them to the caller.
    virtual bool Read();

    /// The same, for a caller who takes the objects from the stream (`TBinInStream::Objects`).
    static bool ReadFromStream(TBinInStream* stream, TZoMetaData* schema, const TDList<ZoString>* classNames);

    /// The objects read, in the order of their records.
    const TDList<ZoStreamablePointer>& GetObjects() const { return objects; }
    TZoMetaData* GetFileMetaData() { return reader.GetFileMetaData(); }

private:
    void TakeObjects();

    TBinInStreamer reader;
    TDList<ZoString> names;
    TDList<ZoStreamablePointer> objects;
};

} // namespace ZoPrimitives
