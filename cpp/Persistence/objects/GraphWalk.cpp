#include "Persistence/objects/GraphWalk.h"

#include "Persistence/instances/ClassNames.h"
#include "Persistence/instances/HandleAccess.h"
#include "Persistence/records/ProgressMeter.h"
#include "Persistence/schema/RecordOrder.h"
#include "Platform/Compiler.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/ZoSources.h"

#include <utility>

namespace ZoPrimitives {

void FailUnregistered(const ZoStreamableBase* object) {
    const ZoString message = ZoString::FormatString(
        "[zoerror] class '%s' not register or not streamable. See 'class::Register' or "
        "'class : public ZoStreamableBase'",
        ClassText(typeid(*object)).c_str());
    AssertWithFunctor("instance_pointer->GetOriginalClass(parentMetaData)", message.c_str(),
                      ZoSources::ZOMETADATA, __LINE__);
}

void ForEachExternal(const TZoClass& level, ZoStreamableBase* object, ZoStreamableBaseFunctor& action) {
    RecordOrder::ForEachPointer(level, [&](TZoClassFieldPointerBase& field) {
        if (RecordOrder::IsExternal(field)) field.GetFieldMetaData(object, action);
    });
}

GraphWalk::GraphWalk(TBinOutStream& outStream, TZoMetaData* applicationSchema, WritePlans& writePlans,
                     TDList<ZoStreamableBase*>& externalInstances, UsedClasses* usedClasses)
    : stream(outStream), schema(applicationSchema), plans(writePlans), externals(externalInstances),
      knownExternals(externals.begin(), externals.end()), firstNew(HandleAccess::FirstNew(outStream)),
      classes(usedClasses) {}

void GraphWalk::TellTo(ProgressMeter& told) { meter = told.IsUsed() ? &told : nullptr; }

/// Whether the object is met for the first time. It has a uid afterwards.
bool GraphWalk::Meet(const ZoStreamableBase* object) {
    const int uid = HandleAccess::Get(stream, object);
    if (uid != 0) return uid < firstNew && MeetGiven(uid, object);
    HandleAccess::Give(stream, object);
    return true;
}

bool GraphWalk::MeetGiven(int uid, const ZoStreamableBase* object) {
    const auto [met, isNew] = given.try_emplace(uid, object);
    if (met->second != object) {
        const ZoString message = ZoString::FormatString("[zoerror] two objects have the uid %d", uid);
        AssertWithFunctor("stream->GetHandle(instance_pointer) is unique", message.c_str(),
                          ZoSources::ZOMETADATA, __LINE__);
    }
    return isNew;
}

void GraphWalk::Run(ZoStreamableBase* root) {
    if (root != nullptr) Run(root, ClassToWrite(schema, root));
}

void GraphWalk::Run(ZoStreamableBase* root, TZoClass* rootClass) {
    if (root == nullptr || !Meet(root)) return;
    Enter(root, rootClass);
    Finish();
}

void GraphWalk::Finish() {
    ZoItemAction collect([this](ZoStreamableBase* item) { Collect(item); });
    while (!frames.empty()) {
        Frame& frame = frames.back();
        if (frame.next == frame.end) {
            waiting.resize(frame.begin);
            frames.pop_back();
            continue;
        }
        const Visit visit = waiting[frame.next++];
        FetchAhead(waiting, frame.next, frame.end,
                   [](const Visit& later) { HandleAccess::Fetch(later.object); });
        if (visit.externalsOf != nullptr) {
            ForEachExternal(*visit.externalsOf, visit.object, collect);
        } else if (Meet(visit.object)) {
            Enter(visit.object, ClassToWrite(schema, visit.object));
        }
    }
}

void GraphWalk::Enter(ZoStreamableBase* object, TZoClass* objectClass) {
    order.push_back(object);
    if (KeptParts::Has(*object)) CollectKept(object);
    if (meter != nullptr) meter->Step([this] { return std::pair(order.size(), std::size_t{0}); });
    if (series.empty() || series.back().objectClass != objectClass) BeginSeries(objectClass);
    series.back().end = order.size();
    WritePlan& plan = *series.back().plan;
    steady = steady && objectClass->GetType() == &typeid(*object);
    if (classes != nullptr && !used->steps.empty()) {
        classes->Ask(object, *used, [](const std::vector<ZoStreamableBase*>&) {});
    }
    if (!plan.targets.empty()) PushTargets(object, plan);
}

/// What kept parts refer to is written after the main graph.
void GraphWalk::CollectKept(ZoStreamableBase* object) {
    keptFiles.Add(*object);
    ZoItemAction collect([this](ZoStreamableBase* item) { Collect(item); });
    KeptReferences::ForEachSaved(*object, *schema, collect);
}

void GraphWalk::Collect(ZoStreamableBase* item) {
    if (item != nullptr && knownExternals.insert(item).second) externals.Add(item);
}

void GraphWalk::BeginSeries(TZoClass* objectClass) {
    series.push_back({objectClass, &plans.Of(*objectClass), order.size()});
    steady = steady && series.back().plan->steady;
    if (classes != nullptr) used = &classes->PlanOf(*objectClass);
}

void GraphWalk::PushTargets(ZoStreamableBase* object, WritePlan& plan) {
    const std::size_t begin = waiting.size();
    ZoItemAction push([this](ZoStreamableBase* item) {
        if (item != nullptr) waiting.push_back({item, nullptr});
    });
    for (WritePlan::Target& target : plan.targets) {
        if (target.externalsOf != nullptr) {
            waiting.push_back({object, target.externalsOf});
            continue;
        }
        const std::size_t before = waiting.size();
        target.field->GetFieldMetaData(object, push);
        if (classes != nullptr && !target.nullTold && waiting.size() == before) {
            target.nullTold = true;
            classes->UseDeclared(target.field->GetFieldClass());
        }
    }
    if (waiting.size() != begin) frames.push_back({begin, begin, waiting.size()});
}

} // namespace ZoPrimitives
