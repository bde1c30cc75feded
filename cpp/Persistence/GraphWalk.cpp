#include "Persistence/GraphWalk.h"

#include "Persistence/ClassNames.h"
#include "Persistence/HandleAccess.h"
#include "ZoPrimitives/BinOutStream.h"

#include <algorithm>

namespace ZoPrimitives {

TZoClass* ClassToWrite(TZoMetaData* schema, const ZoStreamableBase* object) {
    TZoClass* objectClass = object->GetOriginalClass(schema);
    if (objectClass == nullptr) {
        const ZoString message = ZoString::FormatString(
            "[zoerror] class '%s' not register or not streamable. See 'class::Register' or "
            "'class : public ZoStreamableBase'",
            ClassText(typeid(*object)).c_str());
        AssertWithFunctor("instance_pointer->GetOriginalClass(parentMetaData)", message.c_str(),
                          "cpp/Persistence/ZoMetaData", __LINE__);
    }
    return objectClass;
}

class GraphWalk::Pusher : public ZoStreamableBaseFunctor {
public:
    explicit Pusher(std::vector<Step>& stack) : stack(stack) {}
    void operator()(ZoStreamableBase* item) override {
        if (item != nullptr) stack.push_back({item, nullptr});
    }

private:
    std::vector<Step>& stack;
};

GraphWalk::GraphWalk(TBinOutStream& stream, TZoMetaData* schema, TDList<ZoStreamableBase*>& externals)
    : stream(stream), schema(schema), externals(externals),
      knownExternals(externals.begin(), externals.end()) {}

void GraphWalk::Run(ZoStreamableBase* root) {
    stack.push_back({root, nullptr});
    while (!stack.empty()) {
        const Step step = stack.back();
        stack.pop_back();
        if (step.level != nullptr) {
            CollectExternals(step.object, step.level);
        } else if (stream.GetHandle(step.object) == 0) {
            Visit(step.object);
        }
    }
}

void GraphWalk::Visit(ZoStreamableBase* object) {
    TZoClass* objectClass = ClassToWrite(schema, object);
    stream.AllocateHandle(object);
    order.push_back({object, objectClass});
    const std::size_t first = stack.size();
    PushLevels(object, objectClass);
    // The stack gives the last step first.
    std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(first), stack.end());
}

void GraphWalk::PushLevels(ZoStreamableBase* object, const TZoClass* level) {
    for (const auto& parent : level->parents) PushLevels(object, parent.get());
    Pusher push(stack);
    for (const auto& field : level->fieldsChildMaps) field->GetFieldMetaData(object, push);
    for (const auto& field : level->fieldsChilds) {
        if (ZoStreamableBase* child = static_cast<TZoClassFieldPointer*>(field.get())->Get(object)) {
            stack.push_back({child, nullptr});
        }
    }
    for (const auto& field : level->fieldsChildLists) field->GetFieldMetaData(object, push);
    if (level->collectsExternals) stack.push_back({object, level});
}

void GraphWalk::CollectExternals(ZoStreamableBase* object, const TZoClass* level) {
    class Collector : public ZoStreamableBaseFunctor {
    public:
        explicit Collector(GraphWalk& walk) : walk(walk) {}
        void operator()(ZoStreamableBase* item) override { walk.AddExternal(item); }

    private:
        GraphWalk& walk;
    };

    Collector collect(*this);
    for (const auto& field : level->fieldsReferences) {
        if (field->GetFieldType() == ftPointerEx) field->GetFieldMetaData(object, collect);
    }
    for (const auto& field : level->fieldsReferencesLists) {
        if (field->GetFieldType() == ftPointerListEx) field->GetFieldMetaData(object, collect);
    }
}

void GraphWalk::AddExternal(ZoStreamableBase* target) {
    if (target != nullptr && knownExternals.insert(target).second) externals.Add(target);
}

} // namespace ZoPrimitives
