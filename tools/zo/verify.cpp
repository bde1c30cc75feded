#include "commands.h"
#include "faults.h"
#include "input.h"
#include "tool.h"
#include "words.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <thread>

namespace ZoTool {

namespace {

struct Verifying {
    std::vector<std::string> files;
    bool quick = false;
    unsigned most = 100; // findings of a kind that are told; 0: all
};

/// Tells what one file's search finds.
class Findings {
public:
    Findings(Tool& itsTool, const std::string& itsName, unsigned itsMost)
        : tool(itsTool), name(itsName), most(itsMost) {}

    void Take(const Fault& fault) {
        ++(IsNote(fault.kind) ? notes : faults);
        unsigned long long& ofKind = counts[fault.kind];
        if (++ofKind <= most || most == 0) Line(fault.kind, PlaceOf(fault) + ": " + fault.text);
    }
    /// After the last one.
    Exit End() {
        for (const auto& [kind, count] : counts) {
            if (most != 0 && count > most)
                Line(kind, Words("and {} more of this kind; -n 0 shows all", count - most));
        }
        if (faults != 0) return Exit::Negative;
        const std::string ok = tool.out.Paint(Style::Good, "ok");
        if (notes == 0)
            tool.out.Print("{}: {}\n", Name(), ok);
        else
            tool.out.Print("{}: {}\n", Name(),
                           notes == 1 ? Words("{}, with {} note", ok, notes)
                                      : Words("{}, with {} notes", ok, notes));
        return Exit::Good;
    }

private:
    std::string Name() const { return tool.out.Paint(Style::Name, name); }
    void Line(FaultKind kind, const std::string& text) {
        const std::string note = IsNote(kind) ? tool.out.Paint(Style::Note, Words("note")) + ": " : "";
        tool.out.Print("{}: {}{}\n", Name(), note, text);
    }

    Tool& tool;
    const std::string& name;
    unsigned most;
    unsigned long long faults = 0;
    unsigned long long notes = 0;
    std::map<FaultKind, unsigned long long> counts;
};

Exit VerifyFile(Tool& tool, const std::string& file, const Verifying& how) {
    return tool.Try(NameOf(file), [&] {
        const Input input(file);
        FaultFinder finder(input.Bytes(), how.quick);
        Findings findings(tool, input.Name(), how.most);
        Progress progress(tool, Words("verifying {}", input.Name()), finder.Work());
        finder.Find([&](const Fault& fault) { findings.Take(fault); },
                    [&](unsigned long long done) { progress.Show(done); });
        return findings.End();
    });
}

/// Several files at once; each tells what it has to tell in its turn.
Exit VerifyAll(Tool& tool, const std::vector<std::string>& files, const Verifying& how) {
    struct Turn {
        std::unique_ptr<Tool> tool;
        Exit end = Exit::Good;
    };
    std::vector<Turn> turns(files.size());
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < files.size(); i = next++) {
            auto own = std::make_unique<Tool>(nullptr, nullptr);
            own->out.SetColour(tool.out.HasColour());
            own->err.SetColour(tool.err.HasColour());
            turns[i].end = VerifyFile(*own, files[i], how);
            turns[i].tool = std::move(own);
        }
    };
    std::vector<std::thread> others;
    const std::size_t count = std::min<std::size_t>(std::thread::hardware_concurrency(), files.size());
    for (std::size_t i = 1; i < count; ++i) others.emplace_back(work);
    work();
    for (std::thread& other : others) other.join();
    Exit end = Exit::Good;
    for (const Turn& turn : turns) {
        tool.out.Write(turn.tool->out.Text());
        tool.err.Write(turn.tool->err.Text());
        tool.err.Flush();
        end = Worse(end, turn.end);
    }
    return end;
}

} // namespace

void AddVerify(CLI::App& zo, Tool& tool) {
    CLI::App* const command =
        zo.add_subcommand("verify", "what is wrong with files: a finding a line, or ok");
    const auto how = std::make_shared<Verifying>();
    command->add_option("FILE", how->files, "object files, folders of them, or - for standard input")
        ->required();
    command->add_flag("--quick", how->quick, "look at heads and digest alone, not at payloads");
    command->add_option("-n,--most", how->most, "findings of a kind that are told of a file; 0: all")
        ->capture_default_str();
    command->footer("Notes do not count as findings. The exit code is 1 if there are any.\n\n"
                    "Examples:\n  zo verify model.zo\n  zo verify --quick projects/");
    command->callback([&tool, how] {
        tool.command = [&tool, how] {
            const std::vector<std::string> files = FilesOf(how->files);
            return files.size() == 1 ? VerifyFile(tool, files[0], *how) : VerifyAll(tool, files, *how);
        };
    });
}

} // namespace ZoTool
