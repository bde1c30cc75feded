#include "Persistence/schema/SchemaCheck.h"

#include "Persistence/schema/RecordOrder.h"

#include <memory>

namespace ZoPrimitives {

std::vector<ZoString> SchemaCheck::Missing() const {
    std::vector<ZoString> lines;
    for (const auto& checked : schema.classes) {
        bool parentsThere = !checked->parentMissing;
        for (const auto& parent : checked->parents) parentsThere = parentsThere && IsHere(*parent);
        if (!parentsThere) {
            lines.push_back(ZoString::FormatString("[zoerror] parent class of %s not registered",
                                                   checked->GetName().c_str()));
        }
        checked->ForEachPointerField([&](TZoClassField& field) {
            RecordOrder::ForEachTarget(
                field, [&](const TZoClassField& target) { AddMissingClass(lines, field, target); });
        });
    }
    for (const auto& kept : schema.registers) {
        if (schema.DoesClassExist(kept->GetName())) continue;
        lines.push_back(ZoString::FormatString(
            "[zoerror] class %s not registered. See ZoStreamableRegister::ReadyToRegister",
            kept->GetName().c_str()));
    }
    return lines;
}

void SchemaCheck::AddMissingClass(std::vector<ZoString>& lines, const TZoClassField& field,
                                  const TZoClassField& target) const {
    const TZoClass* known = target.GetFieldClass();
    const ZoString& className = known != nullptr ? known->GetName() : target.WantedClass(field);
    if ((known != nullptr && IsHere(*known)) || TZoMetaData::IsGenericBase(className)) return;
    // The line for a map need not be repeated for its sub-fields.
    if (&target != &field && className == field.GetFieldClassName()) return;
    lines.push_back(className.length() == 0
                        ? ZoString::FormatString("[zoerror] class of reference field %s not registered",
                                                 field.GetFieldName().c_str())
                        : ZoString::FormatString("[zoerror] class %s of reference field %s not registered",
                                                 className.c_str(), field.GetFieldName().c_str()));
}

std::vector<ZoString> SchemaCheck::Warnings() const {
    std::vector<ZoString> lines;
    for (const ZoString& name : schema.rivals) {
        lines.push_back(ZoString::FormatString(
            "[zowarning] two C++ classes are called %s: the second one is not registered", name.c_str()));
    }
    for (const auto& checked : schema.classes) {
        AddBasesLeftOut(lines, *checked);
        AddEmptyTargets(lines, *checked);
        AddSharedFormerNames(lines, *checked);
    }
    return lines;
}

/// Names of which a file's data can only come to one of those that had them.
void SchemaCheck::AddSharedFormerNames(std::vector<ZoString>& lines, const TZoClass& checked) const {
    for (const ZoString& former : checked.formerNames) {
        const TZoClass* first = schema.FindFormerClass(former);
        if (first == &checked) continue;
        lines.push_back(
            ZoString::FormatString("[zowarning] classes %s and %s both had the name %s. See ZO_CLASS_WAS",
                                   first->GetName().c_str(), checked.GetName().c_str(), former.c_str()));
    }
    for (const auto& [former, field] : checked.formerFieldNames) {
        const TZoClassField* first = checked.FindFormerField(former);
        if (first == field) continue;
        lines.push_back(ZoString::FormatString(
            "[zowarning] fields %s and %s of class %s both had the name %s. See ZO_FIELD_WAS",
            first->GetFieldName().c_str(), field->GetFieldName().c_str(), checked.GetName().c_str(),
            former.c_str()));
    }
}

void SchemaCheck::AddBasesLeftOut(std::vector<ZoString>& lines, TZoClass& checked) const {
    const std::unique_ptr<const ZoStreamableBase> object(checked.CreateInstance(nullptr, nullptr));
    if (object == nullptr) return;
    for (const auto& base : schema.classes) {
        if (base->typeTest == nullptr || checked.IsInherited(base.get()) || !base->typeTest(object.get()))
            continue;
        lines.push_back(ZoString::FormatString("[zowarning] class %s derives from %s, which its registration "
                                               "does not name: the fields of %s are "
                                               "not saved. See REGISTER_ZO_BEGIN",
                                               checked.GetName().c_str(), base->GetName().c_str(),
                                               base->GetName().c_str()));
    }
}

void SchemaCheck::AddEmptyTargets(std::vector<ZoString>& lines, const TZoClass& checked) const {
    checked.ForEachPointerField([&](TZoClassField& field) {
        RecordOrder::ForEachTarget(field, [&](const TZoClassField& target) {
            const TZoClass* known = target.GetFieldClass();
            if (known == nullptr || known->GetAbstract() || RecordOrder::HasFields(*known)) return;
            if (&target != &field && known == field.GetFieldClass()) return;
            lines.push_back(ZoString::FormatString(
                "[zowarning] class %s of reference field %s has no fields: its objects are not saved",
                known->GetName().c_str(), field.GetFieldName().c_str()));
        });
    });
}

void SchemaCheck::Append(ZoString& report, const std::vector<ZoString>& lines) {
    for (const ZoString& line : lines) {
        if (report.length() != 0) report += "\n";
        report += line;
    }
}

} // namespace ZoPrimitives
