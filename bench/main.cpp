// zo_bench: saves and opens a model with this library, by hand and with other libraries, each case in a
// process of its own, and prints the costs.
//
//     zo_bench              10,000, 100,000 and 1,000,000 objects, the chain, objects that hold values,
//                           reading a part, closed regions, CRC-32 and searches
//     zo_bench --quick      10,000 and 100,000 objects, no chain and no part
//     zo_bench --large      10,000,000 objects too, by this library and by hand
//     zo_bench --micro      only CRC-32 and searches
//     zo_bench --filtered   only reading a part of a file
//     zo_bench --shapes     only objects that hold values and texts
//     zo_bench --drawings   only the closed regions of drawings
//     zo_bench --runs N     warm runs of each case (5; 3 from 1,000,000 objects on)
//     zo_bench --svg FILE   draws the frame of 1,000,000 objects (or the largest measured) as a bar chart
//     zo_bench --cpu        counts processor time, see below
//     zo_bench --only NAME  one case in this process, for a profiler: zo-save-memory-1000000,
//                           boost-open-file-10000, zo-open-memory-chain ...
//
// "save" includes opening the sink, collecting the schema, uids, records and, for a file, closing it (without
// backup and without waiting for the device). "open" starts with the bytes, or the file's name, and ends when
// the whole model is linked and the reader's tables are freed. "drop" is the model's destruction, for
// information. Building is never timed. "fresh" is the first run of a process, the median of three processes;
// "warm" is the median of the following runs in one process. On a busy machine --cpu counts the process's
// processor time instead of wall-clock time (except for CRC-32 and searches). "peak" is the greatest memory
// use of the process: the model, the bytes and what the library needs besides.

#include "bench.h"
#include "chart.h"
#include "measure.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

namespace bench {

namespace {

constexpr std::size_t CHAIN = 1'000'000;
constexpr std::size_t MOST_FOR_PEERS = 1'000'000;
constexpr std::size_t DEFAULT_STACK = 8u * 1024 * 1024;
constexpr std::size_t VAST_STACK = 4ull * 1024 * 1024 * 1024;

struct Entry {
    const char* name;
    const char* title;
    std::unique_ptr<Contender> (*make)();
};
/// Ours, then the hand-written code, then the peers.
const Entry ENTRIES[] = {{"zo", "ours", MakeZo},
                         {"floor", "by hand, our objects", MakeFloor},
                         {"plain", "by hand, std objects", MakePlainFloor},
                         {"flatbuffers", "FlatBuffers, ids by hand", MakeFlatBuffers},
                         {"protobuf", "protobuf, ids by hand", MakeProtobuf},
                         {"qt", "Qt, ids by hand", MakeQt},
                         {"cereal", "cereal", MakeCereal},
                         {"boost", "Boost.Serialization", MakeBoost}};
constexpr std::size_t ENTRY_COUNT = std::size(ENTRIES);
constexpr std::size_t BY_HAND = 1;
constexpr std::size_t FIRST_PEER = 3;
constexpr int FRESH_PROCESSES = 3;

const char* const TARGETS[] = {"memory", "file"};

std::string Path(const Entry& entry, const std::string& what) {
    return std::string(ZO_BENCH_FILES) + "/" + entry.name + "-" + what;
}

void CompareFiles(const std::string& a, const std::string& b) {
    const Bytes left = Bytes::Load(a);
    const Bytes right = Bytes::Load(b);
    if (left.size() != right.size() || std::memcmp(left.data(), right.data(), left.size()) != 0)
        throw std::runtime_error("ours and the floor differ in their bytes");
}

std::string Grouped(std::size_t value) {
    const std::string digits = std::to_string(value);
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && (digits.size() - i) % 3 == 0) text += ',';
        text += digits[i];
    }
    return text;
}

double Mebi(std::uint64_t bytes) { return static_cast<double>(bytes) / (1024.0 * 1024.0); }

/// One half (save or open) of a case; times are nanoseconds per object.
struct Half {
    Result result; // of the process that also ran warm
    double fresh = 0;
    double warm = 0;
};

