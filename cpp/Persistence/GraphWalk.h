#pragma once

#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/dvector.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace ZoPrimitives {

class TBinOutStream;

/// Walks a graph of objects depth first, with a stack of its own: gives each object the next uid and keeps
/// the order. What an object owns follows it in the order of its record: ancestors' maps, children and child
/// lists, then its own.
class GraphWalk {
public:
    struct Entry {
        ZoStreamableBase* object;
        TZoClass* objectClass;
    };

    /// `externals` collects what fields of external references point to, each object once.
    GraphWalk(TBinOutStream& stream, TZoMetaData* schema, TDList<ZoStreamableBase*>& externals);

    /// Makes room for an expected number of objects.
    void Reserve(std::size_t objects) { order.reserve(objects); }
    /// Walks what hangs from `root`. An object that has a uid is not walked again.
    void Run(ZoStreamableBase* root);
    /// The objects that were given uids, in rising order, without gaps.
    const std::vector<Entry>& Order() const { return order; }

private:
    /// An object to visit, or, with a class, the external references of one level of an object to collect.
    struct Visit {
        ZoStreamableBase* object;
        const TZoClass* externalsOf;
    };
    /// What an object of some class owns: one field, or the external references of a level.
    struct Step {
        TZoClassField* field;
        const TZoClass* externalsOf;
    };
    struct Plan {
        std::vector<Step> steps;
    };
    /// The visits below one object, a part of `waiting`.
    struct Frame {
        std::size_t begin;
        std::size_t next;
        std::size_t end;
    };

    void Enter(ZoStreamableBase* object);
    const Plan& PlanOf(const TZoClass* objectClass);
    void AddSteps(Plan& plan, const TZoClass* level);
    template <class Action>
    static void ForEachExternal(const TZoClass& level, Action action);
    void CollectExternals(ZoStreamableBase* object, const TZoClass* level);
    void AddExternal(ZoStreamableBase* target);

    TBinOutStream& stream;
    TZoMetaData* schema;
    TDList<ZoStreamableBase*>& externals;
    std::unordered_set<const ZoStreamableBase*> knownExternals;
    std::vector<std::unique_ptr<Plan>> plans; // by class id
    std::vector<Visit> waiting;
    std::vector<Frame> frames;
    std::vector<Entry> order;
};

[[noreturn]] void FailUnregistered(const ZoStreamableBase* object);

/// The registered class of an object that is to be written. An object without one fails the writer's
/// assertion.
inline TZoClass* ClassToWrite(TZoMetaData* schema, const ZoStreamableBase* object) {
    TZoClass* objectClass = object->GetOriginalClass(schema);
    if (objectClass == nullptr) FailUnregistered(object);
    return objectClass;
}

} // namespace ZoPrimitives
