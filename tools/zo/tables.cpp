#include "tables.h"

#include "fields.h"
#include "filling.h"
#include "text.h"
#include "words.h"

#include <algorithm>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

const char* SqlType(TZoClassFieldType kind) {
    switch (kind) {
    case ftInt:
    case ftUnsigned:
    case ftBool:
    case ftListInt:
    case ftChildPointer:
    case ftChildPointerList:
    case ftPointer:
    case ftPointerList:
    case ftPointerEx:
    case ftPointerListEx:
    case ftChildValue:
    case ftChildPointerMap:
        return "INTEGER";
    case ftFloat:
    case ftDouble:
    case ftListFloat:
    case ftListDouble:
        return "REAL";
    case ftString:
    case ftListString:
        return "TEXT";
    case ftBlob:
        return "BLOB";
    }
    return "";
}

Tables::Columns ListColumns(TZoClassFieldType kind) {
    if (kind == ftChildPointerMap) return {{"position", "INTEGER"}, {"key", "INTEGER"}, {"value", "INTEGER"}};
    return {{"position", "INTEGER"}, {"item", SqlType(kind)}};
}

void Merge(Tables::Columns& columns, const std::string& name, const std::string& type) {
    const auto found =
        std::find_if(columns.begin(), columns.end(), [&](const auto& column) { return column.name == name; });
    if (found == columns.end()) {
        columns.push_back({name, type});
    } else if (found->type != type) {
        found->type.clear();
    }
}

void Merge(Tables::Columns& columns, const Tables::Columns& others) {
    for (const Tables::Column& other : others) Merge(columns, other.name, other.type);
}

std::string Create(const Tables::Table& table, bool hasFile) {
    if (table.kind == Tables::Kind::View)
        return fmt::format("CREATE VIEW {} AS {}", SqlName(table.name), table.select);
    std::string key;
    std::string rest;
    if (table.kind == Tables::Kind::Class || table.kind == Tables::Kind::Objects)
        key = hasFile ? "file, uid" : "uid";
    if (table.kind == Tables::Kind::List) {
        key = hasFile ? "file, uid, position" : "uid, position";
        rest = " WITHOUT ROWID";
    }
    std::string columns = hasFile ? "file TEXT" : "";
    for (const Tables::Column& column : table.columns) {
        columns += fmt::format("{}{} {}", columns.empty() ? "" : ", ", SqlName(column.name), column.type);
    }
    if (!key.empty()) columns += fmt::format(", PRIMARY KEY ({})", key);
    return fmt::format("CREATE TABLE {} ({}){}", SqlName(table.name), columns, rest);
}

} // namespace

Tables::Tables(Tool& itsTool, Database& itsDatabase, const std::vector<std::string>& words)
    : tool(itsTool), database(itsDatabase) {
    for (const std::string& word : words) files.push_back({word});
    for (File& file : files) {
        end = Worse(end, tool.Try(NameOf(file.word), [&] {
            auto input = std::make_unique<Input>(file.word);
            Collect(Model(tool, *input));
            if (file.word == "-") file.standardInput = std::move(input);
            return Exit::Good;
        }));
    }
    AddTables();
}

bool Tables::IsList(TZoClassFieldType kind) {
    switch (kind) {
    case ftListInt:
    case ftListFloat:
    case ftListDouble:
    case ftListString:
    case ftChildPointerList:
    case ftPointerList:
    case ftPointerListEx:
    case ftChildPointerMap:
        return true;
    case ftInt:
    case ftUnsigned:
    case ftBool:
    case ftFloat:
    case ftDouble:
    case ftString:
    case ftBlob:
    case ftChildPointer:
    case ftPointer:
    case ftPointerEx:
    case ftChildValue:
        return false;
    }
    return false;
}

std::vector<std::string> Tables::ColumnsOf(TZoClass& type) {
    std::vector<std::string> names = UniqueNames(AllFields(type), {"file", "uid", "class"});
    for (std::string& name : names) name = OnOneLine(name);
    return names;
}

void Tables::Collect(const Model& model) {
    const std::vector<TZoClass*> all = ClassesOf(model.Schema());
    for (TZoClass* const type : all) {
        Declared& declared = classes[ClassName(*type)];
        if (!type->GetAbstract()) declared.isMade = true;
        const std::vector<TZoClassField*> fields = AllFields(*type);
        const std::vector<std::string> names = ColumnsOf(*type);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const TZoClassFieldType kind = fields[i]->GetFieldType();
            if (!IsList(kind)) Merge(declared.columns, names[i], SqlType(kind));
        }
        for (const TZoClassField* const field : OwnFields(*type)) {
            const TZoClassFieldType kind = field->GetFieldType();
            if (IsList(kind)) Merge(declared.lists[FieldName(*field)], ListColumns(kind));
        }
        for (TZoClass* const derived : all) {
            if (!derived->GetAbstract() && derived->IsInherited(type)) CollectMade(declared, *type, *derived);
        }
    }
}

