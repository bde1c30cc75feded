#pragma once

#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoProgress.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/dvector.h"

namespace ZoPrimitives {

class TZoMetaData;

/// How a model is saved.
struct TZoSaving {
    unsigned version = 0; ///< of the format, below 10,000; an application that knows only older ones refuses
    unsigned release = 0; ///< of the application, below 1,000,000
    bool backup = true;   ///< a file's previous version is kept under its name followed by "-bak"
    bool digest = true;   ///< damage that the records' checksums miss is found (`SetWritesDigest`)
    bool scrambles = false; ///< obfuscates records (`TBinOutStream::SetUsesSecurity`); never on the clipboard
    pointer<TZoProgress> progress{}; ///< hears how far it is, and may cancel; null for none
};

/// Saves the graph of objects under one root, or under several, to a file.
///
/// The file is replaced when the new version is complete and on the device; until then it stays as it was. An
/// incomplete temporary file is deleted. Before anything is written the schema is checked
/// (`TZoMetaData::CheckOrThrow`), unless it has not changed since it last was.
///
/// Throws what `TBinOutStreamer` and `TFileBinOutStream` throw: `XWriteStream`, for a read-only target at
/// once; `XNotReplaced` when the new version is complete but cannot replace the old one; `XStream` for a
/// reference to an object that is not saved and for a schema that would lose data. A version or release that
/// no reader accepts, a root that is null or of a class without fields, and an object whose class is not
/// registered fail an assertion.
ZO_API void ZoSave(const TZoPath& path, ZoStreamableBase* root, TZoMetaData* schema,
                   const TZoSaving& how = {});
ZO_API void ZoSave(const TZoPath& path, TDList<ZoStreamableBase*>* roots, TZoMetaData* schema,
                   const TZoSaving& how = {});
/// The same bytes in memory.
ZO_API ZoBlob ZoSaveInMemory(ZoStreamableBase* root, TZoMetaData* schema, const TZoSaving& how = {});
ZO_API ZoBlob ZoSaveInMemory(TDList<ZoStreamableBase*>* roots, TZoMetaData* schema,
                             const TZoSaving& how = {});
/// The same bytes on the clipboard, which keeps its contents until they are complete.
ZO_API void ZoSaveOnClipboard(ZoStreamableBase* root, TZoMetaData* schema, const TZoSaving& how = {});
ZO_API void ZoSaveOnClipboard(TDList<ZoStreamableBase*>* roots, TZoMetaData* schema,
                              const TZoSaving& how = {});

} // namespace ZoPrimitives
