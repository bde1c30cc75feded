#include "dump.h"
#include "commands.h"
#include "fields.h"
#include "model.h"
#include "text.h"
#include "values.h"
#include "words.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace ZoTool {

using namespace ZoPrimitives;
using nlohmann::ordered_json;

namespace {

struct DumpOptions {
    std::string file;
    std::string className;
    std::optional<int> uid;
    int depth = 0;
    bool json = false;
    bool jsonLines = false;
};

/// Writes objects in one of the forms.
class Dump {
public:
    Dump(const DumpOptions& options, Model& model, Output& out) : options(options), model(model), out(out) {}

    void Begin() {
        if (options.json) out.Write("{\"layout\": \"zo objects\", \"version\": 1, \"objects\": [");
    }
    void Add(const TZoRecord& record) {
        if (options.json) {
            out.Print("{}\n{}", first ? "" : ",", ObjectJson(record, model).dump());
        } else if (options.jsonLines) {
            out.Print("{}\n", ObjectJson(record, model).dump());
        } else {
            AddText(record);
        }
        first = false;
    }
    void End() {
        if (options.json) out.Write("\n]}\n");
    }

private:
    void AddText(const TZoRecord& record) {
        if (!first) out.Write("\n");
        TZoClass* const type = record.GetClass();
        const std::string state = Model::StateOf(record);
        out.Print("{} {}{}\n", out.Paint(Style::Number, fmt::format("#{}", record.GetUid())),
                  out.Paint(Style::Heading,
                            type == nullptr ? Words("(class {})", record.GetClassId()) : ClassName(*type)),
                  state.empty() ? "" : out.Paint(Style::Bad, " " + Translation(state)));
        if (type == nullptr) return;
        const std::vector<std::string>& names = model.NamesOf(*type);
        std::size_t widest = 0;
        for (const std::string& name : names) widest = std::max(widest, Width(OnOneLine(name)));
        for (int i = 1; i <= record.NValues(); ++i) {
            const std::string name = OnOneLine(names[static_cast<std::size_t>(i) - 1]);
            out.Print("  {}{}  {}\n", out.Paint(Style::Name, name), std::string(widest - Width(name), ' '),
                      ValueText(record.Value(i), model.Reader()));
        }
    }

    const DumpOptions& options;
    Model& model;
    Output& out;
    bool first = true;
};

/// The uids that an object's pointers hold, nulls left out.
std::vector<int> TargetsOf(const TZoRecord& record) {
    std::vector<int> uids;
    for (int i = 1; i <= record.NValues(); ++i) {
        const TZoValue value = record.Value(i);
        for (int half = 1; half <= (value.GetField().IsPointerKind() ? Halves(value) : 0); ++half) {
            for (int k = 1; k <= value.NItems(half); ++k) {
                if (value.Uid(k, half) != 0) uids.push_back(value.Uid(k, half));
            }
        }
    }
    return uids;
}

/// One object, and those that pointers lead to from it, up to a depth: each once, nearer ones first.
Exit DumpAround(Tool& tool, Model& model, Dump& dump, int start, int depth) {
    std::unordered_set<int> seen{start};
    std::vector<int> now{start};
    Exit end = Exit::Good;
    TZoRecord record;
    for (; !now.empty(); --depth) {
        std::vector<int> next;
        for (const int uid : now) {
            if (!model.Find(uid, record)) {
                if (uid == start) throw Trouble(Words("it has no object #{}; \"zo ls\" lists them", uid));
                const bool isDamaged = model.Reader().ClassOf(uid) != nullptr;
                if (isDamaged) end = Exit::Trouble;
                tool.Warn(
                    model.Name(),
                    isDamaged
                        ? Words("a pointer leads to #{}, which is damaged: \"zo verify\" tells more", uid)
                        : Words("a pointer leads to #{}, which is not there", uid));
                continue;
            }
            dump.Add(record);
            if (depth <= 0) continue;
            for (const int target : TargetsOf(record)) {
                if (seen.insert(target).second) next.push_back(target);
            }
        }
        now = std::move(next);
    }
    return end;
}

Exit RunDump(Tool& tool, const DumpOptions& options) {
    const Input input(options.file);
    Model model(tool, input);
    Dump dump(options, model, tool.out);
    Exit end = Exit::Good;
    dump.Begin();
    if (options.uid) {
        end = DumpAround(tool, model, dump, *options.uid, options.depth);
    } else if (options.className.empty()) {
        model.Each([&](const TZoRecord& record) { dump.Add(record); });
    } else {
        const std::unordered_set<int> family = model.Family(options.className);
        model.Each([&](const TZoRecord& record) { dump.Add(record); }, &family);
    }
    dump.End();
    return Worse(end, model.TellLosses());
}

} // namespace

ordered_json ObjectJson(const TZoRecord& record, Model& model) {
    TZoClass* const type = record.GetClass();
    ordered_json object{{"uid", record.GetUid()},
                        {"class", type == nullptr ? ordered_json() : ordered_json(Utf8(type->GetName()))}};
    if (record.GetState() != TZoRecordState::Whole) object["damage"] = Model::StateOf(record);
    ordered_json& fields = object["fields"] = ordered_json::object();
    if (type == nullptr) return object;
    const std::vector<std::string>& names = model.NamesOf(*type);
    for (int i = 1; i <= record.NValues(); ++i) {
        // Names are unique: nothing need be looked up.
        fields.get_ref<ordered_json::object_t&>().emplace_back(names[static_cast<std::size_t>(i) - 1],
                                                               ValueJson(record.Value(i), model.Reader()));
    }
    return object;
}

void AddDump(CLI::App& zo, Tool& tool) {
    CLI::App* const command = zo.add_subcommand("dump", "objects with all their values");
    const auto options = std::make_shared<DumpOptions>();
    command->add_option("FILE", options->file, "an object file, or - for standard input")->required();
    auto* const className =
        command->add_option("--class", options->className, "only this class and those that derive from it")
            ->type_name("NAME");
    auto* const uid =
        command->add_option("--uid", options->uid, "only this object")->type_name("N")->excludes(className);
    command
        ->add_option("--follow", options->depth,
                     "with --uid: and the objects that its pointers lead to, in so many steps")
        ->type_name("DEPTH")
        ->check(CLI::NonNegativeNumber)
        ->needs(uid);
    auto* const json = command->add_flag("--json", options->json, "as one JSON document");
    command->add_flag("--jsonl", options->jsonLines, "as JSON, an object a line")->excludes(json);
    command->footer("Examples:\n  zo dump model.zo\n  zo dump --class Girder --jsonl model.zo\n"
                    "  zo dump --uid 17 --follow 2 model.zo");
    command->callback([&tool, options] {
        tool.command = [&tool, options] {
            return tool.Try(NameOf(options->file), [&] { return RunDump(tool, *options); });
        };
    });
}

} // namespace ZoTool
