#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/ZoMetaData.h"

namespace ZoPrimitives {

class AwaitedMembers;

/// Reads a stream's records into objects through the file's classes, and hands the objects that pointers name
/// to their fields afterwards.
class ObjectReader {
public:
    /// Which objects get an entry for resolving their pointers.
    enum class Entries {
        All,
        Waiting ///< those whose pointers cannot be resolved as soon as they are read
    };

    /// `awaited` (may be null) is told of the members that can be read in place.
    ObjectReader(TBinInStream& stream, Entries entries, AwaitedMembers* awaited)
        : stream(stream), direct(stream.GetsDirectly()), entries(entries), awaited(awaited) {}

    /// Reads the current record; `fileClass` is the file's class of the object.
    void Read(TZoClass& fileClass, ZoStreamableBase* object) const;
    /// Reads the fields through the stream's virtual operations; adds no entry.
    static void ReadFields(TBinInStream& stream, TZoClass& fileClass, ZoStreamableBase* object);
    static void Resolve(const TZoClass& fileClass, TZoPointerResolver& resolver, ZoStreamableBase* object);
    /// Whether `Resolve` has anything to set in objects of that class; members have what they hold.
    static bool Resolves(const TZoClass& fileClass);

private:
    void ResolveAtOnce(const TZoClass& fileClass, ZoStreamableBase* object) const;
    template <class Source>
    static void ReadLevels(const Source& take, TZoClass& level, const TZoClass& objectClass,
                           ZoStreamableBase* object);

    TBinInStream& stream;
    bool direct; // values are taken without virtual calls
    Entries entries;
    AwaitedMembers* awaited;
};

} // namespace ZoPrimitives