void Tables::CollectMade(Declared& base, TZoClass& type, TZoClass& derived) {
    const std::vector<TZoClassField*> fields = AllFields(type);
    const std::vector<TZoClassField*> others = AllFields(derived);
    const std::vector<std::string> names = ColumnsOf(type);
    const std::vector<std::string> otherNames = ColumnsOf(derived);
    std::map<std::string, std::string>& made = base.made[ClassName(derived)];
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto found = std::find(others.begin(), others.end(), fields[i]);
        if (found == others.end() || IsList(fields[i]->GetFieldType())) continue;
        made[names[i]] = otherNames[static_cast<std::size_t>(found - others.begin())];
    }
}

void Tables::AddTables() {
    for (const char* const own : {"objects", "links", "list_integers"}) taken.insert(own);
    for (const auto& [name, type] : classes) {
        if (!type.isMade) continue;
        Columns columns{{"uid", "INTEGER"}};
        columns.insert(columns.end(), type.columns.begin(), type.columns.end());
        classTables[name] = Add({Kind::Class, FreeName(name), columns, Words("class {}", name)});
    }
    for (const auto& [name, type] : classes) {
        if (!type.isMade || type.made.size() > 1) AddView(name, type);
    }
    for (const auto& [name, type] : classes) {
        for (const auto& [field, columns] : type.lists) {
            Columns all{{"uid", "INTEGER"}};
            all.insert(all.end(), columns.begin(), columns.end());
            listTables[{name, field}] =
                Add({Kind::List, FreeName(name + "_" + field), all, Words("list {} of {}", field, name)});
        }
    }
    Add({Kind::Objects,
         "objects",
         {{"uid", "INTEGER"},
          {"class", "TEXT"},
          {"record", "INTEGER"},
          {"offset", "INTEGER"},
          {"bytes", "INTEGER"}},
         Words("every object")});
    Add({Kind::Links,
         "links",
         {{"source", "INTEGER"},
          {"field", "TEXT"},
          {"position", "INTEGER"},
          {"target", "INTEGER"},
          {"owned", "INTEGER"}},
         Words("every pointer that is not null")});
    Add({Kind::Integers,
         "list_integers",
         {{"uid", "INTEGER"}, {"field", "TEXT"}, {"position", "INTEGER"}, {"value", "INTEGER"}},
         Words("integers that the application stores with lists")});
}

void Tables::AddView(const std::string& name, const Declared& type) {
    Columns columns{{"uid", "INTEGER"}, {"class", "TEXT"}};
    columns.insert(columns.end(), type.columns.begin(), type.columns.end());
    std::vector<std::string> selects;
    for (const auto& [made, places] : type.made) {
        std::string list = HasFileColumn() ? "file, uid, " : "uid, ";
        list += SqlText(made) + " AS class";
        for (const Column& column : type.columns) {
            const auto found = places.find(column.name);
            list += fmt::format(", {} AS {}", found == places.end() ? "NULL" : SqlName(found->second),
                                SqlName(column.name));
        }
        const Table* const table = OfClass(made);
        if (table != nullptr) selects.push_back(fmt::format("SELECT {} FROM {}", list, SqlName(table->name)));
    }
    if (selects.empty()) { // a class of which nothing can be made
        std::string list = HasFileColumn() ? "NULL AS file" : "";
        for (const Column& column : columns)
            list += fmt::format("{}NULL AS {}", list.empty() ? "" : ", ", SqlName(column.name));
        selects.push_back(fmt::format("SELECT {} WHERE 0", list));
    }
    Add({Kind::View, FreeName(type.isMade ? name + "_all" : name), columns,
         Words("{} and what derives from it", name), fmt::format("{}", fmt::join(selects, " UNION ALL "))});
}

std::string Tables::FreeName(const std::string& wanted) {
    // SQLite keeps these names.
    const std::string base = Lower(wanted).rfind("sqlite_", 0) == 0 ? "class_" + wanted : wanted;
    std::string name = base;
    for (int i = 2; !taken.insert(Lower(name)).second; ++i) name = fmt::format("{}_{}", base, i);
    return name;
}

const Tables::Table* Tables::Add(Table table) {
    std::string why;
    if (!database.TryRun(Create(table, HasFileColumn()), why)) {
        tool.Warn("", Words("there is no table {}: {}", table.name, why));
        end = Exit::Trouble;
        return nullptr;
    }
    tables.push_back(std::make_unique<Table>(std::move(table)));
    return tables.back().get();
}

const Tables::Table* Tables::OfClass(const std::string& name) const {
    const auto found = classTables.find(name);
    return found == classTables.end() ? nullptr : found->second;
}

const Tables::Table* Tables::OfList(const std::string& className, const std::string& field) const {
    const auto found = listTables.find({className, field});
    return found == listTables.end() ? nullptr : found->second;
}

void Tables::Fill(const Names& names) {
    database.Run("BEGIN");
    for (const File& file : files) {
        end = Worse(end, tool.Try(NameOf(file.word), [&] {
            if (file.standardInput != nullptr)
                return Filling(tool, database, *this, names, *file.standardInput).Run();
            return Filling(tool, database, *this, names, Input(file.word)).Run();
        }));
    }
    database.Run("COMMIT");
}

} // namespace ZoTool
