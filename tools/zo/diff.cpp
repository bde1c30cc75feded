#include "commands.h"
#include "fields.h"
#include "keys.h"
#include "model.h"
#include "schemadiff.h"
#include "text.h"
#include "values.h"
#include "words.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <memory>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

struct DiffOptions {
    std::string first;
    std::string second;
    double absolute = 0;
    double relative = 0;
    bool quiet = false;
    unsigned long long most = std::numeric_limits<unsigned long long>::max();
    std::string by;
    bool schema = false;
};

/// One of the two files.
struct OneFile {
    OneFile(Tool& tool, const std::string& word, const std::string& by)
        : input(word, Input::Null::IsEmpty), model(tool, input), keys(model, by) {}

    Input input;
    Model model;
    Keys keys;
};

/// Compares the values of two objects that stand for each other; what differs becomes lines.
class Comparison {
public:
    Comparison(const DiffOptions& itsOptions, OneFile& itsA, OneFile& itsB)
        : options(itsOptions), a(itsA), b(itsB) {}

    std::vector<std::string> Compare(const TZoRecord& first, const TZoRecord& second) {
        lines.clear();
        TZoClass* const type = first.GetClass();
        TZoClass* const other = second.GetClass();
        for (const auto& [i, k] : PairsOf(*type, *other)) {
            if (i > first.NValues() || k > second.NValues()) continue;
            CompareValues(a.model.NamesOf(*type)[static_cast<std::size_t>(i) - 1], first.Value(i),
                          second.Value(k));
        }
        return lines;
    }

private:
    using Pairs = std::vector<std::pair<int, int>>;

    // The positions of values of one name.
    const Pairs& PairsOf(TZoClass& type, TZoClass& other) {
        const auto [entry, isNew] = pairs.try_emplace({&type, &other});
        if (!isNew) return entry->second;
        const std::vector<std::string>& names = a.model.NamesOf(type);
        const std::vector<std::string>& others = b.model.NamesOf(other);
        for (std::size_t i = 0; i < names.size(); ++i) {
            const auto found = std::find(others.begin(), others.end(), names[i]);
            if (found != others.end())
                entry->second.emplace_back(static_cast<int>(i) + 1,
                                           static_cast<int>(found - others.begin()) + 1);
        }
        return entry->second;
    }

    void CompareValues(const std::string& name, const TZoValue& first, const TZoValue& second) {
        const bool samePointers = options.by.empty() || !first.GetField().IsPointerKind();
        const std::string_view bytes(reinterpret_cast<const char*>(first.GetBytes()), first.GetSize());
        const std::string_view others(reinterpret_cast<const char*>(second.GetBytes()), second.GetSize());
        if (samePointers && first.GetKind() == second.GetKind() && bytes == others) return;
        const int halves = std::min(Halves(first), Halves(second));
        for (int half = 1; half <= halves; ++half) {
            const std::string part = halves == 1 ? name : name + (half == 1 ? ".keys" : ".values");
            CompareHalves(OnOneLine(part), Scalars(first, half), Scalars(second, half));
        }
        if (Halves(first) != Halves(second)) AddChange(OnOneLine(name), TextOf(first, a), TextOf(second, b));
    }

    void CompareHalves(const std::string& name, const Scalars& first, const Scalars& second) {
        if (first.IsList() != second.IsList())
            return AddChange(name, TextOf(first.value, a), TextOf(second.value, b));
        if (!first.IsList()) {
            if (!Same(first[1], second[1])) AddChange(name, TextOf(first[1], a), TextOf(second[1], b));
            return;
        }
        CompareIntegers(name, first, second);
        // What is the same at both ends is left out.
        int start = 1;
        int end = first.Count();
        int otherEnd = second.Count();
        while (start <= end && start <= otherEnd && Same(first[start], second[start])) ++start;
        while (end >= start && otherEnd >= start && Same(first[end], second[otherEnd])) --end, --otherEnd;
        for (int i = start; i <= std::max(end, otherEnd); ++i) {
            const std::string place = fmt::format("{}[{}]", name, i);
            if (i > otherEnd) {
                lines.push_back(fmt::format("- {}: {}", place, TextOf(first[i], a)));
            } else if (i > end) {
                lines.push_back(fmt::format("+ {}: {}", place, TextOf(second[i], b)));
            } else if (!Same(first[i], second[i])) {
                AddChange(place, TextOf(first[i], a), TextOf(second[i], b));
            }
        }
    }

