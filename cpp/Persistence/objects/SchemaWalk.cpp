#include "Persistence/objects/SchemaWalk.h"

#include "Persistence/instances/HandleAccess.h"
#include "Platform/Compiler.h"

namespace ZoPrimitives {

SchemaWalk::SchemaWalk(TZoMetaData* applicationSchema) : schema(applicationSchema) {}

TZoClass* SchemaWalk::ClassOf(const ZoStreamableBase* object) {
    return object->GetOriginalClass(schema); // null is reported when uids are given
}

void SchemaWalk::Run(ZoStreamableBase* root) {
    if (root == nullptr) return;
    stack.push_back(root);
    Finish();
}

void SchemaWalk::Run(ZoStreamableBase* root, const TZoClass& rootClass) {
    if (root == nullptr) return;
    if (ClassOf(root) == &rootClass) return Run(root);
    Ask(root, classes.PlanOf(rootClass));
    Finish();
}

void SchemaWalk::Finish() {
    while (!stack.empty()) {
        ZoStreamableBase* object = stack.back();
        stack.pop_back();
        if (HandleAccess::Get(visited, object) != 0) continue;
        if (const TZoClass* objectClass = ClassOf(object)) Visit(object, *objectClass);
    }
}

void SchemaWalk::Visit(ZoStreamableBase* object, const TZoClass& objectClass) {
    UsedClasses::Plan& plan = classes.PlanOf(objectClass);
    // Objects that lead nowhere need no mark: meeting them again is harmless.
    const bool hasKept = KeptParts::Has(*object);
    if (plan.steps.empty() && !hasKept) return;
    HandleAccess::Set(visited, object, 1);
    if (hasKept) {
        keptFiles.Add(*object);
        auto push = ZoItemAction([this](ZoStreamableBase* item) { stack.push_back(item); });
        KeptReferences::ForEachSaved(*object, *schema, push);
    }
    Ask(object, plan);
}

void SchemaWalk::Ask(ZoStreamableBase* object, UsedClasses::Plan& plan) {
    classes.Ask(object, plan, [this](const std::vector<ZoStreamableBase*>& targets) { Push(targets); });
}

/// Puts the targets that can lead further on the stack.
void SchemaWalk::Push(const std::vector<ZoStreamableBase*>& targets) {
    met += targets.size();
    for (std::size_t i = 0; i < targets.size(); ++i) {
        FetchAhead(targets, i, targets.size(), [](const void* later) { Prefetch(later); });
        const TZoClass* targetClass = ClassOf(targets[i]);
        if (targetClass != nullptr &&
            (!classes.PlanOf(*targetClass).steps.empty() || KeptParts::Has(*targets[i])))
            stack.push_back(targets[i]);
    }
}

} // namespace ZoPrimitives
