#include "schemadiff.h"

#include "fields.h"
#include "text.h"
#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

// Kinds of one encoding are read as each other.
TZoClassFieldType EncodingOf(TZoClassFieldType kind) {
    switch (kind) {
    case ftChildValue:
        return ftChildPointer;
    case ftPointerEx:
        return ftPointer;
    case ftPointerListEx:
        return ftPointerList;
    default:
        return kind;
    }
}

std::string ParentNames(const TZoClass& type) {
    std::string names;
    for (const TZoClass* const parent : ParentsOf(type))
        names += (names.empty() ? "" : ", ") + ClassName(*parent);
    return names.empty() ? Words("none") : names;
}

TZoClassField* OwnField(TZoClass& type, const ZoString& name) {
    for (TZoClassField* const field : OwnFields(type)) {
        if (field->GetFieldName() == name) return field;
    }
    return nullptr;
}

std::string Declaration(TZoClass& type) {
    const std::string parents = ParentsOf(type).empty() ? "" : ": " + ParentNames(type);
    std::string fields;
    for (const TZoClassField* const field : OwnFields(type)) {
        fields += fmt::format("{}{} {}", fields.empty() ? "" : ", ", FieldName(*field), TypeOf(*field));
    }
    return fmt::format("{} {}{}{} ({})", Words("class"), ClassName(type),
                       type.GetAbstract() ? ", " + Words("abstract") : "", parents,
                       fields.empty() ? Words("no fields") : fields);
}

void CompareClass(TZoClass& a, TZoClass& b, std::vector<std::string>& lines) {
    const std::string name = ClassName(a);
    if (ParentNames(a) != ParentNames(b))
        lines.push_back(Words("~ class {}: parents {} -> {}", name, ParentNames(a), ParentNames(b)));
    if (a.GetAbstract() != b.GetAbstract()) {
        const auto word = [](const TZoClass& type) {
            return type.GetAbstract() ? Words("abstract") : Words("not abstract");
        };
        lines.push_back(Words("~ class {}: {} -> {}", name, word(a), word(b)));
    }
    for (const TZoClassField* const field : OwnFields(a)) {
        const TZoClassField* const other = OwnField(b, field->GetFieldName());
        if (other == nullptr) {
            lines.push_back(fmt::format("- {}.{}: {}", name, FieldName(*field), TypeOf(*field)));
        } else if (TypeOf(*field) != TypeOf(*other)) {
            lines.push_back(
                fmt::format("~ {}.{}: {} -> {}", name, FieldName(*field), TypeOf(*field), TypeOf(*other)));
        }
    }
    for (const TZoClassField* const field : OwnFields(b)) {
        if (OwnField(a, field->GetFieldName()) == nullptr)
            lines.push_back(fmt::format("+ {}.{}: {}", name, FieldName(*field), TypeOf(*field)));
    }
}

/// What the reader makes of a file's objects of a class: its class of that name, or the nearest ancestor that
/// it knows.
TZoClass* MadeOf(const TZoMetaData& reader, TZoClass& fileClass) {
    TZoClass* known = reader.FindClass(fileClass.GetName());
    if (known != nullptr) return known->GetAbstract() ? nullptr : known;
    for (TZoClass* ancestor = fileClass.GetParentClass(); ancestor != nullptr;
         ancestor = ancestor->GetParentClass()) {
        known = reader.FindClass(ancestor->GetName());
        if (known != nullptr) return known->GetAbstract() ? nullptr : known;
    }
    return nullptr;
}

} // namespace

std::vector<std::string> SchemaChanges(const TZoMetaData& a, const TZoMetaData& b) {
    std::vector<std::string> lines;
    for (TZoClass* const type : ClassesOf(a)) {
        TZoClass* const other = b.FindClass(type->GetName());
        if (other == nullptr) {
            lines.push_back("- " + Declaration(*type));
        } else {
            CompareClass(*type, *other, lines);
        }
    }
    for (TZoClass* const type : ClassesOf(b)) {
        if (a.FindClass(type->GetName()) == nullptr) lines.push_back("+ " + Declaration(*type));
    }
    return lines;
}

std::vector<std::string> SchemaLosses(const TZoMetaData& reader, const TZoMetaData& file) {
    std::vector<std::string> lines;
    std::map<const TZoClassField*, std::set<std::string>> lost; // the classes whose objects lose the field
    std::vector<const TZoClassField*> order;
    for (TZoClass* const type : ClassesOf(file)) {
        if (type->GetAbstract()) continue;
        TZoClass* const made = MadeOf(reader, *type);
        if (made == nullptr) {
            lines.push_back(
                Words("objects of {}: none is made, and references to them become null", ClassName(*type)));
            continue;
        }
        if (made->GetName() != type->GetName())
            lines.push_back(Words("objects of {}: read as {}", ClassName(*type), ClassName(*made)));
        for (const TZoClassField* const field : AllFields(*type)) {
            const TZoClassField* const same = made->FindField(field->GetFieldName());
            if (same != nullptr && EncodingOf(same->GetFieldType()) == EncodingOf(field->GetFieldType()))
                continue;
            if (lost[field].empty()) order.push_back(field);
            lost[field].insert(ClassName(*type));
        }
    }
    for (const TZoClassField* const field : order) {
        lines.push_back(Words("values of {}.{} ({}) in objects of {}", ClassName(*field->GetOwnerClass()),
                              FieldName(*field), TypeOf(*field), fmt::join(lost[field], ", ")));
    }
    return lines;
}

} // namespace ZoTool
