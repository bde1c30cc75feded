#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <vector>

namespace ZoPrimitives {

/// Finds what an application's schema would lose in silence.
class SchemaCheck {
public:
    explicit SchemaCheck(const TZoMetaData& checkedSchema) : schema(checkedSchema) {}

    /// Returns a line for each parent, field class and kept class that is not registered.
    std::vector<ZoString> Missing() const;
    /// Returns a line for each registration that is sound and loses data all the same. Makes an object of
    /// each class.
    std::vector<ZoString> Warnings() const;

    static void Append(ZoString& report, const std::vector<ZoString>& lines);

private:
    void AddMissingClass(std::vector<ZoString>& lines, const TZoClassField& field,
                         const TZoClassField& target) const;
    void AddBasesLeftOut(std::vector<ZoString>& lines, TZoClass& checked) const;
    void AddSharedFormerNames(std::vector<ZoString>& lines, const TZoClass& checked) const;
    void AddEmptyTargets(std::vector<ZoString>& lines, const TZoClass& checked) const;
    bool IsHere(const TZoClass& named) const { return schema.FindClass(named.GetClassId()) == &named; }

    const TZoMetaData& schema;
};

} // namespace ZoPrimitives
