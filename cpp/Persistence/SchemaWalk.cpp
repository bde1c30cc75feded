#include "Persistence/SchemaWalk.h"

#include "Persistence/HandleAccess.h"

namespace ZoPrimitives {

/// Puts a field's targets on the stack and notes whether there was one.
class SchemaWalk::Targets : public ZoStreamableBaseFunctor {
public:
    explicit Targets(std::vector<ZoStreamableBase*>& stack) : stack(stack) {}
    void operator()(ZoStreamableBase* item) override {
        if (item == nullptr) return;
        any = true;
        stack.push_back(item);
    }

    bool any = false;

private:
    std::vector<ZoStreamableBase*>& stack;
};

SchemaWalk::ClassState& SchemaWalk::State(const TZoClass* someClass) {
    const auto id = static_cast<std::size_t>(someClass->GetClassId());
    if (id >= states.size()) states.resize(id + 1);
    return states[id];
}

bool SchemaWalk::Uses(const TZoClass* someClass) const {
    const auto id = static_cast<std::size_t>(someClass->GetClassId());
    return id < states.size() && states[id].used;
}

void SchemaWalk::Run(ZoStreamableBase* root) {
    if (root == nullptr) return;
    stack.push_back(root);
    while (!stack.empty()) {
        ZoStreamableBase* object = stack.back();
        stack.pop_back();
        if (HandleAccess::Get(visited, object) == 0) Visit(object);
    }
}

void SchemaWalk::Visit(ZoStreamableBase* object) {
    HandleAccess::Set(visited, object, 1);
    const TZoClass* objectClass = object->GetOriginalClass(schema);
    if (objectClass == nullptr) return; // giving out the uids reports it
    Use(objectClass);
    VisitLevel(object, objectClass);
}

void SchemaWalk::VisitLevel(ZoStreamableBase* object, const TZoClass* level) {
    for (const auto& parent : level->parents) VisitLevel(object, parent.get());
    for (const auto& field : level->fieldsChilds) {
        if (ZoStreamableBase* child = static_cast<TZoClassFieldPointer*>(field.get())->Get(object)) {
            stack.push_back(child);
        } else {
            FollowDeclared(*field, level);
        }
    }
    const auto follow = [&](const TZoClassField& field, bool written) {
        if (!written && State(level).fieldFollowed.size() > field.ordinal &&
            State(level).fieldFollowed[field.ordinal]) {
            return;
        }
        const std::size_t before = stack.size();
        Targets targets(stack);
        const_cast<TZoClassField&>(field).GetFieldMetaData(object, targets);
        if (!written) stack.resize(before); // whoever owns the target leads to it
        if (!targets.any) FollowDeclared(field, level);
    };
    for (const auto& field : level->fieldsChildMaps) follow(*field, true);
    for (const auto& field : level->fieldsChildLists) follow(*field, true);
    for (const auto& field : level->fieldsReferences) follow(*field, field->GetFieldType() == ftPointerEx);
    for (const auto& field : level->fieldsReferencesLists)
        follow(*field, field->GetFieldType() == ftPointerListEx);
}

void SchemaWalk::Use(const TZoClass* usedClass) {
    ClassState& state = State(usedClass);
    if (state.used) return;
    state.used = true;
    for (const auto& parent : usedClass->parents) Use(parent.get());
}

void SchemaWalk::FollowDeclared(const TZoClassField& field, const TZoClass* level) {
    auto& followed = State(level).fieldFollowed;
    if (followed.size() <= field.ordinal) followed.resize(level->fieldCount);
    if (followed[field.ordinal]) return;
    followed[field.ordinal] = true;
    FollowDeclared(field.GetFieldClass());
}

void SchemaWalk::FollowDeclared(const TZoClass* declared) {
    std::vector<const TZoClass*> waiting{declared};
    while (!waiting.empty()) {
        const TZoClass* next = waiting.back();
        waiting.pop_back();
        // A pointer typed by a generic base says nothing about what the file may hold.
        if (next == nullptr || TZoMetaData::IsGenericBase(next->GetName()) || State(next).declaredFollowed)
            continue;
        State(next).declaredFollowed = true;
        Use(next);
        for (const auto& parent : next->parents) waiting.push_back(parent.get());
        next->ForEachPointerField(
            [&waiting](const TZoClassField& field) { waiting.push_back(field.GetFieldClass()); });
    }
}

} // namespace ZoPrimitives
