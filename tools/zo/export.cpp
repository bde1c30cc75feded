#include "commands.h"
#include "database.h"
#include "dump.h"
#include "model.h"
#include "save.h"
#include "tables.h"
#include "words.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <memory>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

struct ExportOptions {
    std::vector<std::string> files;
    std::string database;
    std::string lines;
    bool force = false;
};

Exit ExportDatabase(Tool& tool, const ExportOptions& options, const std::vector<std::string>& files) {
    NewFile made(options.database, files, options.force);
    Exit end = Exit::Good;
    {
        Database database(made.PartName());
        Tables tables(tool, database, files);
        if (tables.HasNothing()) return tables.GetEnd();
        Tables::Names all;
        for (const auto& table : tables.All()) all.insert(table->name);
        tables.Fill(all);
        database.Run(fmt::format("CREATE INDEX links_target ON links ({}target)",
                                 tables.HasFileColumn() ? "file, " : ""));
        end = tables.GetEnd();
    }
    made.Complete();
    return end;
}

/// The objects of one file, a line each; with its name where there are several files.
Exit ExportLines(Tool& tool, const Input& input, bool namesFile, Output& out, bool& isRead) {
    Model model(tool, input);
    isRead = true;
    model.Each([&](const TZoRecord& record) {
        nlohmann::ordered_json line = nlohmann::ordered_json::object();
        if (namesFile) line["file"] = input.Name();
        line.update(ObjectJson(record, model));
        out.Print("{}\n", line.dump());
    });
    return model.TellLosses();
}

Exit ExportLines(Tool& tool, const ExportOptions& options, const std::vector<std::string>& files) {
    NewFile made(options.lines, files, options.force);
    Exit end = Exit::Good;
    bool isRead = false;
    made.Write([&](Output& out) {
        end = ForEach(tool, files, [&](const Input& input) {
            return ExportLines(tool, input, files.size() > 1, out, isRead);
        });
    });
    if (!isRead) return end;
    made.Complete();
    return end;
}

Exit Export(Tool& tool, const ExportOptions& options) {
    const std::vector<std::string> files = FilesOf(options.files);
    return options.database.empty() ? ExportLines(tool, options, files)
                                    : ExportDatabase(tool, options, files);
}

} // namespace

void AddExport(CLI::App& zo, Tool& tool) {
    CLI::App* const command =
        zo.add_subcommand("export", "objects for other programs: an SQLite database, or lines of JSON");
    const auto options = std::make_shared<ExportOptions>();
    command->add_option("FILE", options->files, "object files, folders of them, or - for standard input")
        ->required();
    CLI::Option_group* const target = command->add_option_group("target");
    target->add_option("--sqlite", options->database, "a database with the tables of \"zo sql\"")
        ->type_name("OUT.db");
    target->add_option("--jsonl", options->lines, "JSON, an object a line, as of \"zo dump\"")
        ->type_name("OUT");
    target->require_option(1);
    command->add_flag("--force", options->force, "replace a file that exists");
    command->footer(
        "Examples:\n  zo export model.zo --sqlite model.db\n  zo export models/ --jsonl models.jsonl");
    command->callback(
        [&tool, options] { tool.command = [&tool, options] { return Export(tool, *options); }; });
}

} // namespace ZoTool
