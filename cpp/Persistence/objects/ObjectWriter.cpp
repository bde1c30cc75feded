#include "Persistence/objects/ObjectWriter.h"

#include "Persistence/objects/OwnerWalk.h"
#include "Persistence/objects/RecordSize.h"
#include "Persistence/records/RecordCursors.h"
#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/RecordOrder.h"
#include "Platform/Compiler.h"
#include "ZoPrimitives/XStream.h"

#include <typeinfo>
#include <utility>

namespace ZoPrimitives {

namespace {

template <class Sink>
void PutField(const Sink& put, const WritePlan::Step& step, ZoStreamableBase* object) {
    if (step.offset != FieldOffset::NONE) {
        FieldCodec::SaveMember(put, step.kind, FieldOffset::Apply(object, step.offset));
    } else if (IsKindOf<TZoClassFieldPointer>(step.kind)) { // the most frequent ones
        FieldCodec::SaveUids(put, static_cast<TZoClassFieldPointer&>(*step.field), object);
    } else if (step.field != nullptr) {
        FieldCodec::SaveField(put, *step.field, object);
    } else {
        object->WillWrite();
    }
}

void PutFields(const VirtualSink& put, const WritePlan& plan, ZoStreamableBase* object) {
    for (const WritePlan::Step& step : plan.steps) PutField(put, step, object);
}

void PutFields(const WriteCursor& put, const WritePlan& plan, ZoStreamableBase* object) {
    for (std::size_t i = 0; i < plan.steps.size(); ++i) {
        const WritePlan::Step& step = plan.steps[i];
        if (step.run.size == 0) {
            PutField(put, step, object);
        } else {
            FlatRun::Copy(put.Take(step.run.size), FieldOffset::Apply(object, step.offset), step.run.size);
            i += step.run.steps - 1u;
        }
    }
}

/// For an object whose C++ type is not the class's: only what the class declares is known.
template <class Sink>
void PutFields(const Sink& put, const TZoClass& objectClass, ZoStreamableBase* object) {
    RecordOrder::ForEachLevel(objectClass, [&](const TZoClass& level) {
        object->WillWrite();
        for (TZoClassField* field : RecordOrder::FieldsOf(level)) FieldCodec::SaveField(put, *field, object);
    });
}

void PrefetchBuffers(const WritePlan& plan, ZoStreamableBase* object) {
    for (const WritePlan::Step* step : plan.buffered) {
        Prefetch(FieldCodec::BufferOf(step->kind, FieldOffset::Apply(object, step->offset)));
    }
}

template <class Fields>
void PutRecord(TBinOutStream& stream, bool direct, const Fields& fields, ZoStreamableBase* object) {
    if (direct) {
        const WriteCursor put(stream);
        PutFields(put, fields, object);
        put.Commit();
    } else {
        PutFields(VirtualSink{stream}, fields, object);
    }
}

[[noreturn]] void ThrowNotInSchema() {
    throw XStream("[zoerror] the schema was written without what is kept of opened files. See "
                  "TBinOutStreamer::WriteObjectMetaData",
                  "TBinOutStreamer::WriteObjects");
}

} // namespace

void ObjectWriter::WriteFields(TBinOutStream& stream, ZoStreamableBase* object, const TZoClass& objectClass) {
    if (KeptParts::Find(*object) != nullptr) ThrowNotInSchema();
    PutRecord(stream, stream.PutsDirectly(), objectClass, object);
}

bool ObjectWriter::SaveRecord(TBinOutStream& stream, bool direct, ZoStreamableBase* object,
                              TZoClass* objectClass) {
    if (SaveKept(stream, object, *objectClass)) return true;
    const bool exact = objectClass->GetType() == &typeid(*object);
    WritePlan& plan = plans.Of(*objectClass);
    try {
        if (exact) {
            if (!plan.measured) plan.Measure(object);
            PutRecord(stream, direct, plan, object);
        } else {
            PutRecord(stream, direct, *objectClass, object);
        }
    } catch (XZoAssertFailed& failure) {
        AdviseOnSize(failure, stream, *objectClass, object);
        throw;
    }
    Close(stream, object, *objectClass);
    streamer.OnAfterSaveInstance(object);
    return !(exact && direct && plan.steady);
}

bool ObjectWriter::SaveKept(TBinOutStream& stream, ZoStreamableBase* object, const TZoClass& objectClass) {
    if (kept == nullptr) {
        if (KeptParts::Find(*object) != nullptr) ThrowNotInSchema();
        return false;
    }
    const TZoClass* recordClass = kept->Put(stream, object, objectClass);
    if (recordClass == nullptr) return false;
    Close(stream, object, *recordClass);
    streamer.OnAfterSaveInstance(object);
    return true;
}

void ObjectWriter::Close(TBinOutStream& stream, const ZoStreamableBase* object, const TZoClass& objectClass) {
    const int uid = HandleAccess::Get(stream, object);
    stream.FlushRecord(uid, objectClass.GetClassId());
    saved.Add(stream, uid);
    meter.Step([&] { return std::pair(saved.CountOf(stream), toSave); });
}

void ObjectWriter::WriteGraph(TBinOutStream& stream, const TDList<ZoStreamableBase*>& roots, Schema its,
                              std::size_t expected) {
    plans.Clear();
    TDList<ZoStreamableBase*> externals;
    UsedClasses classes(UsedClasses::Children::Told);
    GraphWalk walk(stream, streamer.GetMetaData(), plans, externals,
                   its == Schema::Missing ? &classes : nullptr);
    walk.Reserve(expected);
    Number(walk, roots, externals);
    if (its == Schema::Missing) streamer.WriteSchemaOf(classes, walk.KeptFiles());
    if (!walk.KeptFiles().empty() && (kept == nullptr || !kept->Covers(walk.KeptFiles()))) ThrowNotInSchema();
    WriteRecords(stream, roots, walk);
}

/// Walks the roots, then the externals, whose list grows meanwhile.
void ObjectWriter::Number(GraphWalk& walk, const TDList<ZoStreamableBase*>& roots,
                          const TDList<ZoStreamableBase*>& externals) {
    walk.TellTo(meter);
    for (ZoStreamableBase* root : roots) walk.Run(root);
    for (unsigned long long i = 1; i <= externals.NItems(); ++i) walk.Run(externals[i]);
}

void ObjectWriter::WriteRecords(TBinOutStream& stream, const TDList<ZoStreamableBase*>& roots,
                                const GraphWalk& walk) {
    toSave = walk.Order().size();
    // If no code of the application runs in between, the graph stays as it was walked.
    if (walk.IsSteady() && stream.PutsDirectly() && typeid(streamer) == typeid(TBinOutStreamer)) {
        SaveInOrder(stream, walk);
    } else {
        SaveByOwners(stream, roots, walk.Order().size());
    }
}

void ObjectWriter::SaveInOrder(TBinOutStream& stream, const GraphWalk& walk) {
    const ZoVector<ZoStreamableBase*>& order = walk.Order();
    const bool anySaved = saved.CountOf(stream) != 0;
    std::size_t i = 0;
    const TZoClass* objectClass = nullptr;
    try {
        for (const GraphWalk::Series& series : walk.OrderByClass()) {
            objectClass = series.objectClass;
            for (; i < series.end; ++i) {
                if (i + PREFETCH < order.size()) PrefetchObject(order[i + PREFETCH]);
                FetchAhead<PREFETCH / 2>(order, i, series.end, [&](ZoStreamableBase* object) {
                    PrefetchBuffers(*series.plan, object);
                });
                if (anySaved && IsSaved(stream, order[i])) continue;
                if (kept != nullptr && SaveKept(stream, order[i], *objectClass)) continue;
                if (!series.plan->measured) series.plan->Measure(order[i]);
                PutRecord(stream, true, *series.plan, order[i]);
                Close(stream, order[i], *objectClass);
            }
        }
    } catch (XZoAssertFailed& failure) {
        AdviseOnSize(failure, stream, *objectClass, order[i]);
        throw;
    }
}

void ObjectWriter::SaveByOwners(TBinOutStream& stream, const TDList<ZoStreamableBase*>& roots,
                                std::size_t numbered) {
    // An object may have moved to an owner whose turn was over: that one is asked again.
    for (auto mode = OwnerWalk::Mode::Numbered;; mode = OwnerWalk::Mode::NumberedAgain) {
        const std::size_t before = saved.CountOf(stream);
        OwnerWalk walk(*this, stream, mode);
        for (ZoStreamableBase* root : roots) walk.Run(root, nullptr);
        walk.RunExternals();
        const std::size_t now = saved.CountOf(stream);
        if (now == numbered || now == before) return;
    }
}

void ObjectWriter::BeginProgress() {
    meter = ProgressMeter(streamer.progress, "TBinOutStreamer::WriteObjects");
    toSave = 0;
}

void ObjectWriter::EndProgress() { meter = ProgressMeter(); }

void ObjectWriter::Save(TBinOutStream& stream, ZoStreamableBase* object, TZoClass* asClass) {
    OwnerWalk(*this, stream, OwnerWalk::Mode::ByHand).Run(object, asClass);
}

void ObjectWriter::SaveOwned(TBinOutStream& stream, ZoStreamableBase* object, const TZoClass& objectClass) {
    const WritePlan plan(objectClass);
    OwnerWalk(*this, stream, OwnerWalk::Mode::ByHand).RunOwned(object, plan.targets);
}

void ObjectWriter::SaveOwned(TBinOutStream& stream, ZoStreamableBase* object,
                             TZoClassFieldPointerBase& field) {
    const std::vector<WritePlan::Target> targets{{&field, nullptr}};
    OwnerWalk(*this, stream, OwnerWalk::Mode::ByHand).RunOwned(object, targets);
}

} // namespace ZoPrimitives
