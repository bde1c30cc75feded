#include "commands.h"
#include "database.h"
#include "dump.h"
#include "model.h"
#include "system.h"
#include "tables.h"
#include "words.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <filesystem>
#include <memory>

namespace ZoTool {

using namespace ZoPrimitives;
namespace fs = std::filesystem;

namespace {

struct ExportOptions {
    std::vector<std::string> files;
    std::string database;
    std::string lines;
    bool force = false;
};

/// A file that is made beside its place, and takes it when it is complete. Throws `Trouble` if something is
/// there that may not be replaced.
class NewFile {
public:
    NewFile(const std::string& utf8, const std::vector<std::string>& sources, bool replaces)
        : name(utf8), place(PathOf(utf8)) {
        std::error_code none;
        for (const std::string& source : sources) {
            if (source != "-" && fs::equivalent(PathOf(source), place, none))
                throw Trouble(name + ": " + Words("it is the file to be exported; name another"));
        }
        if (!replaces && fs::exists(place, none))
            throw Trouble(name + ": " + Words("it exists; --force replaces it"));
        fs::remove(Part(), none);
    }
    ~NewFile() {
        std::error_code none;
        if (!isComplete) fs::remove(Part(), none);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    fs::path Part() const { return PathOf(name + "~part"); }
    std::string PartName() const { return name + "~part"; }
    void Complete() {
        std::error_code error;
        fs::rename(Part(), place, error);
        if (error) throw Trouble(Words("{}: it cannot be written: {}", name, error.message()));
        isComplete = true;
    }

private:
    std::string name;
    fs::path place;
    bool isComplete = false;
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
    {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenForWriting(made.PartName()),
                                                                   std::fclose);
        if (file == nullptr)
            throw Trouble(options.lines + ": " + Words("it cannot be written; look at its folder"));
        Output out(file.get());
        bool isRead = false;
        end = ForEach(tool, files, [&](const Input& input) {
            return ExportLines(tool, input, files.size() > 1, out, isRead);
        });
        out.Flush();
        if (!isRead) return end;
    }
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
