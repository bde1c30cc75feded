#include "Persistence/objects/SchemaWalk.h"

#include "Persistence/instances/HandleAccess.h"
#include "Persistence/instances/ItemAction.h"
#include "Persistence/schema/RecordOrder.h"
#include "Platform/Compiler.h"

#include <memory>
#include <unordered_set>

namespace ZoPrimitives {

namespace {
constexpr std::size_t PREFETCH = 8; // objects ahead
}

SchemaWalk::SchemaWalk(TZoMetaData* applicationSchema) : schema(applicationSchema) {}

SchemaWalk::~SchemaWalk() {
    for (const Plan* plan : plans) delete plan;
}

TZoClass* SchemaWalk::ClassOf(const ZoStreamableBase* object) {
    return object->GetOriginalClass(schema); // null: giving out the uids reports it
}

SchemaWalk::Plan& SchemaWalk::PlanOf(const TZoClass* someClass) {
    const auto id = static_cast<std::size_t>(someClass->GetClassId());
    if (id >= plans.size()) plans.resize(id + 1, nullptr);
    if (plans[id] == nullptr) plans[id] = new Plan;
    return *plans[id];
}

SchemaWalk::Plan& SchemaWalk::BuiltPlanOf(const TZoClass* objectClass) {
    const auto id = static_cast<std::size_t>(objectClass->GetClassId());
    if (id < plans.size() && plans[id] != nullptr && plans[id]->built) return *plans[id];
    Plan& plan = PlanOf(objectClass);
    plan.built = true;
    Use(objectClass);
    RecordOrder::ForEachLevel(*objectClass, [&plan](const TZoClass& level) {
        RecordOrder::ForEachPointer(level, [&plan](TZoClassFieldPointerBase& field) {
            const bool follows = field.HoldsChildren() || RecordOrder::IsExternal(field);
            plan.steps.push_back({&field, follows, false, 0});
        });
    });
    return plan;
}

bool SchemaWalk::Uses(const TZoClass* someClass) const {
    const auto id = static_cast<std::size_t>(someClass->GetClassId());
    return id < plans.size() && plans[id] != nullptr && plans[id]->used;
}

void SchemaWalk::Run(ZoStreamableBase* root) {
    if (root == nullptr) return;
    stack.push_back(root);
    Finish();
}

void SchemaWalk::Run(ZoStreamableBase* root, const TZoClass* rootClass) {
    if (root == nullptr) return;
    if (ClassOf(root) == rootClass) return Run(root);
    AskAll(root, BuiltPlanOf(rootClass));
    Finish();
}

void SchemaWalk::Finish() {
    while (!stack.empty()) {
        ZoStreamableBase* object = stack.back();
        stack.pop_back();
        if (HandleAccess::Get(visited, object) != 0) continue;
        if (const TZoClass* objectClass = ClassOf(object)) Visit(object, objectClass);
    }
}

void SchemaWalk::Visit(ZoStreamableBase* object, const TZoClass* objectClass) {
    Plan& plan = BuiltPlanOf(objectClass);
    // Objects that lead nowhere need no mark: meeting them again does no harm.
    if (plan.steps.empty()) return;
    HandleAccess::Set(visited, object, 1);
    AskAll(object, plan);
}

void SchemaWalk::AskAll(ZoStreamableBase* object, Plan& plan) {
    for (std::size_t i = 0; i < plan.steps.size();) {
        Step& step = plan.steps[i];
        if (!step.follows && IsSettled(step)) {
            step = plan.steps.back();
            plan.steps.pop_back();
            continue;
        }
        targets.clear();
        auto gather = Gather(targets);
        step.field->GetFieldMetaData(object, gather);
        if (step.follows) PushTargets();
        if (targets.empty() && !step.nullTold) {
            step.nullTold = true;
            UseDeclared(step.field->GetFieldClass());
        }
        ++i;
    }
}

/// Puts those targets on the stack that can lead further.
void SchemaWalk::PushTargets() {
    met += targets.size();
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (i + PREFETCH < targets.size()) Prefetch(targets[i + PREFETCH]);
        const TZoClass* targetClass = ClassOf(targets[i]);
        if (targetClass != nullptr && !BuiltPlanOf(targetClass).steps.empty()) stack.push_back(targets[i]);
    }
}

void SchemaWalk::Use(const TZoClass* usedClass) {
    Plan& plan = PlanOf(usedClass);
    if (plan.used) return;
    plan.used = true;
    for (const auto& parent : usedClass->parents) Use(parent.get());
}

bool SchemaWalk::IsSettled(Step& step) {
    if (step.nullTold) return true;
    const auto& closure = ClosureOf(step.field->GetFieldClass());
    while (step.missing < closure.size() && PlanOf(closure[step.missing]).used) ++step.missing;
    return step.missing == closure.size();
}

const std::vector<const TZoClass*>& SchemaWalk::ClosureOf(const TZoClass* declared) {
    static const std::vector<const TZoClass*> nothing;
    // A pointer typed only by a generic base says nothing about what the file may hold.
    if (declared == nullptr || TZoMetaData::IsGenericBase(declared->GetName())) return nothing;
    Plan& plan = PlanOf(declared);
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
            add(field.GetFieldClass());
            if (field.GetFieldType() != ftChildPointerMap) return;
            const auto& map = static_cast<const TZoClassFieldPointerMap&>(field);
            for (const TZoClassField* half : {map.GetKeyField(), map.GetValueField()}) {
                if (half != nullptr) add(half->GetFieldClass());
            }
        });
    }
    plan.closed = true;
    return plan.closure;
}

} // namespace ZoPrimitives
