#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace ZoPrimitives {

/// The classes that a file needs: those of its objects, with their ancestors, and, where a pointer is null or
/// a list empty, the declared class with all that it declares in turn.
class UsedClasses {
public:
    /// A pointer field that may still tell something new.
    struct Step {
        TZoClassFieldPointerBase* field;
        bool follows;     // leads to objects that would be written
        bool nullTold;    // the declared class is used, with all that it declares
        unsigned missing; // the first class in the declared class's closure that is not known to be used
    };
    /// What is known of one class.
    struct Plan {
        bool built = false;
        bool used = false;
        bool closed = false;
        std::vector<Step> steps;              // of all levels
        std::vector<const TZoClass*> closure; // the class and all that it declares or derives from, in turn
    };
    /// Who finds out that an owning pointer is null: `Ask`, or the caller, who then calls `UseDeclared`.
    enum class Children { Asked, Told };

    explicit UsedClasses(Children children) : children(children) {}

    /// The plan of a class that has an object: the class is used.
    Plan& PlanOf(const TZoClass& objectClass) {
        const auto id = static_cast<std::size_t>(objectClass.GetClassId());
        if (id < plans.size() && plans[id] != nullptr && plans[id]->built) return *plans[id];
        return Build(objectClass);
    }
    /// Asks the pointers of an object. What those that follow hold goes to `follow`, a callable that takes a
    /// `std::vector<ZoStreamableBase*>&`.
    template <class Follow>
    void Ask(ZoStreamableBase* object, Plan& plan, Follow follow) {
        for (std::size_t i = 0; i < plan.steps.size();) {
            Step& step = plan.steps[i];
            if (!step.follows && IsSettled(step)) {
                step = plan.steps.back();
                plan.steps.pop_back();
                continue;
            }
            Gather(*step.field, object);
            if (step.follows) follow(targets);
            if (targets.empty() && !step.nullTold) {
                step.nullTold = true;
                UseDeclared(step.field->GetFieldClass());
            }
            ++i;
        }
    }
    /// Uses the class, its ancestors and all that they declare.
    void UseDeclared(const TZoClass* declared) {
        for (const TZoClass* reached : ClosureOf(declared)) Use(reached);
    }
    bool Uses(const TZoClass* someClass) const;

private:
    Plan& EntryOf(const TZoClass* someClass);
    Plan& Build(const TZoClass& objectClass);
    void Use(const TZoClass* usedClass);
    void Gather(TZoClassFieldPointerBase& field, ZoStreamableBase* object);
    /// Whether nothing new can come of the field's declared class.
    bool IsSettled(Step& step);
    const std::vector<const TZoClass*>& ClosureOf(const TZoClass* declared);

    Children children;
    std::vector<ZoStreamableBase*> targets;   // of the field at hand
    std::vector<std::unique_ptr<Plan>> plans; // by class id
};

} // namespace ZoPrimitives