/// Runs one half in several processes; only the first of them also does the warm runs.
template <class Work>
Half Measure(std::size_t objects, int runs, const Work& work) {
    Half half;
    std::vector<double> fresh;
    for (int process = 0; process < FRESH_PROCESSES; ++process) {
        const Result result = InChild([&](Result& filled) { work(filled, process == 0 ? runs : 0); });
        if (!result.done) throw std::runtime_error("a case failed");
        if (process == 0) half.result = result;
        fresh.push_back(result.fresh);
    }
    const auto count = static_cast<double>(objects);
    half.fresh = Median(fresh) / count;
    half.warm = half.result.Time() / count;
    return half;
}

void PrintRow(const Entry& entry, std::size_t objects, const Half& save, const Half& open) {
    const auto count = static_cast<double>(objects);
    std::printf("  %-25s %5.0f / %5.0f   %5.0f / %5.0f   %5.0f   %6.1f   %7.0f   %7.0f\n", entry.title,
                save.fresh, save.warm, open.fresh, open.warm, open.result.Drop() / count,
                static_cast<double>(save.result.bytes) / count, Mebi(save.result.peak),
                Mebi(open.result.peak));
    std::fflush(stdout);
}

/// Compares ours with the hand-written code and with the fastest peer.
void PrintRatios(const char* what, const std::vector<Half>& halves, double most) {
    std::printf("  %-4s", what);
    for (const auto& [name, time] : {std::pair("fresh", &Half::fresh), std::pair("warm", &Half::warm)}) {
        const double ours = halves[0].*time;
        const double ratio = ours / (halves[BY_HAND].*time);
        std::printf("  %s: %.2f x by hand (<= %.2f: %s)", name, ratio, most,
                    ratio <= most ? "met" : "MISSED");
        std::size_t fastest = FIRST_PEER;
        for (std::size_t i = FIRST_PEER; i < halves.size(); ++i) {
            if (halves[i].*time < halves[fastest].*time) fastest = i;
        }
        if (fastest < halves.size())
            std::printf(", %.2f x %s", ours / (halves[fastest].*time), ENTRIES[fastest].name);
    }
    std::printf("\n");
}

void RunFrame(std::size_t objects, Target target, int runs, Chart& chart) {
    std::printf("\nFrame, %s objects, %s: ns per object, fresh / warm\n", Grouped(objects).c_str(),
                TARGETS[target]);
    std::printf("  %-25s %13s   %13s   %5s   %6s   %7s   %7s\n", "", "save", "open", "drop", "bytes", "MiB",
                "MiB");
    std::printf("  %-25s %13s   %13s   %5s   %6s   %7s   %7s\n", "", "", "", "", "/obj.", "saving",
                "opening");
    std::vector<Half> saves;
    std::vector<Half> opens;
    const std::string what = std::to_string(objects) + (target == MEMORY ? ".memory" : ".file");
    const std::size_t entries = objects <= MOST_FOR_PEERS ? ENTRY_COUNT : FIRST_PEER;
    for (std::size_t i = 0; i < entries; ++i) {
        const Entry& entry = ENTRIES[i];
        const std::string path = Path(entry, what);
        saves.push_back(Measure(objects, runs, [&](Result& result, int warmRuns) {
            const auto contender = entry.make();
            contender->BuildFrame(objects);
            TimeSaves(*contender, target, path, warmRuns, result);
        }));
        opens.push_back(Measure(objects, runs, [&](Result& result, int warmRuns) {
            TimeOpens(*entry.make(), target, path, warmRuns, result);
        }));
        const Digest& model = saves[0].result.digest;
        if (saves[i].result.digest != model || opens[i].result.digest != model || model.objects != objects)
            throw std::runtime_error(std::string(entry.name) + " has another model");
        if (i != 0 && i < FIRST_PEER) CompareFiles(Path(ENTRIES[0], what), path);
        PrintRow(entry, objects, saves[i], opens[i]);
        if (objects <= MOST_FOR_PEERS)
            chart.Add(entry.title, target == FILES,
                      {saves[i].fresh, saves[i].warm, opens[i].fresh, opens[i].warm});
    }
    for (const Entry& entry : ENTRIES) unlink(Path(entry, what).c_str());
    PrintRatios("save", saves, 1.25);
    PrintRatios("open", opens, 1.15);
}