    void CompareIntegers(const std::string& name, const Scalars& first, const Scalars& second) {
        const auto text = [](const Scalars& list) {
            std::string numbers;
            for (int i = 1; i <= list.Integers(); ++i)
                numbers += fmt::format("{}{}", i == 1 ? "" : ", ", list.Integer(i));
            return numbers.empty() ? "none" : numbers;
        };
        if (text(first) != text(second)) AddChange(name + ", integers", text(first), text(second));
    }

    bool Same(const Scalar& first, const Scalar& second) const {
        const std::optional<double> number = NumberOf(first);
        const std::optional<double> other = NumberOf(second);
        if (number && other) return SameNumbers(*number, *other);
        if (first.index() != second.index()) return false;
        if (const auto* const text = std::get_if<Text>(&first))
            return text->windows1252 == std::get<Text>(second).windows1252;
        if (const auto* const blob = std::get_if<Blob>(&first))
            return blob->bytes == std::get<Blob>(second).bytes;
        return a.keys.Of(std::get<Pointer>(first).uid) == b.keys.Of(std::get<Pointer>(second).uid);
    }

    static std::optional<double> NumberOf(const Scalar& scalar) {
        if (const auto* const is = std::get_if<bool>(&scalar)) return *is;
        if (const auto* const integer = std::get_if<long long>(&scalar)) return static_cast<double>(*integer);
        if (const auto* const real = std::get_if<double>(&scalar)) return *real;
        return std::nullopt;
    }

    bool SameNumbers(double first, double second) const {
        if (first == second || (std::isnan(first) && std::isnan(second))) return true;
        if (!std::isfinite(first) || !std::isfinite(second)) return false;
        const double distance = std::abs(first - second);
        return distance <= options.absolute ||
               distance <= options.relative * std::max(std::abs(first), std::abs(second));
    }

    void AddChange(const std::string& place, const std::string& before, const std::string& after) {
        lines.push_back(fmt::format("  {}: {} -> {}", place, before, after));
    }
    static std::string TextOf(const Scalar& scalar, OneFile& side) {
        return ScalarText(scalar, side.model.Reader());
    }
    static std::string TextOf(const TZoValue& value, OneFile& side) {
        return ValueText(value, side.model.Reader());
    }

    const DiffOptions& options;
    OneFile& a;
    OneFile& b;
    std::map<std::pair<TZoClass*, TZoClass*>, Pairs> pairs;
    std::vector<std::string> lines;
};

std::unique_ptr<OneFile> Open(Tool& tool, const std::string& word, const std::string& by) {
    try {
        return std::make_unique<OneFile>(tool, word, by);
    } catch (...) {
        throw Trouble(fmt::format("{}: {}", NameOf(word), Explain(std::current_exception())));
    }
}

class Diff {
public:
    Diff(Tool& itsTool, const DiffOptions& itsOptions)
        : tool(itsTool), options(itsOptions), first(Open(itsTool, itsOptions.first, itsOptions.by)),
          second(Open(itsTool, itsOptions.second, itsOptions.by)), a(*first), b(*second),
          comparison(itsOptions, a, b) {}

    Exit Run() {
        if (options.schema) return RunSchema();
        if (!options.by.empty() && !a.keys.HasField() && !b.keys.HasField())
            throw Trouble(
                Words("no class of the two files has a field \"{}\"; \"zo schema\" lists them", options.by));
        for (const std::string& line : SchemaChanges(a.model.Schema(), b.model.Schema())) {
            isDifferent = true;
            if (!options.quiet) tool.out.Print("{}\n", Painted(line));
        }
        a.model.Each([this](const TZoRecord& record) { CompareWithOther(record); });
        if (!(options.quiet && isDifferent))
            b.model.EachHead([this](const TZoFrame& frame) { CheckAdded(frame); });
        const Exit losses = Worse(a.model.TellLosses(), b.model.TellLosses());
        Summarise();
        return Worse(losses, isDifferent ? Exit::Negative : Exit::Good);
    }

private:
    Exit RunSchema() {
        const std::vector<std::string> changes = SchemaChanges(a.model.Schema(), b.model.Schema());
        if (!options.quiet) {
            for (const std::string& line : changes) tool.out.Print("{}\n", Painted(line));
            PrintLosses(a, b);
            PrintLosses(b, a);
        }
        return changes.empty() ? Exit::Good : Exit::Negative;
    }

    void PrintLosses(OneFile& reader, OneFile& file) {
        const std::vector<std::string> losses = SchemaLosses(reader.model.Schema(), file.model.Schema());
        if (losses.empty()) return;
        tool.out.Print("\n{}\n", tool.out.Paint(Style::Heading,
                                                Words("An application with the classes of {} loses of {}:",
                                                      reader.model.Name(), file.model.Name())));
        for (const std::string& line : losses) tool.out.Print("  {}\n", line);
    }

