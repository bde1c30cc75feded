#pragma once

#include "ZoPrimitives/ZoReadReport.h"

#include <unordered_set>

namespace ZoPrimitives {

class TBinInStream;
class TZoClass;
class TZoClassField;
class TZoMetaData;

/// Puts together what a reading's stream and schemas know of it.
class ReportBuilder {
public:
    /// `file`: the file's schema, linked to the application's. `partial`: only some classes were read.
    ReportBuilder(const TBinInStream& stream, TZoMetaData& file, bool partial);

    TZoReadReport report;

private:
    void CountRecords(const TBinInStream& stream, const TZoMetaData& file);
    void CompareFields(TZoMetaData& file, const std::unordered_set<const TZoClassField*>& taken);
    void AddAbsent(TZoClass& fileClass, const TZoClass& level);
    void TakeReferences(const TBinInStream& stream);
};

} // namespace ZoPrimitives
