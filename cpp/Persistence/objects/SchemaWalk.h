#pragma once

#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <vector>

namespace ZoPrimitives {

/// Finds the classes that a file of the graph under some roots needs: those of all objects that would be
/// written, with their ancestors, and, where a pointer is null or a list empty, the declared class with all
/// that it declares.
class SchemaWalk {
public:
    explicit SchemaWalk(TZoMetaData* schema);
    ~SchemaWalk();

    void Run(ZoStreamableBase* root);
    /// The same, with the root as an object of the given class.
    void Run(ZoStreamableBase* root, const TZoClass* rootClass);
    /// How many objects were met; shared ones may count more than once.
    std::size_t Met() const { return met; }
    /// Finds the class, its ancestors and all that they declare.
    void UseDeclared(const TZoClass* declared) {
        for (const TZoClass* reached : ClosureOf(declared)) Use(reached);
    }
    /// Whether the class was found to be used.
    bool Uses(const TZoClass* someClass) const;

private:
    /// A pointer field that may still tell something new.
    struct Step {
        TZoClassFieldPointerBase* field;
        bool follows;     // leads to objects that would be written
        bool nullTold;    // the declared class is in, with all that it declares
        unsigned missing; // in the closure of the declared class: the first class not known to be used
    };
    struct Plan {
        bool built = false;
        bool used = false;
        bool closed = false;
        std::vector<Step> steps;              // of all levels
        std::vector<const TZoClass*> closure; // the class, and all that it declares or derives from
    };

    TZoClass* ClassOf(const ZoStreamableBase* object);
    Plan& PlanOf(const TZoClass* someClass);
    Plan& BuiltPlanOf(const TZoClass* objectClass);
    void Visit(ZoStreamableBase* object, const TZoClass* objectClass);
    void AskAll(ZoStreamableBase* object, Plan& plan);
    void Finish();
    void PushTargets();
    void Use(const TZoClass* usedClass);
    /// Whether nothing new can come of the field's declared class.
    bool IsSettled(Step& step);
    const std::vector<const TZoClass*>& ClosureOf(const TZoClass* declared);

    TZoMetaData* schema;
    std::size_t met = 0;
    ZoHandleTable visited;
    std::vector<ZoStreamableBase*> stack;
    std::vector<ZoStreamableBase*> targets; // of the field at hand
    std::vector<Plan*> plans;               // by class id
};

} // namespace ZoPrimitives
