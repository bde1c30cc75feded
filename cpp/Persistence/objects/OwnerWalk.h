#pragma once

#include "Persistence/objects/ObjectWriter.h"
#include "ZoPrimitives/pointer.h"

#include <unordered_set>
#include <vector>

namespace ZoPrimitives {

/// Keeps an object alive if `pointer`s own it. Otherwise that is left to its owner.
class Hold {
public:
    explicit Hold(ZoStreamableBase* object) : kept(ZoReferenceCount::Count(object) != 0 ? object : nullptr) {}
    /// Whether all others have let go of it.
    bool IsLast() const { return kept.get() != nullptr && ZoReferenceCount::Count(kept.get()) == 1; }
    void Release() { kept = nullptr; }

private:
    pointer<ZoStreamableBase> kept;
};

/// Writes the records of a graph owner by owner. The application's hooks, accessors, streams and streamers
/// may let go of objects meanwhile: an owner is asked what it holds when the turn of those records comes.
class OwnerWalk {
public:
    /// `ByHand` writes what was not saved, with or without a uid; `Numbered` only what has a uid. Neither
    /// walks below what was saved before; `NumberedAgain` does, each object once.
    enum class Mode { ByHand, Numbered, NumberedAgain };

    OwnerWalk(ObjectWriter& writer, TBinOutStream& stream, Mode mode);

    /// Saves what hangs from `object`; a null `objectClass` means its own class.
    void Run(ZoStreamableBase* object, TZoClass* objectClass);
    /// Saves what `object` owns through the targets, which outlive the call.
    void RunOwned(ZoStreamableBase* object, const std::vector<WritePlan::Target>& targets);
    /// Saves the external instances that were met, and those that are met meanwhile.
    void RunExternals();

private:
    /// An object whose targets are under way.
    struct Frame {
        ZoStreamableBase* object;
        Hold hold;
        const std::vector<WritePlan::Target>* targets;
        std::size_t target; // the one under way, from 1
        // What it held when it was asked, a part of `items`, and the next of these:
        std::size_t begin;
        std::size_t next;
        unsigned long long asked; // `changes` then
    };
    struct External {
        ZoStreamableBase* object;
        Hold hold;
    };

    bool IsDue(ZoStreamableBase* object);
    void Visit(ZoStreamableBase* object, TZoClass* objectClass);
    void Push(ZoStreamableBase* object, const Hold& hold, const std::vector<WritePlan::Target>& targets);
    void Finish();
    ZoStreamableBase* Next(Frame& frame);
    void Ask(Frame& frame);
    bool StillHolds(const Frame& frame) const;
    void CollectExternals(const TZoClass& level, ZoStreamableBase* object);
    void Collect(ZoStreamableBase* item);

    ObjectWriter& writer;
    TBinOutStream& stream;
    TZoMetaData* schema;
    bool direct;
    bool ownStreamer; // the library's, not one of the application
    Mode mode;
    unsigned long long changes = 0; // how often the application's code may have run
    std::vector<Frame> frames;
    std::vector<ZoStreamableBase*> items;
    std::vector<External> externals;
    std::unordered_set<const ZoStreamableBase*> knownExternals;
    std::unordered_set<const ZoStreamableBase*> met; // `NumberedAgain`: all; `ByHand`: those without a uid
};

} // namespace ZoPrimitives
