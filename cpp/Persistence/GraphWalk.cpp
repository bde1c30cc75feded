#include "Persistence/GraphWalk.h"

#include "Persistence/ClassNames.h"
#include "Persistence/FieldKinds.h"
#include "Persistence/HandleAccess.h"
#include "Persistence/ItemAction.h"
#include "ZoPrimitives/BinOutStream.h"

namespace ZoPrimitives {

namespace {
constexpr std::size_t PREFETCH = 8; // objects ahead
}

void FailUnregistered(const ZoStreamableBase* object) {
    const ZoString message = ZoString::FormatString(
        "[zoerror] class '%s' not register or not streamable. See 'class::Register' or "
        "'class : public ZoStreamableBase'",
        ClassText(typeid(*object)).c_str());
    AssertWithFunctor("instance_pointer->GetOriginalClass(parentMetaData)", message.c_str(),
                      "cpp/Persistence/ZoMetaData", __LINE__);
}

GraphWalk::GraphWalk(TBinOutStream& outStream, TZoMetaData* applicationSchema,
                     TDList<ZoStreamableBase*>& externalInstances)
    : stream(outStream), schema(applicationSchema), externals(externalInstances),
      knownExternals(externals.begin(), externals.end()) {}

void GraphWalk::Run(ZoStreamableBase* root) {
    if (HandleAccess::Get(stream, root) == 0) Enter(root);
    while (!frames.empty()) {
        Frame& frame = frames.back();
        if (frame.next == frame.end) {
            waiting.resize(frame.begin);
            frames.pop_back();
            continue;
        }
        const Visit visit = waiting[frame.next++];
        if (frame.next + PREFETCH < frame.end) __builtin_prefetch(waiting[frame.next + PREFETCH].object);
        if (visit.externalsOf != nullptr) {
            CollectExternals(visit.object, visit.externalsOf);
        } else if (HandleAccess::Get(stream, visit.object) == 0) {
            Enter(visit.object);
        }
    }
}

void GraphWalk::Enter(ZoStreamableBase* object) {
    TZoClass* objectClass = ClassToWrite(schema, object);
    HandleAccess::Allocate(stream, object);
    order.push_back({object, objectClass});
    const Plan& plan = PlanOf(objectClass);
    const std::size_t begin = waiting.size();
    ItemAction push([this](ZoStreamableBase* item) {
        if (item != nullptr) waiting.push_back({item, nullptr});
    });
    for (const Step& step : plan.steps) {
        if (step.externalsOf != nullptr) {
            waiting.push_back({object, step.externalsOf});
        } else {
            step.field->GetFieldMetaData(object, push);
        }
    }
    if (waiting.size() != begin) frames.push_back({begin, begin, waiting.size()});
}

const GraphWalk::Plan& GraphWalk::PlanOf(const TZoClass* objectClass) {
    const auto id = static_cast<std::size_t>(objectClass->GetClassId());
    if (id >= plans.size()) plans.resize(id + 1);
    if (plans[id] == nullptr) {
        plans[id] = std::make_unique<Plan>();
        AddSteps(*plans[id], objectClass);
    }
    return *plans[id];
}

void GraphWalk::AddSteps(Plan& plan, const TZoClass* level) {
    for (const auto& parent : level->parents) AddSteps(plan, parent.get());
    for (const auto* list : {&level->fieldsChildMaps, &level->fieldsChilds, &level->fieldsChildLists}) {
        for (const auto& field : *list) plan.steps.push_back({field.get(), nullptr});
    }
    bool collects = false;
    ForEachExternal(*level, [&collects](TZoClassField&) { collects = true; });
    if (collects) plan.steps.push_back({nullptr, level});
}

/// Calls the action with each field of the level, maps' sub-fields among them, that refers to external
/// instances.
template <class Action>
void GraphWalk::ForEachExternal(const TZoClass& level, Action action) {
    const auto visit = [&action](TZoClassField* field) {
        if (field == nullptr) return;
        if (FieldKindOf(field->GetFieldType()).holds == FieldHold::External) action(*field);
    };
    for (const auto& field : level.fieldsChildMaps) {
        const auto& map = static_cast<const TZoClassFieldPointerMap&>(*field);
        visit(map.GetKeyField());
        visit(map.GetValueField());
    }
    for (const auto& field : level.fieldsReferences) visit(field.get());
    for (const auto& field : level.fieldsReferencesLists) visit(field.get());
}

void GraphWalk::CollectExternals(ZoStreamableBase* object, const TZoClass* level) {
    ItemAction collect([this](ZoStreamableBase* item) { AddExternal(item); });
    ForEachExternal(*level, [&](TZoClassField& field) { field.GetFieldMetaData(object, collect); });
}

void GraphWalk::AddExternal(ZoStreamableBase* target) {
    if (target != nullptr && knownExternals.insert(target).second) externals.Add(target);
}

} // namespace ZoPrimitives
