#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/ZoMetaData.h"

namespace ZoPrimitives {

class AwaitedMembers;

/// Reads a stream's records into objects through the file's classes, and hands the objects that pointers name
/// to their fields afterwards.
class ObjectReader {
public:
    /// Which objects get an entry for the resolving of pointers.
    enum class Entries {
        All,
        WithPointers,
        Waiting ///< references to objects that are there are resolved at once
    };

    /// `awaited` (may be null) learns of the members that can be read where they stand.
    ObjectReader(TBinInStream& stream, Entries entries, AwaitedMembers* awaited)
        : stream(stream), direct(stream.GetsDirectly()), entries(entries), awaited(awaited) {}

    /// Reads the current record; `fileClass` is the file's class of the object.
    void Read(TZoClass& fileClass, ZoStreamableBase* object) const;
    /// Reads the fields through the stream's virtual operations, without an entry.
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
