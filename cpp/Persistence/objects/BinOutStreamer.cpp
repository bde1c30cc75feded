#include "ZoPrimitives/BinOutStreamer.h"

#include "Persistence/objects/ObjectWriter.h"
#include "Persistence/objects/SchemaWalk.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

namespace ZoPrimitives {

TBinOutStreamer::TBinOutStreamer(TBinOutStream* stream, TZoMetaData* schema)
    : stream(stream), schema(schema), writer(std::make_unique<ObjectWriter>(*this)) {}
TBinOutStreamer::~TBinOutStreamer() = default;

void TBinOutStreamer::OnAfterSaveInstance(ZoStreamableBase*) {}

void TBinOutStreamer::RewriteHeader() { stream->RewriteHeader(); }

void* TBinOutStreamer::GetFile() const { return stream->GetFile(); }

void TBinOutStreamer::SetFile(void* file) { stream->SetFile(file); }

/// An application's own stream begins as it likes.
void TBinOutStreamer::CheckBegun() const {
    ZO_ASSERT(stream->HasBegun() || !stream->PutsDirectly(),
              "stream->HasBegun() && \"[zoerror] call Initialize of the stream before writing\"",
              ZoSources::BIN_OUT_STREAMER);
}

void TBinOutStreamer::WriteSchemaOf(const UsedClasses& classes, const MergedSchema::Files& keptFiles) {
    CheckBegun();
    // Not counted pointers: threads that save with one schema would share the counts.
    std::vector<TZoClass*> used;
    for (int i = 1; i <= schema->GetClassCount(); ++i) {
        if (classes.Uses(schema->GetClass(i))) used.push_back(schema->GetClass(i));
    }
    if (keptFiles.empty()) {
        TZoMetaData::SaveClasses(stream, used);
    } else {
        writer->Keep(std::make_unique<KeptWriter>(*schema, used, keptFiles)).WriteSchema(stream);
    }
}

void TBinOutStreamer::WriteObjectMetaData(ZoStreamableBase* root) {
    TDList<ZoStreamableBase*> one;
    one.Add(root);
    WriteObjectsMetaData(&one);
}

void TBinOutStreamer::WriteObjectsMetaData(TDList<ZoStreamableBase*>* roots) {
    SchemaWalk walk(schema);
    for (ZoStreamableBase* root : *roots) walk.Run(root);
    expected = walk.Met() + 1;
    WriteSchemaOf(walk.Classes(), walk.KeptFiles());
}

void TBinOutStreamer::WriteMetaData() {
    CheckBegun();
    schema->SaveToStream(stream);
}

void TBinOutStreamer::WriteObject(ZoStreamableBase* object) {
    TDList<ZoStreamableBase*> one;
    one.Add(object);
    WriteObjects(&one);
}

void TBinOutStreamer::WriteObjects(TDList<ZoStreamableBase*>* objects) {
    // Whether an application's own stream counts records is its own affair.
    ZO_ASSERT(stream->GetNInstances() != 0 || !stream->PutsDirectly(),
              "stream->GetNInstances() != 0 && "
              "\"[zoerror] no schema was written: call WriteObjectMetaData before WriteObject\"",
              ZoSources::BIN_OUT_STREAMER);
    Write([&] { writer->WriteGraph(*stream, *objects, ObjectWriter::Schema::Written, expected); });
}

void TBinOutStreamer::WriteObjectWithMetaData(ZoStreamableBase* root) {
    TDList<ZoStreamableBase*> one;
    one.Add(root);
    WriteObjectsWithMetaData(&one);
}

void TBinOutStreamer::WriteObjectsWithMetaData(TDList<ZoStreamableBase*>* roots) {
    Write([&] { writer->WriteGraph(*stream, *roots, ObjectWriter::Schema::Missing, 0); });
}

template <class Action>
void TBinOutStreamer::Write(Action writeAll) {
    try {
        writer->BeginProgress();
        writeAll();
        writer->EndProgress();
        stream->ResetHandles();
        RewriteHeader();
    } catch (...) {
        writer->EndProgress();
        stream->FreeResourses();
        stream->ResetHandles();
        throw;
    }
}

void TBinOutStreamer::AlocateExternalInstancesHandles([[maybe_unused]] TDList<ZoStreamableBase*>* objects,
                                                      TDList<ZoStreamableBase*>* externals) {
    WritePlans plans;
    GraphWalk walk(*stream, schema, plans, *externals);
    for (unsigned long long i = 1; i <= externals->NItems(); ++i) walk.Run((*externals)[i]);
}

bool TBinOutStreamer::InstanceIsAlreadySaved(const ZoStreamableBase* object) const {
    return writer->IsSaved(*stream, object);
}

void TBinOutStreamer::SaveInstance(TBinOutStream* target, ZoStreamableBase* object) {
    writer->Save(*target, object, nullptr);
}

} // namespace ZoPrimitives
