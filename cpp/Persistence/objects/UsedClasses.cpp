#include "Persistence/objects/UsedClasses.h"

#include "Persistence/schema/RecordOrder.h"

#include <unordered_set>

namespace ZoPrimitives {

UsedClasses::Plan& UsedClasses::EntryOf(const TZoClass* someClass) {
    const auto id = static_cast<std::size_t>(someClass->GetClassId());
    if (id >= plans.size()) plans.resize(id + 1);
    if (plans[id] == nullptr) plans[id] = std::make_unique<Plan>();
    return *plans[id];
}

UsedClasses::Plan& UsedClasses::Build(const TZoClass& objectClass) {
    Plan& plan = EntryOf(&objectClass);
    plan.built = true;
    Use(&objectClass);
    RecordOrder::ForEachLevel(objectClass, [&](const TZoClass& level) {
        RecordOrder::ForEachPointer(level, [&](TZoClassFieldPointerBase& field) {
            const bool owned = field.HoldsChildren();
            if (owned && children == Children::Told) return;
            plan.steps.push_back({&field, owned || RecordOrder::IsExternal(field), false, 0});
        });
    });
    return plan;
}

bool UsedClasses::Uses(const TZoClass* someClass) const {
    const auto id = static_cast<std::size_t>(someClass->GetClassId());
    return id < plans.size() && plans[id] != nullptr && plans[id]->used;
}

void UsedClasses::Use(const TZoClass* usedClass) {
    Plan& plan = EntryOf(usedClass);
    if (plan.used) return;
    plan.used = true;
    for (const auto& parent : usedClass->parents) Use(parent.get());
}

void UsedClasses::Gather(TZoClassFieldPointerBase& field, ZoStreamableBase* object) {
    targets.clear();
    ZoItemAction gather([this](ZoStreamableBase* item) {
        if (item != nullptr) targets.push_back(item);
    });
    field.GetFieldMetaData(object, gather);
}

bool UsedClasses::IsSettled(Step& step) {
    const auto& closure = ClosureOf(step.field->GetFieldClass());
    while (step.missing < closure.size() && EntryOf(closure[step.missing]).used) ++step.missing;
    return step.missing == closure.size();
}

const std::vector<const TZoClass*>& UsedClasses::ClosureOf(const TZoClass* declared) {
    static const std::vector<const TZoClass*> nothing;
    // A pointer typed only by a generic base says nothing about what the file may hold.
    if (declared == nullptr || TZoMetaData::IsGenericBase(declared->GetName())) return nothing;
    Plan& plan = EntryOf(declared);
    if (plan.closed) return plan.closure;
    std::unordered_set<const TZoClass*> known;
    const auto add = [&](const TZoClass* reached) {
        if (reached == nullptr || TZoMetaData::IsGenericBase(reached->GetName())) return;
        if (known.insert(reached).second) plan.closure.push_back(reached);
    };
    add(declared);
    for (std::size_t i = 0; i < plan.closure.size(); ++i) {
        const TZoClass* next = plan.closure[i];
        for (const auto& parent : next->parents) add(parent.get());
        next->ForEachPointerField([&](TZoClassField& field) {
            RecordOrder::ForEachTarget(field, [&](TZoClassField& target) { add(target.GetFieldClass()); });
        });
    }
    plan.closed = true;
    return plan.closure;
}

} // namespace ZoPrimitives
