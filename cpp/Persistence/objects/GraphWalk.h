#pragma once

#include "Persistence/objects/KeptObject.h"
#include "Persistence/objects/UsedClasses.h"
#include "Persistence/schema/WritePlan.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/dvector.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace ZoPrimitives {

class ProgressMeter;
class TBinOutStream;

/// Walks a graph of objects depth first, with a stack of its own. Gives each object without a uid the next
/// one and keeps the order. What an object owns follows it in the order of its record.
class GraphWalk {
public:
    /// Objects of one class that follow each other in the order.
    struct Series {
        TZoClass* objectClass;
        WritePlan* plan;
        std::size_t end; // in the order
    };

    /// `externals` collects what external references point to, each object once. `classes` (may be null) is
    /// told of the classes that a file of the graph needs.
    GraphWalk(TBinOutStream& stream, TZoMetaData* schema, WritePlans& plans,
              TDList<ZoStreamableBase*>& externals, UsedClasses* classes = nullptr);

    /// Has the meter count the objects met; it must outlive the walk.
    void TellTo(ProgressMeter& told);
    /// Makes room for an expected number of objects.
    void Reserve(std::size_t objects) { order.reserve(objects); }
    /// Walks what hangs from `root`, which may be null. An object that had a uid before is walked as well;
    /// none is walked twice. Two objects with one uid fail an assertion.
    void Run(ZoStreamableBase* root);
    /// The same, with the root as an object of the given class.
    void Run(ZoStreamableBase* root, TZoClass* rootClass);
    /// The objects in the order of their records: uids that were given here rise.
    const ZoVector<ZoStreamableBase*>& Order() const { return order; }
    const std::vector<Series>& OrderByClass() const { return series; }
    /// The opened files of which the objects have kept parts.
    const MergedSchema::Files& KeptFiles() const { return keptFiles.All(); }
    /// Whether no code of the application runs while the objects are written.
    bool IsSteady() const { return steady; }

private:
    /// An object to visit, or, with a class, the external references of one level of an object to collect.
    struct Visit {
        ZoStreamableBase* object;
        const TZoClass* externalsOf;
    };
    /// The visits below one object, a part of `waiting`.
    struct Frame {
        std::size_t begin;
        std::size_t next;
        std::size_t end;
    };

    bool Meet(const ZoStreamableBase* object);
    bool MeetGiven(int uid, const ZoStreamableBase* object);
    void Enter(ZoStreamableBase* object, TZoClass* objectClass);
    void CollectKept(ZoStreamableBase* object);
    void Collect(ZoStreamableBase* item);
    void BeginSeries(TZoClass* objectClass);
    void PushTargets(ZoStreamableBase* object, WritePlan& plan);
    void Finish();

    TBinOutStream& stream;
    TZoMetaData* schema;
    WritePlans& plans;
    TDList<ZoStreamableBase*>& externals;
    std::unordered_set<const ZoStreamableBase*> knownExternals;
    long long firstNew;                                     // the uids from here on are given by this walk
    std::unordered_map<int, const ZoStreamableBase*> given; // objects met that had a uid before
    ZoVector<Visit> waiting;
    std::vector<Frame> frames;
    ZoVector<ZoStreamableBase*> order;
    std::vector<Series> series;
    UsedClasses* classes;
    ProgressMeter* meter = nullptr;    // null unless it is used
    UsedClasses::Plan* used = nullptr; // of the latest series
    bool steady = true;
    FoundKeptFiles keptFiles;
};

/// Applies the action to the external references of one level of an object, nulls included.
void ForEachExternal(const TZoClass& level, ZoStreamableBase* object, ZoStreamableBaseFunctor& action);

[[noreturn]] void FailUnregistered(const ZoStreamableBase* object);

/// The registered class of an object that is to be written. An object without one fails the writer's
/// assertion.
inline TZoClass* ClassToWrite(TZoMetaData* schema, const ZoStreamableBase* object) {
    TZoClass* objectClass = object->GetOriginalClass(schema);
    if (objectClass == nullptr) FailUnregistered(object);
    return objectClass;
}

} // namespace ZoPrimitives
