#include "Persistence/objects/ReportBuilder.h"

#include "Persistence/instances/InstanceTables.h"
#include "Persistence/schema/RecordOrder.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <algorithm>
#include <tuple>
#include <unordered_set>
#include <vector>

namespace ZoPrimitives {

ReportBuilder::ReportBuilder(const TBinInStream& stream, TZoMetaData& file, bool partial) {
    report.partial = partial;
    report.passedOver = stream.GetPassedOver();
    CountRecords(stream, file);
    CompareFields(file, InstanceTables::Of(stream).takenFields);
    TakeReferences(stream);
}

/// Where a class without fields is in the schema, the header counts records that were not written.
void ReportBuilder::CountRecords(const TBinInStream& stream, const TZoMetaData& file) {
    report.read = stream.GetLoaded();
    for (int i = 1; i <= file.GetClassCount(); ++i) {
        const TZoClass& fileClass = *file.GetClass(i);
        if (!fileClass.GetAbstract() && !RecordOrder::HasFields(fileClass)) return;
    }
    if (!report.partial) report.expected = stream.GetNInstances();
}

void ReportBuilder::CompareFields(TZoMetaData& file, const std::unordered_set<const TZoClassField*>& taken) {
    std::unordered_set<const TZoClass*> described;
    for (int i = 1; i <= file.GetClassCount(); ++i) described.insert(file.GetClass(i)->GetOriginal());
    std::unordered_set<const TZoClass*> absent;
    for (int i = 1; i <= file.GetClassCount(); ++i) {
        TZoClass& fileClass = *file.GetClass(i);
        TZoClass* original = fileClass.GetOriginal();
        if (original == nullptr) continue;
        for (const TZoClassField* field : RecordOrder::FieldsOf(fileClass)) {
            if (field->GetOriginal() != nullptr || taken.count(field) != 0) continue;
            const TZoClassField* other = original->FindField(field->GetFieldName());
            if (other == nullptr) other = original->FindFormerField(field->GetFieldName());
            report.fields.Add({fileClass.GetName(), field->GetFieldName(),
                               other == nullptr ? TFieldFault::NotInClass : TFieldFault::OtherKind,
                               field->GetFieldType(), other == nullptr ? 0 : other->GetFieldType()});
        }
        RecordOrder::ForEachLevel(*original, [&](const TZoClass& level) {
            const bool own = &level == original;
            if (own || (described.count(&level) == 0 && absent.insert(&level).second))
                AddAbsent(fileClass, level);
        });
    }
}

/// The fields of a level of the application's class that the file's class has neither itself nor inherited.
void ReportBuilder::AddAbsent(TZoClass& fileClass, const TZoClass& level) {
    std::unordered_set<const TZoClassField*> named; // by a former name, of whatever kind
    RecordOrder::ForEachLevel(fileClass, [&](const TZoClass& fileLevel) {
        for (const TZoClassField* field : RecordOrder::FieldsOf(fileLevel))
            named.insert(fileClass.GetOriginal()->FindFormerField(field->GetFieldName()));
    });
    for (const TZoClassField* field : RecordOrder::FieldsOf(level)) {
        if (named.count(field) == 0 && fileClass.FindField(field->GetFieldName()) == nullptr)
            report.fields.Add(
                {level.GetName(), field->GetFieldName(), TFieldFault::NotInFile, 0, field->GetFieldType()});
    }
}

/// In the order of their names, not of the addresses that they are counted by.
void ReportBuilder::TakeReferences(const TBinInStream& stream) {
    std::vector<TZoReadReport::Reference> all;
    for (const auto& [lost, count] : InstanceTables::Of(stream).lost.GetCounts()) {
        const TZoClass* owner = lost.first->GetOwnerClass();
        all.push_back({owner != nullptr ? owner->GetName() : ZoString(), lost.first->GetFieldName(),
                       lost.second, count});
    }
    const auto byName = [](const TZoReadReport::Reference& a, const TZoReadReport::Reference& b) {
        return std::tie(a.className, a.field, a.why) < std::tie(b.className, b.field, b.why);
    };
    std::sort(all.begin(), all.end(), byName);
    for (const TZoReadReport::Reference& reference : all) report.references.Add(reference);
}

} // namespace ZoPrimitives
