#pragma once

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/dvector.h"

namespace ZoPrimitives {

/// Reads the objects of some classes only. Records of other classes are skipped by their heads, which makes
/// it cheap to fetch a few objects from a large file.
///
/// Each class must be named itself: objects of derived classes are read only when their names are given too.
/// Objects of a class that the application does not know are left out. A pointer to an object that was not
/// read becomes null, and a list drops such an item. An object that this leaves incomplete is not asked for
/// its validity; one whose `OnRead` returns false is removed.
class ZO_API TFilteredBinInStreamer : public ZoObject {
public:
    /// Stream and schema are not owned; the names are copied.
    TFilteredBinInStreamer(TBinInStream* stream, TZoMetaData* schema, const TDList<ZoString>* classNames);
    ~TFilteredBinInStreamer() override;
    TFilteredBinInStreamer(const TFilteredBinInStreamer&) = delete;
    TFilteredBinInStreamer& operator=(const TFilteredBinInStreamer&) = delete;

    /// Reads the objects, which belong to the caller; false when the file holds none of these classes. Throws
    /// `XStream` "Metadado corrompido" (#1), "Metadado inválido" (#2) or, when no name is one of the file's
    /// classes, "Não existem classes com os nomes da filtragem no metadado" (#3), with the failure point in
    /// "TFilteredBinInStreamer::Read", and whatever the stream throws.
    ///
    /// A failure before all records are read deletes the objects made. A later one (thrown by setters and
    /// hooks while pointers are resolved) leaves them to the caller.
    virtual bool Read();

    /// As `TBinInStreamer::SetProgress`.
    template <class Progress>
    void SetProgress(Progress progress) {
        reader.SetProgress(std::move(progress));
    }

    /// The same for a caller who takes the objects from the stream (`TBinInStream::Objects`).
    static bool ReadFromStream(TBinInStream* stream, TZoMetaData* schema, const TDList<ZoString>* classNames);

    /// The objects read, in record order.
    const TDList<ZoStreamablePointer>& GetObjects() const { return objects; }
    TZoMetaData* GetFileMetaData() { return reader.GetFileMetaData(); }
    /// See `TBinInStreamer`. References to objects that were not read are no fault.
    TZoReadReport Report() const { return reader.Report(); }
    void SetStrict(unsigned faults) { reader.SetStrict(faults); }

private:
    void ReadNamed();
    void TakeObjects();

    TBinInStreamer reader;
    TDList<ZoString> names;
    TDList<ZoStreamablePointer> objects;
};

} // namespace ZoPrimitives
