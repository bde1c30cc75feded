#include "commands.h"
#include "database.h"
#include "fields.h"
#include "input.h"
#include "paths.h"
#include "table.h"
#include "tables.h"
#include "text.h"
#include "values.h"
#include "words.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace ZoTool {

using nlohmann::ordered_json;

namespace {

struct SqlOptions {
    std::vector<std::string> words;
    bool csv = false;
    bool json = false;
    bool jsonLines = false;
};

/// Whether a word is a query, and not the name of a file.
bool IsQuery(const std::string& word) {
    const std::size_t start = word.find_first_not_of(" \t\r\n(");
    if (start == std::string::npos) return false;
    const std::size_t end =
        word.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", start);
    const std::string first = Lower(word.substr(start, end == std::string::npos ? end : end - start));
    const bool reads = first == "select" || first == "with" || first == "values" || first == "explain";
    // Others are told that a query only reads.
    const char* const verbs[] = {"insert", "update", "delete", "create", "drop",
                                 "alter",  "attach", "pragma", "replace"};
    const bool writes = end != std::string::npos && word[end] == ' ' &&
                        std::find(std::begin(verbs), std::end(verbs), first) != std::end(verbs);
    std::error_code none;
    return (reads || writes) && !std::filesystem::exists(PathOf(word), none);
}

std::string CsvCell(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

std::string TextOf(const Statement& row, int column) {
    switch (row.TypeOf(column)) {
    case Statement::Type::Null:
        return "";
    case Statement::Type::Integer:
        return std::to_string(row.Integer(column));
    case Statement::Type::Real:
        return NumberText(row.Real(column));
    case Statement::Type::Text:
        return std::string(row.Bytes(column));
    case Statement::Type::Blob:
        return Base64(row.Bytes(column));
    }
    return "";
}

ordered_json JsonOf(const Statement& row, int column) {
    switch (row.TypeOf(column)) {
    case Statement::Type::Null:
        return nullptr;
    case Statement::Type::Integer:
        return row.Integer(column);
    case Statement::Type::Real:
        return RealJson(row.Real(column));
    case Statement::Type::Text:
    case Statement::Type::Blob:
        return TextOf(row, column);
    }
    return nullptr;
}

void PrintTable(Statement& query, Output& out) {
    std::vector<Table::Column> columns;
    for (int i = 1; i <= query.Columns(); ++i)
        columns.push_back({OnOneLine(query.ColumnName(i)), Align::Right});
    Table table(std::move(columns));
    while (query.Step()) {
        std::vector<std::string> row;
        for (int i = 1; i <= query.Columns(); ++i) {
            const Statement::Type type = query.TypeOf(i);
            if (type == Statement::Type::Text || type == Statement::Type::Blob)
                table.SetAlign(i, Align::Left);
            row.push_back(OnOneLine(TextOf(query, i)));
        }
        table.Add(std::move(row));
        if (table.Rows() == 1000) table.Print(out);
    }
    table.Print(out);
}

void PrintCsv(Statement& query, Output& out) {
    for (int i = 1; i <= query.Columns(); ++i)
        out.Print("{}{}", i == 1 ? "" : ",", CsvCell(query.ColumnName(i)));
    out.Write("\n");
    while (query.Step()) {
        for (int i = 1; i <= query.Columns(); ++i)
            out.Print("{}{}", i == 1 ? "" : ",", CsvCell(TextOf(query, i)));
        out.Write("\n");
    }
}

void PrintJson(Statement& query, Output& out, bool lines) {
    if (!lines) out.Write("[");
    for (bool first = true; query.Step(); first = false) {
        ordered_json row = ordered_json::object();
        for (int i = 1; i <= query.Columns(); ++i) row[query.ColumnName(i)] = JsonOf(query, i);
        out.Print("{}{}{}", lines || first ? "" : ",", lines ? "" : "\n", row.dump());
        if (lines) out.Write("\n");
    }
    if (!lines) out.Write("\n]\n");
}

void List(const Tables& tables, Output& out) {
    Table list(
        {{Words("table"), Align::Left}, {Words("columns"), Align::Left}, {Words("holds"), Align::Left}});
    for (const auto& table : tables.All()) {
        std::string columns = tables.HasFileColumn() ? "file" : "";
        for (const Tables::Column& column : table->columns)
            columns += (columns.empty() ? "" : ", ") + SqlNameIfNeeded(column.name);
        list.Add({SqlNameIfNeeded(table->name), columns, table->about});
    }
    list.Print(out);
}

Exit Ask(Tool& tool, Database& database, Tables& tables, const std::string& text, const SqlOptions& options) {
    Tables::Names read;
    database.Restrict([&](std::string_view table) { read.emplace(table); });
    {
        const Statement trial(database, text); // tells what it reads
    }
    database.Permit();
    tables.Fill(read);
    database.Restrict([](std::string_view) {});
    Statement query(database, text);
    if (options.csv) {
        PrintCsv(query, tool.out);
    } else if (options.json || options.jsonLines) {
        PrintJson(query, tool.out, options.jsonLines);
    } else {
        PrintTable(query, tool.out);
    }
    return tables.GetEnd();
}

Exit Sql(Tool& tool, const SqlOptions& options) {
    std::vector<std::string> words = options.words;
    std::string query;
    if (IsQuery(words.back())) {
        query = words.back();
        words.pop_back();
    }
    if (words.empty()) throw Trouble(Words("name a file before the query"));
    Database database("");
    Tables tables(tool, database, FilesOf(words));
    if (!query.empty()) return Ask(tool, database, tables, query, options);
    List(tables, tool.out);
    return tables.GetEnd();
}

} // namespace

void AddSql(CLI::App& zo, Tool& tool) {
    CLI::App* const command = zo.add_subcommand("sql", "ask files questions in SQL: a table for each class");
    const auto options = std::make_shared<SqlOptions>();
    command
        ->add_option(
            "FILE... [QUERY]", options->words,
            "object files, folders of them, or - for standard input; then a SELECT. Without one: the tables")
        ->required();
    auto* const csv = command->add_flag("--csv", options->csv, "the answer as CSV");
    auto* const json =
        command->add_flag("--json", options->json, "the answer as a JSON array of objects")->excludes(csv);
    command->add_flag("--jsonl", options->jsonLines, "the answer as JSON, an object a line")
        ->excludes(csv)
        ->excludes(json);
    command->footer(
        "Each class is a table with inherited fields in it, each list a table Class_field, each abstract "
        "class a view.\n"
        "`objects` has every object, `links` every pointer. Several files have a column `file`.\n\n"
        "Examples:\n  zo sql model.zo\n  zo sql model.zo 'SELECT class, count(*) FROM objects GROUP BY "
        "class'\n"
        "  zo sql --csv models/ 'SELECT file, mark FROM Girder WHERE load > 20'");
    command->callback([&tool, options] { tool.command = [&tool, options] { return Sql(tool, *options); }; });
}

} // namespace ZoTool
