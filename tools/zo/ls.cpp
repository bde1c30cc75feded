#include "commands.h"
#include "condition.h"
#include "fields.h"
#include "model.h"
#include "text.h"
#include "values.h"
#include "words.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

struct LsOptions {
    std::string file;
    std::string className;
    std::vector<std::string> conditions;
};

std::string Line(const TZoRecord& record, Model& model, const Output& out) {
    TZoClass* const type = record.GetClass();
    if (type == nullptr) return Words("#{} (class {})", record.GetUid(), record.GetClassId());
    std::string line = fmt::format("{} {}", out.Paint(Style::Number, fmt::format("#{}", record.GetUid())),
                                   out.Paint(Style::Heading, ClassName(*type)));
    const std::vector<std::string>& names = model.NamesOf(*type);
    for (int i = 1; i <= record.NValues(); ++i) {
        line +=
            fmt::format(" {}={}", out.Paint(Style::Name, OnOneLine(names[static_cast<std::size_t>(i) - 1])),
                        Glance(record.Value(i)));
    }
    return line;
}

Exit Ls(Tool& tool, const LsOptions& options) {
    const Input input(options.file);
    Model model(tool, input);
    std::vector<TZoClass*> classes = ClassesOf(model.Schema());
    std::unordered_set<int> family;
    if (!options.className.empty()) {
        family = model.Family(options.className);
        classes.erase(std::remove_if(classes.begin(), classes.end(),
                                     [&](TZoClass* type) { return family.count(type->GetClassId()) == 0; }),
                      classes.end());
    }
    std::vector<Condition> conditions(options.conditions.begin(), options.conditions.end());
    for (Condition& condition : conditions) condition.Prepare(model, classes);
    model.Each(
        [&](const TZoRecord& record) {
            const bool holds =
                std::all_of(conditions.begin(), conditions.end(),
                            [&](const Condition& condition) { return condition.Holds(record); });
            if (holds) tool.out.Print("{}\n", Line(record, model, tool.out));
        },
        options.className.empty() ? nullptr : &family);
    return model.TellLosses();
}

} // namespace

void AddLs(CLI::App& zo, Tool& tool) {
    CLI::App* const command = zo.add_subcommand("ls", "the objects of a file, a line each");
    const auto options = std::make_shared<LsOptions>();
    command->add_option("FILE", options->file, "an object file, or - for standard input")->required();
    command->add_option("--class", options->className, "only this class and those that derive from it")
        ->type_name("NAME");
    command
        ->add_option("--where", options->conditions,
                     "only objects whose field has the value; also != < <= > >= and ~ (contains)")
        ->type_name("FIELD=VALUE")
        ->expected(1)
        ->take_all();
    command->footer("Several conditions must all hold. A pointer's value is its uid, or null; a list fulfils "
                    "a condition if\n"
                    "one of its items does.\n\n"
                    "Examples:\n  zo ls model.zo\n  zo ls --class Girder --where 'length>=7.5' --where "
                    "section=4 model.zo");
    command->callback([&tool, options] {
        tool.command = [&tool, options] {
            return tool.Try(NameOf(options->file), [&] { return Ls(tool, *options); });
        };
    });
}

} // namespace ZoTool