/// Runs each half on a stack of 8 MiB. Recursive libraries save the bytes to be opened on a huge one.
void RunChain(int runs) {
    std::printf("\nChain of %s objects, memory, on a stack of 8 MiB: ns per object\n",
                Grouped(CHAIN).c_str());
    std::printf("  %-20s %16s   %16s\n", "", "save (least)", "open (least)");
    for (const Entry& entry : ENTRIES) {
        if (entry.make != MakeZo && entry.make != MakeCereal && entry.make != MakeBoost)
            continue; // these have ids by hand, no chain
        const std::string path = Path(entry, "chain");
        const Result save = InChild([&](Result& result) {
            const auto contender = entry.make();
            contender->BuildChain(CHAIN);
            OnStack(DEFAULT_STACK, [&] { TimeSaves(*contender, MEMORY, path, runs, result); });
        });
        if (!save.done) {
            InChild([&](Result& result) {
                const auto contender = entry.make();
                contender->BuildChain(CHAIN);
                OnStack(VAST_STACK, [&] { TimeSaves(*contender, MEMORY, path, 1, result); });
            });
        }
        const Result open = InChild([&](Result& result) {
            OnStack(DEFAULT_STACK, [&] { TimeOpens(*entry.make(), MEMORY, path, runs, result); });
        });
        unlink(path.c_str());
        const auto text = [](const Result& result) -> std::string {
            if (!result.done) return result.overflowed ? "stack overflow" : "failed";
            char buffer[64];
            std::snprintf(buffer, sizeof buffer, "%.0f (%.0f)", result.Time() / static_cast<double>(CHAIN),
                          result.LeastTime() / static_cast<double>(CHAIN));
            return buffer;
        };
        std::printf("  %-20s %16s   %16s%s\n", entry.title, text(save).c_str(), text(open).c_str(),
                    save.done && open.done && save.digest != open.digest ? "   DIFFERENT" : "");
    }
}

/// Reads one class of every hundredth object, and opens everything for comparison.
void RunFiltered(int runs) {
    constexpr std::size_t OBJECTS = 1'000'000;
    constexpr double MOST = 0.1;
    const std::string path = Path(ENTRIES[0], "filtered");
    InChild([&](Result&) {
        const auto contender = MakePinned();
        contender->BuildFrame(OBJECTS);
        contender->SaveMemory().Store(path);
    });
    const Result all = InChild([&](Result& result) { TimeOpens(*MakePinned(), MEMORY, path, runs, result); });
    const Result some =
        InChild([&](Result& result) { TimeOpens(*MakeFiltered(), MEMORY, path, runs, result); });
    unlink(path.c_str());
    if (!all.done || !some.done || some.digest.objects * 100 != OBJECTS)
        throw std::runtime_error("reading a part failed");
    std::printf("\nOne class of every hundredth object, of %s, memory: ms\n", Grouped(OBJECTS).c_str());
    std::printf("  %-20s %14s   %14s   %8s   %8s\n", "", "all (least)", "class (least)", "MiB, all", "class");
    std::printf("  %-20s %6.1f (%5.1f)   %6.2f (%5.2f)   %8.0f   %8.0f\n", "ours", all.Time() / 1e6,
                all.LeastTime() / 1e6, some.Time() / 1e6, some.LeastTime() / 1e6, Mebi(all.peak),
                Mebi(some.peak));
    const double ratio = some.Time() / all.Time();
    const double least = some.LeastTime() / all.LeastTime();
    std::printf("  by medians: %.3f of opening all (<= %.1f: %s)   by least: %.3f (%s)\n", ratio, MOST,
                ratio <= MOST ? "met" : "MISSED", least, least <= MOST ? "met" : "MISSED");
}

