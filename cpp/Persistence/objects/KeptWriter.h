#pragma once

#include "Persistence/objects/KeptObject.h"
#include "Persistence/schema/MergedSchema.h"

#include <vector>

namespace ZoPrimitives {

class TBinOutStream;

/// Writes a file that holds what was kept of others: its schema, and the records of objects that have kept
/// parts or whose classes have kept fields. An object has zeros in a field that is not kept for it.
class KeptWriter {
public:
    /// `used`: the application's classes that the file needs.
    KeptWriter(const TZoMetaData& application, const std::vector<TZoClass*>& used, MergedSchema::Files files)
        : merged(application, used, files), files(std::move(files)) {}

    void WriteSchema(TBinOutStream* stream) { merged.Save(stream); }
    /// Whether the schema has what the files' parts need.
    bool Covers(const MergedSchema::Files& others) const;
    /// Puts an object's record together. Returns the class that it is of, or null if it is written as ever:
    /// nothing is put then.
    const TZoClass* Put(TBinOutStream& stream, ZoStreamableBase* object, const TZoClass& objectClass) const;

private:
    class Record;

    MergedSchema merged;
    MergedSchema::Files files;
};

} // namespace ZoPrimitives
