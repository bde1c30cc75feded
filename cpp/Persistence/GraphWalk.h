#pragma once

#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/dvector.h"

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

    /// Walks what hangs from `root`. An object that has a uid is not walked again.
    void Run(ZoStreamableBase* root);
    /// The objects that were given uids, in rising order, without gaps.
    const std::vector<Entry>& Order() const { return order; }

private:
    class Pusher;
    // An object to visit, or, with a class, the external references of one level of an object to collect.
    struct Step {
        ZoStreamableBase* object;
        const TZoClass* level;
    };

    void Visit(ZoStreamableBase* object);
    void PushLevels(ZoStreamableBase* object, const TZoClass* level);
    void CollectExternals(ZoStreamableBase* object, const TZoClass* level);
    void AddExternal(ZoStreamableBase* target);

    TBinOutStream& stream;
    TZoMetaData* schema;
    TDList<ZoStreamableBase*>& externals;
    std::unordered_set<const ZoStreamableBase*> knownExternals;
    std::vector<Step> stack;
    std::vector<Entry> order;
};

/// The registered class of an object that is to be written. An object without one fails the writer's
/// assertion.
TZoClass* ClassToWrite(TZoMetaData* schema, const ZoStreamableBase* object);

} // namespace ZoPrimitives