    void CompareWithOther(const TZoRecord& record) {
        const int uid = b.keys.Find(a.keys.Of(record.GetUid()));
        TZoRecord other;
        if (record.GetClass() == nullptr) return;
        if (uid == 0 || !b.model.Find(uid, other) || other.GetClass() == nullptr) {
            ++removed;
            Print(Style::Bad, fmt::format("- {}", Named(record)), {});
            return;
        }
        seen.insert(uid);
        std::vector<std::string> lines = comparison.Compare(record, other);
        const std::string name = ClassName(*record.GetClass());
        const std::string otherName = ClassName(*other.GetClass());
        if (name != otherName) lines.insert(lines.begin(), fmt::format("  class: {} -> {}", name, otherName));
        if (lines.empty()) return;
        ++changed;
        const std::string to = uid == record.GetUid() ? "" : fmt::format(" -> #{}", uid);
        Print(Style::Note, fmt::format("~ {}{}", Named(record), to), lines);
    }

    void CheckAdded(const TZoFrame& frame) {
        if (seen.count(frame.uid) != 0 || (options.quiet && isDifferent)) return;
        ++added;
        TZoRecord record;
        const bool found = b.model.Find(frame.uid, record) && record.GetClass() != nullptr;
        Print(Style::Good, "+ " + (found ? Named(record) : fmt::format("#{}", frame.uid)), {});
    }

    /// With the text that is most likely its name: the first one in its record.
    static std::string Named(const TZoRecord& record) {
        std::string name = fmt::format("#{} {}", record.GetUid(), ClassName(*record.GetClass()));
        for (int i = 1; i <= record.NValues(); ++i) {
            if (record.Value(i).GetKind() == ftString) return name + " " + Glance(record.Value(i));
        }
        return name;
    }

    void Print(Style style, const std::string& head, const std::vector<std::string>& lines) {
        isDifferent = true;
        if (options.quiet) {
            a.model.Stop();
            return;
        }
        if (++printed > options.most) return;
        tool.out.Print("{}\n", tool.out.Paint(style, head));
        for (const std::string& line : lines) tool.out.Print("    {}\n", Painted(line));
    }

    std::string Painted(const std::string& line) const {
        const Style style = line[0] == '+' ? Style::Good : line[0] == '-' ? Style::Bad : Style::Plain;
        return tool.out.Paint(style, line);
    }

    void Summarise() {
        if (options.quiet || added + removed + changed == 0) return;
        tool.Tell(Style::Note, "",
                  Words("{} added, {} removed, {} changed{}", Counted(added, "object"), removed, changed,
                        printed > options.most ? Words("; the first {} are shown", options.most) : ""));
    }

    Tool& tool;
    const DiffOptions& options;
    std::unique_ptr<OneFile> first;
    std::unique_ptr<OneFile> second;
    OneFile& a;
    OneFile& b;
    Comparison comparison;
    std::unordered_set<int> seen; // uids of the second file
    bool isDifferent = false;
    unsigned long long added = 0;
    unsigned long long removed = 0;
    unsigned long long changed = 0;
    unsigned long long printed = 0;
};

} // namespace

void AddDiff(CLI::App& zo, Tool& tool) {
    CLI::App* const command =
        zo.add_subcommand("diff", "what differs between two files: objects, values, schemas");
    const auto options = std::make_shared<DiffOptions>();
    command->add_option("A", options->first, "an object file, or - for standard input")->required();
    command->add_option("B", options->second, "another")->required();
    command->add_option("--by", options->by, "match objects by their class and this field, not by uid")
        ->type_name("FIELD");
    command->add_option("--abs", options->absolute, "numbers that differ by no more are equal")
        ->type_name("E")
        ->check(CLI::NonNegativeNumber);
    command->add_option("--rel", options->relative, "the same, as a part of the greater one")
        ->type_name("E")
        ->check(CLI::NonNegativeNumber);
    command->add_option("-n", options->most, "show so many objects at most")->type_name("N");
    command->add_flag("-q", options->quiet, "show nothing: the end tells (0 equal, 1 different)");
    command->add_flag("--schema", options->schema,
                      "compare classes and fields alone, and tell what each side loses of the other's files");
    command->footer(
        "Objects are matched by uid. With --by, those without the field are matched by who owns them.\n\n"
        "Examples:\n  zo diff old.zo new.zo\n  zo diff --by name --rel 1e-9 old.zo new.zo\n  zo diff "
        "--schema old.zo new.zo");
    command->callback(
        [&tool, options] { tool.command = [&tool, options] { return Diff(tool, *options).Run(); }; });
}

} // namespace ZoTool
