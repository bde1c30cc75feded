#pragma once

#include "Persistence/instances/HandleAccess.h"
#include "Persistence/objects/GraphWalk.h"
#include "Persistence/objects/KeptWriter.h"
#include "Persistence/records/ProgressMeter.h"
#include "Persistence/schema/WritePlan.h"
#include "ZoPrimitives/BinOutStreamer.h"

#include <cstdint>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// The uids saved since a stream's handles were last reset.
class SavedUids {
public:
    bool Has(const TBinOutStream& stream, const ZoStreamableBase* object) const {
        const int uid = HandleAccess::Get(stream, object);
        return uid != 0 && run == HandleAccess::RunOf(stream) &&
               ((uid >= first && uid < end) || others.count(uid) != 0);
    }
    void Add(const TBinOutStream& stream, int uid) {
        if (run != HandleAccess::RunOf(stream)) Begin(HandleAccess::RunOf(stream), uid);
        if (uid == end) {
            ++end;
        } else {
            others.insert(uid);
        }
    }
    /// How many uids were saved in the stream's current run.
    std::size_t CountOf(const TBinOutStream& stream) const {
        return run == HandleAccess::RunOf(stream) ? static_cast<std::size_t>(end - first) + others.size() : 0;
    }

private:
    void Begin(std::uint64_t newRun, int uid) {
        run = newRun;
        first = end = uid;
        others.clear();
    }

    std::uint64_t run = 0;
    long long first = 0; // all from here up to `end` were saved
    long long end = 0;
    std::unordered_set<int> others; // those saved out of this order
};

/// Writes one object's fields, its record, the records of what it owns, or a whole graph.
class ObjectWriter {
public:
    explicit ObjectWriter(TBinOutStreamer& itsStreamer) : streamer(itsStreamer) {}
    static ObjectWriter& Of(TBinOutStreamer& streamer) { return *streamer.writer; }

    /// What a file has of its schema record before a graph is written.
    enum class Schema { Written, Missing };
    /// Gives uids to all objects of the graph and writes their records, after the schema's if it is missing.
    /// `expected` is about how many objects there are.
    void WriteGraph(TBinOutStream& stream, const TDList<ZoStreamableBase*>& roots, Schema its,
                    std::size_t expected);

    /// Writes the record of an object, as one of the given class (null: its own), and the records of what it
    /// owns, each unless it was written before.
    void Save(TBinOutStream& stream, ZoStreamableBase* object, TZoClass* asClass);
    /// Writes the records of what the object owns through the fields of a class and its ancestors.
    void SaveOwned(TBinOutStream& stream, ZoStreamableBase* object, const TZoClass& objectClass);
    /// Writes the records of what one field holds.
    void SaveOwned(TBinOutStream& stream, ZoStreamableBase* object, TZoClassFieldPointerBase& field);
    /// Writes the fields of a class and its ancestors into the open record.
    static void WriteFields(TBinOutStream& stream, ZoStreamableBase* object, const TZoClass& objectClass);

    /// From here on the file holds what is kept of others.
    KeptWriter& Keep(std::unique_ptr<KeptWriter> newKept) {
        kept = std::move(newKept);
        return *kept;
    }

    /// Between these calls a whole graph's progress is told.
    void BeginProgress();
    void EndProgress();

    bool IsSaved(const TBinOutStream& stream, const ZoStreamableBase* object) const {
        return saved.Has(stream, object);
    }

private:
    friend class OwnerWalk;

    /// Returns whether the application's code may have run.
    bool SaveRecord(TBinOutStream& stream, bool direct, ZoStreamableBase* object, TZoClass* objectClass);
    /// Returns whether the record had to be written with what is kept.
    bool SaveKept(TBinOutStream& stream, ZoStreamableBase* object, const TZoClass& objectClass);
    void Close(TBinOutStream& stream, const ZoStreamableBase* object, const TZoClass& objectClass);
    void Number(GraphWalk& walk, const TDList<ZoStreamableBase*>& roots,
                const TDList<ZoStreamableBase*>& externals);
    void WriteRecords(TBinOutStream& stream, const TDList<ZoStreamableBase*>& roots, const GraphWalk& walk);
    void SaveInOrder(TBinOutStream& stream, const GraphWalk& walk);
    void SaveByOwners(TBinOutStream& stream, const TDList<ZoStreamableBase*>& roots, std::size_t numbered);

    TBinOutStreamer& streamer;
    std::unique_ptr<KeptWriter> kept; // null while nothing is kept
    WritePlans plans;
    SavedUids saved;
    ProgressMeter meter;
    std::size_t toSave = 0; // objects; 0: not known
};

} // namespace ZoPrimitives
