#include "commands.h"
#include "diagram.h"
#include "fields.h"
#include "input.h"
#include "save.h"
#include "text.h"
#include "tool.h"
#include "words.h"

#include "ZoPrimitives/ZoRecords.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>

namespace ZoTool {

using namespace ZoPrimitives;
using nlohmann::ordered_json;

namespace {

struct SchemaOptions {
    std::string file;
    bool json = false;
    std::string svg;
};

/// Classes under their first parents, each with its own fields.
class SchemaTree {
public:
    SchemaTree(const TZoMetaData& schema, Output& out) : out(out) {
        for (TZoClass* const type : ClassesOf(schema)) children[type->GetParentClass()].push_back(type);
    }
    void Print() {
        const std::vector<TZoClass*>& roots = children[nullptr];
        for (TZoClass* const root : roots) Print(*root, "", "");
    }

private:
    // `head` stands before the class's line, `body` before those below it. A class has a thousand levels at
    // most.
    void Print(TZoClass& type, const std::string& head, const std::string& body) {
        out.Print("{}{}{}\n", out.Paint(Style::Faint, head), out.Paint(Style::Heading, ClassName(type)),
                  Remarks(type));
        const std::vector<TZoClass*>& derived = children[&type];
        PrintFields(type, body + (derived.empty() ? "    " : "│   "));
        for (TZoClass* const child : derived) {
            const bool last = child == derived.back();
            Print(*child, body + (last ? "└── " : "├── "), body + (last ? "    " : "│   "));
        }
    }

    std::string Remarks(const TZoClass& type) const {
        std::string remarks = type.GetAbstract() ? " (" + Words("abstract") + ")" : "";
        const std::vector<TZoClass*> parents = ParentsOf(type);
        for (std::size_t i = 1; i < parents.size(); ++i) {
            remarks += (i == 1 ? Words(", also a {}", ClassName(*parents[i]))
                               : Words(" and {}", ClassName(*parents[i])));
        }
        return out.Paint(Style::Faint, remarks);
    }

    void PrintFields(TZoClass& type, const std::string& indent) {
        const std::vector<TZoClassField*> fields = OwnFields(type);
        std::size_t widest = 0;
        for (const TZoClassField* const field : fields) widest = std::max(widest, Width(FieldName(*field)));
        for (const TZoClassField* const field : fields) {
            const std::string name = FieldName(*field);
            out.Print("{}{}{}  {}\n", out.Paint(Style::Faint, indent), out.Paint(Style::Name, name),
                      std::string(widest - Width(name), ' '), TypeOf(*field));
        }
    }

    Output& out;
    std::map<const TZoClass*, std::vector<TZoClass*>> children;
};

ordered_json Json(TZoClass& type) {
    ordered_json parents = ordered_json::array();
    for (const TZoClass* const parent : ParentsOf(type)) parents.push_back(Utf8(parent->GetName()));
    ordered_json fields = ordered_json::array();
    for (const TZoClassField* const field : OwnFields(type)) {
        ordered_json entry{{"name", Utf8(field->GetFieldName())},
                           {"kind", KindName(field->GetFieldType())},
                           {"code", static_cast<int>(field->GetFieldType())}};
        const TZoClass* const target = field->GetFieldClass();
        if (field->IsPointerKind())
            entry["class"] = target == nullptr ? ordered_json() : ordered_json(Utf8(target->GetName()));
        fields.push_back(std::move(entry));
    }
    return {{"id", type.GetClassId()},
            {"name", Utf8(type.GetName())},
            {"abstract", type.GetAbstract()},
            {"parents", std::move(parents)},
            {"fields", std::move(fields)}};
}

void PrintJson(const TZoMetaData& schema, Output& out) {
    out.Write("{\"layout\": \"zo schema\", \"version\": 1, \"classes\": [");
    bool first = true;
    for (TZoClass* const type : ClassesOf(schema)) {
        out.Print("{}\n{}", first ? "" : ",", Json(*type).dump());
        first = false;
    }
    out.Write("\n]}\n");
}

Exit Schema(Tool& tool, const SchemaOptions& options) {
    const Input input(options.file);
    TZoRecordReader reader(input.Bytes());
    const TZoMetaData& schema = reader.GetSchema();
    if (!options.svg.empty()) {
        SaveResult(tool, options.svg, ClassDiagram(schema), options.file);
    } else if (options.json) {
        PrintJson(schema, tool.out);
    } else {
        SchemaTree(schema, tool.out).Print();
    }
    return Exit::Good;
}

} // namespace

void AddSchema(CLI::App& zo, Tool& tool) {
    CLI::App* const command = zo.add_subcommand("schema", "the classes of a file, their parents and fields");
    const auto options = std::make_shared<SchemaOptions>();
    command->add_option("FILE", options->file, "an object file, or - for standard input")->required();
    CLI::Option* const json = command->add_flag("--json", options->json, "as JSON");
    command
        ->add_option("--svg", options->svg,
                     "as a class diagram: the picture to write, or - for standard output")
        ->type_name("OUT.svg")
        ->excludes(json);
    command->footer("Examples:\n  zo schema model.zo\n  zo schema --json model.zo\n  zo schema model.zo "
                    "--svg classes.svg");
    command->callback([&tool, options] {
        tool.command = [&tool, options] {
            return tool.Try(NameOf(options->file), [&] { return Schema(tool, *options); });
        };
    });
}

} // namespace ZoTool
