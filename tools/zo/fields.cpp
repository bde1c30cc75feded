#include "fields.h"

#include "text.h"

#include <fmt/format.h>

#include <unordered_set>

namespace ZoTool {

using namespace ZoPrimitives;

const char* KindName(TZoClassFieldType kind) {
    switch (kind) {
    case ftInt:
        return "int";
    case ftFloat:
        return "float";
    case ftDouble:
        return "double";
    case ftString:
        return "string";
    case ftBlob:
        return "blob";
    case ftChildPointer:
        return "owned";
    case ftChildPointerList:
        return "owned list";
    case ftPointer:
        return "reference";
    case ftPointerList:
        return "list of references";
    case ftBool:
        return "bool";
    case ftListInt:
        return "list of int";
    case ftListFloat:
        return "list of float";
    case ftListDouble:
        return "list of double";
    case ftListString:
        return "list of string";
    case ftPointerEx:
        return "external reference";
    case ftPointerListEx:
        return "list of external references";
    case ftUnsigned:
        return "unsigned";
    case ftChildValue:
        return "member";
    case ftChildPointerMap:
        return "owned map";
    }
    return "unknown";
}

namespace {

// What stands between the kind and the class.
const char* Link(TZoClassFieldType kind) {
    switch (kind) {
    case ftChildPointerList:
    case ftChildPointerMap:
        return " of ";
    case ftPointer:
    case ftPointerList:
    case ftPointerEx:
    case ftPointerListEx:
        return " to ";
    default:
        return " ";
    }
}

} // namespace

std::string TypeOf(const TZoClassField& field) {
    const TZoClassFieldType kind = field.GetFieldType();
    if (!field.IsPointerKind()) return KindName(kind);
    const TZoClass* const target = field.GetFieldClass();
    return fmt::format("{}{}{}", KindName(kind), Link(kind),
                       target == nullptr ? "any class" : ClassName(*target));
}

std::vector<TZoClass*> ClassesOf(const TZoMetaData& schema) {
    std::vector<TZoClass*> classes;
    for (int i = 1; i <= schema.GetClassCount(); ++i) classes.push_back(schema.GetClass(i));
    return classes;
}

std::vector<TZoClassField*> OwnFields(TZoClass& type) {
    std::vector<TZoClassField*> fields;
    for (int i = 1; i <= type.GetFieldCount(); ++i) fields.push_back(type.GetField(i));
    return fields;
}

std::vector<TZoClassField*> AllFields(TZoClass& type) {
    std::vector<TZoClassField*> fields;
    for (TZoClass* const parent : ParentsOf(type)) {
        for (TZoClassField* const field : AllFields(*parent)) fields.push_back(field);
    }
    for (TZoClassField* const field : OwnFields(type)) fields.push_back(field);
    return fields;
}

std::string Lower(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

std::vector<std::string> UniqueNames(const std::vector<TZoClassField*>& fields,
                                     const std::vector<std::string>& taken) {
    std::unordered_set<std::string> used;
    for (const std::string& name : taken) used.insert(Lower(name));
    std::vector<std::string> names;
    for (const TZoClassField* const field : fields) {
        std::string name = Utf8(field->GetFieldName());
        if (used.count(Lower(name)) != 0) name = Utf8(field->GetOwnerClass()->GetName()) + "." + name;
        const std::string base = name;
        for (int i = 2; !used.insert(Lower(name)).second; ++i) name = fmt::format("{}#{}", base, i);
        names.push_back(std::move(name));
    }
    return names;
}

std::vector<TZoClass*> ParentsOf(const TZoClass& type) {
    std::vector<TZoClass*> parents;
    for (const pointer<TZoClass>& parent : *type.GetParentClasses()) parents.push_back(parent.get());
    return parents;
}

} // namespace ZoTool
