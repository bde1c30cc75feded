#include "ZoPrimitives/ZoSave.h"

#include "Persistence/objects/GraphWalk.h"
#include "Persistence/records/FileAccess.h"
#include "Persistence/records/RecordFormat.h"
#include "Persistence/schema/RecordOrder.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/ClipboardBinOutStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/MemoryBinOutStream.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

namespace ZoPrimitives {

namespace {

using Roots = TDList<ZoStreamableBase*>;

/// An object without fields gets no record: the file would be opened without this root.
void CheckRoot(const ZoStreamableBase* root, TZoMetaData* schema) {
    ZO_ASSERT(root != nullptr, "root != nullptr && \"[zoerror] there is nothing to save\"",
              ZoSources::ZO_SAVE);
    const TZoClass& rootClass = *ClassToWrite(schema, root);
    if (RecordOrder::HasFields(rootClass)) return;
    const ZoString message =
        ZoString::FormatString("[zoerror] the root's class %s has no fields: the root would not be saved",
                               rootClass.GetName().c_str());
    AssertWithFunctor("root has fields", message.c_str(), ZoSources::ZO_SAVE, __LINE__);
}

void Check(const Roots& roots, TZoMetaData* schema, const TZoSaving& how) {
    ZO_ASSERT(how.version < RecordFormat::VERSION_LIMIT,
              "version < 10000 && \"[zoerror] no reader accepts this version\"", ZoSources::ZO_SAVE);
    ZO_ASSERT(how.release < RecordFormat::RELEASE_LIMIT,
              "release < 1000000 && \"[zoerror] no reader accepts this release\"", ZoSources::ZO_SAVE);
    schema->CheckChangesOrThrow();
    ZO_ASSERT(roots.NItems() != 0, "roots->NItems() != 0 && \"[zoerror] there is nothing to save\"",
              ZoSources::ZO_SAVE);
    for (const ZoStreamableBase* root : roots) CheckRoot(root, schema);
}

void Write(TBinOutStream& stream, Roots& roots, TZoMetaData* schema, const TZoSaving& how) {
    stream.SetUsesSecurity(how.scrambles);
    stream.SetWritesDigest(how.digest);
    stream.Initialize();
    TBinOutStreamer streamer(&stream, schema);
    streamer.SetProgress(how.progress);
    streamer.WriteObjectsWithMetaData(&roots);
}

Roots ListOf(ZoStreamableBase* root) {
    Roots roots;
    roots.Add(root);
    return roots;
}

} // namespace

void ZoSave(const TZoPath& path, TDList<ZoStreamableBase*>* roots, TZoMetaData* schema,
            const TZoSaving& how) {
    Check(*roots, schema, how);
    RefuseReadOnly(path, "ZoSave");
    const pointer<TFileBinOutStream> file(
        TFileBinOutStream::Create(path, how.version, how.release, how.backup));
    file->SetThroughTemporary(true);
    try {
        Write(*file, *roots, schema, how);
        file->Finalize();
    } catch (const XWriteStream& reason) {
        if (file->IsComplete()) throw XNotReplaced(reason, file->GetWrittenFilePath());
        file->Discard();
        throw;
    } catch (...) {
        file->Discard();
        throw;
    }
}

ZoBlob ZoSaveInMemory(TDList<ZoStreamableBase*>* roots, TZoMetaData* schema, const TZoSaving& how) {
    Check(*roots, schema, how);
    TMemoryBinOutStream memory(how.version, how.release);
    Write(memory, *roots, schema, how);
    unsigned long long size = 0;
    unsigned char* block = memory.Detach(size);
    return ZoBlob::TakeOver(block, size);
}

void ZoSaveOnClipboard(TDList<ZoStreamableBase*>* roots, TZoMetaData* schema, const TZoSaving& how) {
    Check(*roots, schema, how);
    TClipboardBinOutStream clipboard(how.version, how.release);
    Write(clipboard, *roots, schema, how);
    clipboard.Finalize();
}

void ZoSave(const TZoPath& path, ZoStreamableBase* root, TZoMetaData* schema, const TZoSaving& how) {
    Roots roots = ListOf(root);
    ZoSave(path, &roots, schema, how);
}

ZoBlob ZoSaveInMemory(ZoStreamableBase* root, TZoMetaData* schema, const TZoSaving& how) {
    Roots roots = ListOf(root);
    return ZoSaveInMemory(&roots, schema, how);
}

void ZoSaveOnClipboard(ZoStreamableBase* root, TZoMetaData* schema, const TZoSaving& how) {
    Roots roots = ListOf(root);
    ZoSaveOnClipboard(&roots, schema, how);
}

} // namespace ZoPrimitives