/// `name`: library-save|open-memory|file-count|chain.
int RunOnly(const std::string& name, int runs) {
    char library[16];
    char action[16];
    char sink[16];
    char size[16];
    if (std::sscanf(name.c_str(), "%15[a-z]-%15[a-z]-%15[a-z]-%15[a-z0-9]", library, action, sink, size) != 4)
        return 2;
    const Target target = std::strcmp(sink, "file") == 0 ? FILES : MEMORY;
    const bool chain = std::strcmp(size, "chain") == 0;
    const std::size_t objects = chain ? CHAIN : std::strtoul(size, nullptr, 10);
    for (const Entry& entry : ENTRIES) {
        if (entry.name != std::string(library)) continue;
        const std::string path = Path(entry, "only");
        const auto build = [&](Contender& contender) {
            chain ? contender.BuildChain(objects) : contender.BuildFrame(objects);
        };
        Result result;
        if (std::strcmp(action, "save") == 0) {
            const auto contender = entry.make();
            build(*contender);
            TimeSaves(*contender, target, path, runs, result);
        } else {
            InChild([&](Result&) {
                const auto contender = entry.make();
                build(*contender);
                contender->SaveFile(path);
            });
            TimeOpens(*entry.make(), target, path, runs, result);
        }
        unlink(path.c_str());
        const auto count = static_cast<double>(objects);
        std::printf("%s: %.1f ns per object fresh, %.1f warm (least %.1f), %.1f bytes, peak %.0f MiB\n",
                    name.c_str(), result.fresh / count, result.Time() / count, result.LeastTime() / count,
                    static_cast<double>(result.bytes) / count, Mebi(result.peak));
        return 0;
    }
    return 2;
}

int Run(int count, char** arguments) {
    bool quick = false;
    bool micro = false;
    bool large = false;
    bool filtered = false;
    bool shapes = false;
    bool checks = false;
    bool drawings = false;
    int runs = 0;
    std::string only;
    std::string svg;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--quick") {
            quick = true;
        } else if (argument == "--micro") {
            micro = true;
        } else if (argument == "--large") {
            large = true;
        } else if (argument == "--filtered") {
            filtered = true;
        } else if (argument == "--shapes") {
            shapes = true;
        } else if (argument == "--checks") {
            checks = true;
        } else if (argument == "--drawings") {
            drawings = true;
        } else if (argument == "--svg" && i + 1 < count) {
            svg = arguments[++i];
        } else if (argument == "--cpu") {
            CountProcessorTime();
        } else if (argument == "--runs" && i + 1 < count) {
            runs = std::atoi(arguments[++i]);
        } else if (argument == "--only" && i + 1 < count) {
            only = arguments[++i];
        } else {
            std::fprintf(stderr, "usage: zo_bench [--quick | --large | --micro | --filtered | --shapes | "
                                 "--checks | --drawings | --only NAME]\n"
                                 "                [--cpu] [--runs N] [--svg FILE]\n");
            return 2;
        }
    }
    if (runs > MOST_RUNS) runs = MOST_RUNS;
    mkdir(ZO_BENCH_FILES, 0755);
    if (!only.empty()) return RunOnly(only, runs > 0 ? runs : 5);
    if (std::strcmp(ZO_BENCH_BUILD, "Release") != 0) std::printf("NOT A RELEASE BUILD: " ZO_BENCH_BUILD "\n");
    const int fewRuns = runs > 0 ? runs : 5;
    if (!micro) TouchFreeMemory();
    if (filtered) RunFiltered(fewRuns);
    if (shapes) RunShapes(fewRuns);
    if (checks) RunChecks(fewRuns);
    if (drawings) RunDrawings(fewRuns, quick);
    if (filtered || shapes || checks || drawings) return 0;
    if (!micro) {
        Chart chart;
        std::vector<std::size_t> sizes{10'000, 100'000};
        if (!quick) sizes.push_back(1'000'000);
        if (large) sizes.push_back(10'000'000);
        for (const std::size_t objects : sizes) {
            if (objects <= MOST_FOR_PEERS) chart.Begin(Grouped(objects) + " objects");
            for (const Target target : {MEMORY, FILES})
                RunFrame(objects, target, runs > 0 ? runs : objects < 1'000'000 ? 5 : 3, chart);
            if (!svg.empty() && objects <= MOST_FOR_PEERS) chart.Store(svg);
        }
        if (!quick) {
            RunChain(runs > 0 ? runs : 3);
            RunFiltered(fewRuns);
        }
        RunShapes(fewRuns);
        RunChecks(fewRuns);
        RunDrawings(fewRuns, quick);
    }
    RunMicro(fewRuns);
    return 0;
}

} // namespace

} // namespace bench

int main(int count, char** arguments) {
    try {
        return bench::Run(count, arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zo_bench: %s\n", error.what());
        return 1;
    }
}
