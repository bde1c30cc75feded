#pragma once

#include "Persistence/schema/LayoutSearch.h"
#include "Persistence/schema/RecordOrder.h"
#include "ZoPrimitives/ZoRecords.h"

#include <vector>

namespace ZoPrimitives {

/// How the records of a class are taken apart.
struct RecordPlan {
    explicit RecordPlan(TZoClass& itsClass)
        : recordClass(itsClass), hasUnknownKind(!TZoRecordReader::KnowsAllKinds(itsClass)),
          steps(StepsOf(itsClass)), search(steps) {
        ends.resize(steps.size());
    }
    static std::vector<RecordStep> StepsOf(const TZoClass& recordClass) {
        std::vector<RecordStep> steps;
        RecordOrder::ForEachLevel(recordClass, [&](const TZoClass& level) {
            for (const TZoClassField* field : RecordOrder::FieldsOf(level))
                steps.push_back({field, {}, AllLayouts(field->GetFieldType()).size() == 1, false});
        });
        return steps;
    }
    /// Settles the layouts. Appends the fields for which that is not possible.
    template <class MayMean>
    void Settle(const MayMean& mayMean, TDVector<TZoRecordReader::Undecided>& undecided) {
        const LayoutSearch::Found found = search.Best(mayMean);
        std::size_t next = 0;
        for (RecordStep& step : steps) {
            if (!step.isTold && !found.layouts.empty()) step.layout = found.layouts[next++];
        }
        for (const TZoClassField* field : found.undecided) undecided.Add({&recordClass, field});
    }

    TZoClass& recordClass;
    bool hasUnknownKind;
    std::vector<RecordStep> steps;
    LayoutSearch search;
    std::vector<unsigned> ends; // of the values of the record at hand, in its payload
};

} // namespace ZoPrimitives
