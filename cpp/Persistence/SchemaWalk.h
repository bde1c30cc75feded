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
    explicit SchemaWalk(TZoMetaData* schema) : schema(schema) {}

    void Run(ZoStreamableBase* root);
    /// Whether the class was found to be used.
    bool Uses(const TZoClass* someClass) const;

private:
    class Targets;
    struct ClassState {
        bool used = false;
        bool declaredFollowed = false;   // what its fields declare was followed
        std::vector<bool> fieldFollowed; // the same of single fields, by ordinal
    };

    void Visit(ZoStreamableBase* object);
    void VisitLevel(ZoStreamableBase* object, const TZoClass* level);
    void Use(const TZoClass* usedClass);
    void FollowDeclared(const TZoClassField& field, const TZoClass* level);
    void FollowDeclared(const TZoClass* declared);
    ClassState& State(const TZoClass* someClass);

    TZoMetaData* schema;
    ZoHandleTable visited;
    std::vector<ZoStreamableBase*> stack;
    std::vector<ClassState> states; // by class id
};

} // namespace ZoPrimitives
