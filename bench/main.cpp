// zo_bench: saves and opens a model with this library, by hand ("floor") and with two other libraries, each
// case in a process of its own, and prints what it costs.
//
//     zo_bench                   10,000, 100,000 and 1,000,000 objects, the chain, reading a part, sums and
//                                searches
//     zo_bench --quick           10,000 and 100,000 objects, no chain and no part
//     zo_bench --micro           sums and searches only
//     zo_bench --filtered        reading a part of a file only
//     zo_bench --runs N          timed runs of each case (5; 3 at 1,000,000), after one that is not timed
//     zo_bench --cpu             count processor time, see below
//     zo_bench --only NAME       one case in this process, for a profiler: zo-save-memory-1000000,
//                                boost-open-file-10000, zo-open-memory-chain ...
//
// "save" is the whole saving: opening the sink, the walk that collects the schema, uids, records, and, to a
// file, ending it (without backup and without asking the device). "open" begins with the bytes, or with the
// name of the file, and ends with the whole model linked and the reader's tables freed. "drop" is the model's
// destruction, for information. Building is never timed. Times are the median; the least one is in
// parentheses. On a machine that does other work too, --cpu counts the process's time on the processor
// instead of time on the clock (not for sums and searches). "peak" is the most memory that the process ever
// had: the model, the bytes and what the library needs beside them.

#include "bench.h"

#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <functional>
#include <stdexcept>

namespace bench {

namespace {

constexpr int MOST_RUNS = 100;
constexpr std::size_t CHAIN = 1'000'000;
constexpr std::size_t DEFAULT_STACK = 8u * 1024 * 1024;
constexpr std::size_t VAST_STACK = 4ull * 1024 * 1024 * 1024;

struct Entry {
    const char* name;
    const char* title;
    std::unique_ptr<Contender> (*make)();
};
const Entry ENTRIES[] = {{"zo", "ours", MakeZo},
                         {"floor", "floor (by hand)", MakeFloor},
                         {"boost", "Boost.Serialization", MakeBoost},
                         {"cereal", "cereal", MakeCereal}};
constexpr int ENTRY_COUNT = 4;

enum Target { MEMORY, FILES };
const char* const TARGETS[] = {"memory", "file"};

std::string Path(const Entry& entry, const std::string& what) {
    return std::string(ZO_BENCH_FILES) + "/" + entry.name + "-" + what;
}

/// What a child reports, as it travels through the pipe.
struct Result {
    bool done = false;
    bool overflowed = false; // known to the parent only
    int runs = 0;
    double times[MOST_RUNS] = {};
    double drops[MOST_RUNS] = {};
    std::uint64_t bytes = 0;
    std::uint64_t peak = 0; // bytes
    Digest digest;

