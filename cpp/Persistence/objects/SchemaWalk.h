#pragma once

#include "Persistence/objects/KeptObject.h"
#include "Persistence/objects/UsedClasses.h"
#include "ZoPrimitives/ZoHandleTable.h"

#include <vector>

namespace ZoPrimitives {

/// Walks the graph under some roots and finds the classes that a file of it needs.
class SchemaWalk {
public:
    explicit SchemaWalk(TZoMetaData* schema);

    void Run(ZoStreamableBase* root);
    /// The same, with the root as an object of the given class.
    void Run(ZoStreamableBase* root, const TZoClass& rootClass);
    /// How many objects were met. Shared ones may count more than once.
    std::size_t Met() const { return met; }
    const UsedClasses& Classes() const { return classes; }
    /// The opened files of which the objects have kept parts.
    const MergedSchema::Files& KeptFiles() const { return keptFiles.All(); }

private:
    TZoClass* ClassOf(const ZoStreamableBase* object);
    void Visit(ZoStreamableBase* object, const TZoClass& objectClass);
    void Ask(ZoStreamableBase* object, UsedClasses::Plan& plan);
    void Finish();
    void Push(const std::vector<ZoStreamableBase*>& targets);

    TZoMetaData* schema;
    std::size_t met = 0;
    ZoHandleTable visited;
    std::vector<ZoStreamableBase*> stack;
    FoundKeptFiles keptFiles;
    UsedClasses classes{UsedClasses::Children::Asked};
};

} // namespace ZoPrimitives
