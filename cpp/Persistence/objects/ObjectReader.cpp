#include "Persistence/objects/ObjectReader.h"

#include "Persistence/instances/InstanceTables.h"
#include "Persistence/objects/AwaitedMembers.h"
#include "Persistence/records/RecordCursors.h"
#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/ReadPlan.h"

#include <typeinfo>

namespace ZoPrimitives {

namespace {

template <class Source>
void ReadField(const Source& take, TZoClassField& field, bool known, ZoStreamableBase* object) {
    if (known) {
        FieldCodec::LoadField(take, field, object);
    } else {
        FieldCodec::PassOver(take, field);
    }
}

template <class Source>
void ReadSteps(const Source& take, const ReadPlan& plan, ZoStreamableBase* object) {
    for (const ReadPlan::Step& step : plan.steps)
        ReadField(take, *step.field, step.use != ReadPlan::Use::PassedOver, object);
}

void Await(const ReadCursor& take, TZoClassFieldPointer& field, ZoStreamableBase* object,
           AwaitedMembers& awaited) {
    CheckBytes(take, sizeof(std::int32_t));
    int uid = 0;
    take(uid);
    InstanceTables::Of(take.stream).unresolved.LoadPointer(&field, uid);
    awaited.Add(uid, field.Get(object));
}

/// For objects of the type in which the plan's offsets were measured.
void ReadMembers(const ReadCursor& take, const ReadPlan& plan, ZoStreamableBase* object,
                 AwaitedMembers* awaited) {
    for (std::size_t i = 0; i < plan.steps.size(); ++i) {
        const ReadPlan::Step& step = plan.steps[i];
        if (step.run.size != 0 && step.run.size <= take.Remaining()) {
            FlatRun::Copy(FieldOffset::Apply(object, step.offset), take.Take(step.run.size), step.run.size);
            i += step.run.steps - 1u;
        } else if (step.offset != FieldOffset::NONE) {
            FieldCodec::LoadMember(take, static_cast<TZoClassFieldType>(step.kind),
                                   FieldOffset::Apply(object, step.offset));
        } else if (step.use == ReadPlan::Use::Awaited && awaited != nullptr) {
            Await(take, static_cast<TZoClassFieldPointer&>(*step.field), object, *awaited);
        } else if (step.use == ReadPlan::Use::Set &&
                   IsKindOf<TZoClassFieldPointer>(static_cast<TZoClassFieldType>(step.kind))) {
            FieldCodec::Load(take, static_cast<TZoClassFieldPointer*>(step.field), object);
        } else {
            ReadField(take, *step.field, step.use != ReadPlan::Use::PassedOver, object);
        }
    }
}

} // namespace

template <class Source>
void ObjectReader::ReadLevels(const Source& take, TZoClass& level, const TZoClass& objectClass,
                              ZoStreamableBase* object) {
    for (const auto& parent : level.parents) {
        if (parent->RecordExtent().fields != 0) ReadLevels(take, *parent, objectClass, object);
    }
    const bool applies = ReadPlan::Applies(level, objectClass);
    for (TZoClassField* field : level.inOrder) {
        TZoClassField* application = applies ? field->GetOriginal() : nullptr;
        ReadField(take, application != nullptr ? *application : *field, application != nullptr, object);
    }
}

void ObjectReader::ReadFields(TBinInStream& stream, TZoClass& fileClass, ZoStreamableBase* object) {
    const ReadPlan& plan = ReadPlan::For(fileClass, stream);
    const VirtualSource take{stream};
    if (plan.hasSteps) {
        ReadSteps(take, plan, object);
    } else {
        ReadLevels(take, fileClass, fileClass, object);
    }
}

void ObjectReader::Read(TZoClass& fileClass, ZoStreamableBase* object) const {
    InstanceTables& tables = InstanceTables::Of(stream);
    tables.excluded.Clear();
    ReadPlan& plan = ReadPlan::For(fileClass, stream);
    if (plan.excluded != 0) tables.excluded.Reserve(plan.excluded);
    if (entries == Entries::All || !plan.pointers.empty()) {
        tables.unresolved.Open(object, stream.GetCurrentUID(), &fileClass);
    }
    const std::type_info* type = &typeid(*object);
    const TZoClass* application = fileClass.GetOriginal();
    if (plan.exactType == nullptr && application != nullptr && application->GetType() == type)
        plan.Measure(object);
    const bool exact = direct && plan.hasSteps && plan.exactType == type;
    if (awaited != nullptr && plan.hasMembers && !(exact && plan.awaitsMembers)) awaited->LeaveSome();
    if (!direct) return ReadFields(stream, fileClass, object);
    const ReadCursor take(stream);
    if (exact) {
        ReadMembers(take, plan, object, awaited);
    } else if (plan.hasSteps) {
        ReadSteps(take, plan, object);
    } else {
        ReadLevels(take, fileClass, fileClass, object);
    }
    take.Commit();
    if (exact && entries == Entries::Waiting && plan.onlyRefers) ResolveAtOnce(fileClass, object);
}

/// Resolves the latest entry, unless a uid of it names no object that has been read.
void ObjectReader::ResolveAtOnce(const TZoClass& fileClass, ZoStreamableBase* object) const {
    InstanceTables& tables = InstanceTables::Of(stream);
    TBinUnresolvedPointers& unresolved = tables.unresolved;
    const std::int32_t* uids = unresolved.Uids() + unresolved.Entries().back().firstUid;
    for (const std::int32_t* uid = uids; uid != unresolved.UidsEnd(); ++uid) {
        if (*uid != 0 && tables.handles.Get(*uid) == nullptr) return;
    }
    TZoPointerResolver resolver(stream, nullptr, nullptr);
    resolver.Begin(uids, false);
    Resolve(fileClass, resolver, object);
    unresolved.DropLast();
}

bool ObjectReader::Resolves(const TZoClass& fileClass) {
    return fileClass.readPlan != nullptr && fileClass.readPlan->resolves;
}

void ObjectReader::Resolve(const TZoClass& fileClass, TZoPointerResolver& resolver,
                           ZoStreamableBase* object) {
    if (fileClass.readPlan == nullptr) return;
    for (ReadPlan::Pointer& pointer : fileClass.readPlan->pointers) {
        if (pointer.single) {
            FieldCodec::ResolveReference(resolver, pointer.taken,
                                         static_cast<TZoClassFieldPointer&>(*pointer.application), object);
        } else {
            resolver.SetPassing(!pointer.last);
            FieldCodec::Resolve(resolver, pointer.taken, *pointer.application, object);
            resolver.SetPassing(false);
        }
    }
}

} // namespace ZoPrimitives