    double Time() const { return Median(std::vector<double>(times, times + runs)); }
    double LeastTime() const { return Least(std::vector<double>(times, times + runs)); }
    double Drop() const { return Median(std::vector<double>(drops, drops + runs)); }
};

std::uint64_t PeakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::uint64_t kib = static_cast<std::uint64_t>(usage.ru_maxrss);
    if (FILE* status = std::fopen("/proc/self/status", "r")) {
        char line[256];
        unsigned long value = 0;
        while (std::fgets(line, sizeof line, status) != nullptr) {
            if (std::sscanf(line, "VmHWM: %lu kB", &value) == 1) kib = value;
        }
        std::fclose(status);
    }
    return kib * 1024;
}

std::uint64_t FileSize(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

/// Runs `work` in a child. What it leaves in its result comes back; `done` is false when the child died.
Result InChild(const std::function<void(Result&)>& work) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    std::fflush(stdout);
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no process");
    if (child == 0) {
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        Result result;
        try {
            work(result);
            result.done = true;
        } catch (const std::exception& error) {
            std::fprintf(stderr, "zo_bench: %s\n", error.what());
        }
        const ssize_t written = write(ends[1], &result, sizeof result);
        _exit(written == sizeof result ? 0 : 1); // the model goes with the process
    }
    close(ends[1]);
    Result result;
    std::size_t got = 0;
    while (got < sizeof result) {
        const ssize_t done = read(ends[0], reinterpret_cast<char*>(&result) + got, sizeof result - got);
        if (done <= 0) break;
        got += static_cast<std::size_t>(done);
    }
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (got != sizeof result) result = Result();
    result.overflowed = WIFSIGNALED(status) && (WTERMSIG(status) == SIGSEGV || WTERMSIG(status) == SIGBUS);
    return result;
}

/// Runs `work` on a thread with a stack of `size` bytes.
void OnStack(std::size_t size, const std::function<void()>& work) {
    struct Call {
        const std::function<void()>& work;
        std::exception_ptr error;
    } call{work, nullptr};
    const auto run = [](void* context) -> void* {
        auto& called = *static_cast<Call*>(context);
        try {
            called.work();
        } catch (...) {
            called.error = std::current_exception();
        }
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, size);
    pthread_t thread{};
    if (pthread_create(&thread, &attributes, run, &call) != 0) throw std::runtime_error("no thread");
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    if (call.error) std::rethrow_exception(call.error);
}

bool countsProcessorTime = false;

/// In nanoseconds.
double Clock() {
    if (!countsProcessorTime) return Now();
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/// One run that is not timed, then `runs` that are.
void TimeSaves(Contender& contender, Target target, const std::string& path, int runs, Result& result) {
    Bytes bytes;
    for (int run = -1; run < runs; ++run) {
        bytes = Bytes();
        // A new file each time: giving the old one's pages back is not part of saving.
        if (target == FILES) unlink(path.c_str());
        const double start = Clock();
        if (target == MEMORY) {
            bytes = contender.SaveMemory();
        } else {
            contender.SaveFile(path);
        }
        if (run >= 0) result.times[run] = Clock() - start;
    }
    result.runs = runs;
    result.peak = PeakMemory();
    if (target == MEMORY) bytes.Store(path);
    result.bytes = FileSize(path);
    result.digest = contender.Built();
}

void TimeOpens(Contender& contender, Target target, const std::string& path, int runs, Result& result) {
    const Bytes bytes = target == MEMORY ? Bytes::Load(path) : Bytes();
    for (int run = -1; run < runs; ++run) {
        const double start = Clock();
        if (target == MEMORY) {
            contender.OpenMemory(bytes);
        } else {
            contender.OpenFile(path);
        }
        const double opened = Clock();
        if (run < 0) {
            result.peak = PeakMemory();
            result.digest = contender.Opened();
        }
        const double dropping = Clock();
        contender.DropOpened();
        if (run < 0) continue;
        result.times[run] = opened - start;
        result.drops[run] = Clock() - dropping;
    }
    result.runs = runs;
    result.bytes = FileSize(path);
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

void PrintRow(const Entry& entry, std::size_t objects, const Result& save, const Result& open) {
    const auto count = static_cast<double>(objects);
    std::printf("  %-20s %6.0f (%5.0f)   %6.0f (%5.0f)   %6.0f   %7.1f   %7.0f   %7.0f\n", entry.title,
                save.Time() / count, save.LeastTime() / count, open.Time() / count, open.LeastTime() / count,
                open.Drop() / count, static_cast<double>(save.bytes) / count, Mebi(save.peak),
                Mebi(open.peak));
}

void PrintRatios(const char* what, const Result (&results)[ENTRY_COUNT], double target) {
    const auto print = [&](double (Result::*time)() const) {
        const double ours = (results[0].*time)();
        const double floor = (results[1].*time)();
        const double boost = (results[2].*time)();
        const double cereal = (results[3].*time)();
        const double peer = boost < cereal ? boost : cereal;
        std::printf("%5.2f x the faster peer (>= %.1f: %s)   %5.2f x the floor (<= 2.0: %s)", peer / ours,
                    target, peer / ours >= target ? "met" : "MISSED", ours / floor,
                    ours / floor <= 2.0 ? "met" : "MISSED");
    };
    std::printf("  %-4s by medians: ", what);
    print(&Result::Time);
    std::printf("\n       by least:   ");
    print(&Result::LeastTime);
    std::printf("\n");
}

void RunFrame(std::size_t objects, Target target, int runs) {
    std::printf("\nFrame, %s objects, %s: ns per object\n", Grouped(objects).c_str(), TARGETS[target]);
    std::printf("  %-20s %14s   %14s   %6s   %7s   %7s   %7s\n", "", "save (least)", "open (least)", "drop",
                "bytes", "peak MiB", "peak");
    std::printf("  %-20s %14s   %14s   %6s   %7s   %7s   %7s\n", "", "", "", "", "/object", "saving",
                "opening");
    Result saves[ENTRY_COUNT];
    Result opens[ENTRY_COUNT];
    const std::string what = std::to_string(objects) + (target == MEMORY ? ".memory" : ".file");
    for (int i = 0; i < ENTRY_COUNT; ++i) {
        const Entry& entry = ENTRIES[i];
        const std::string path = Path(entry, what);
        saves[i] = InChild([&](Result& result) {
            const auto contender = entry.make();
            contender->BuildFrame(objects);
            TimeSaves(*contender, target, path, runs, result);
        });
        opens[i] = InChild([&](Result& result) { TimeOpens(*entry.make(), target, path, runs, result); });
        if (!saves[i].done || !opens[i].done) throw std::runtime_error(std::string(entry.name) + " failed");
        if (saves[i].digest != saves[0].digest || opens[i].digest != saves[0].digest ||
            saves[i].digest.objects != objects) {
            throw std::runtime_error(std::string(entry.name) + " has another model");
        }
        if (i == 1) CompareFiles(Path(ENTRIES[0], what), path);
        PrintRow(entry, objects, saves[i], opens[i]);
    }
    for (const Entry& entry : ENTRIES) unlink(Path(entry, what).c_str());
    PrintRatios("save", saves, 4.0);
    PrintRatios("open", opens, 2.5);
}

/// Each half on a stack of 8 MiB. The bytes that a recursive library opens are made on a vast one.
void RunChain(int runs) {
    std::printf("\nChain of %s objects, memory, on a stack of 8 MiB: ns per object\n",
                Grouped(CHAIN).c_str());
    std::printf("  %-20s %16s   %16s\n", "", "save (least)", "open (least)");
    for (const Entry& entry : ENTRIES) {
        if (entry.make == MakeFloor) continue;
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

/// Reading one class that is every hundredth object, beside opening everything.
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

/// NAME is library-save|open-memory|file-count|chain.
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
        std::printf("%s: %.1f ns per object (least %.1f), %.1f bytes, peak %.0f MiB\n", name.c_str(),
                    result.Time() / count, result.LeastTime() / count,
                    static_cast<double>(result.bytes) / count, Mebi(result.peak));
        return 0;
    }
    return 2;
}

int Run(int count, char** arguments) {
    bool quick = false;
    bool micro = false;
    bool filtered = false;
    int runs = 0;
    std::string only;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--quick") {
            quick = true;
        } else if (argument == "--micro") {
            micro = true;
        } else if (argument == "--filtered") {
            filtered = true;
        } else if (argument == "--cpu") {
            countsProcessorTime = true;
        } else if (argument == "--runs" && i + 1 < count) {
            runs = std::atoi(arguments[++i]);
        } else if (argument == "--only" && i + 1 < count) {
            only = arguments[++i];
        } else {
            std::fprintf(
                stderr,
                "usage: zo_bench [--quick | --micro | --filtered | --only NAME] [--cpu] [--runs N]\n");
            return 2;
        }
    }
    if (runs > MOST_RUNS) runs = MOST_RUNS;
    mkdir(ZO_BENCH_FILES, 0755);
    if (!only.empty()) return RunOnly(only, runs > 0 ? runs : 5);
    if (std::strcmp(ZO_BENCH_BUILD, "Release") != 0) std::printf("NOT A RELEASE BUILD: " ZO_BENCH_BUILD "\n");
    if (filtered) {
        RunFiltered(runs > 0 ? runs : 5);
        return 0;
    }
    if (!micro) {
        for (const std::size_t objects :
             {std::size_t{10'000}, std::size_t{100'000}, std::size_t{1'000'000}}) {
            if (quick && objects > 100'000) continue;
            for (const Target target : {MEMORY, FILES})
                RunFrame(objects, target, runs > 0 ? runs : objects < 1'000'000 ? 5 : 3);
        }
        if (!quick) {
            RunChain(runs > 0 ? runs : 3);
            RunFiltered(runs > 0 ? runs : 5);
        }
    }
    RunMicro(runs > 0 ? runs : 5);
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
