#include "measure.h"

#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <exception>
#include <stdexcept>

namespace bench {

namespace {

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

bool countsProcessorTime = false;

} // namespace

double Clock() {
    if (!countsProcessorTime) return Now();
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

void TouchFreeMemory() {
    unsigned long long free = 0; // KiB
    if (FILE* memory = std::fopen("/proc/meminfo", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, memory) != nullptr) std::sscanf(line, "MemFree: %llu kB", &free);
        std::fclose(memory);
    }
    const std::size_t size = free * 1024 / 4 * 3;
    InChild([size](Result&) {
        void* pages =
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (pages == MAP_FAILED) return;
        madvise(pages, size, MADV_HUGEPAGE);
        for (std::size_t at = 0; at < size; at += 4096) static_cast<volatile char*>(pages)[at] = 1;
    });
}

void CountProcessorTime() { countsProcessorTime = true; }

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
        _exit(written == sizeof result ? 0 : 1); // skip the model's destruction
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

void TimeSaves(Contender& contender, Target target, const std::string& path, int runs, Result& result) {
    Bytes bytes;
    for (int run = -1; run < runs; ++run) {
        bytes = Bytes();
        // A new file each time: releasing the old one's pages is not part of saving.
        if (target == FILES) unlink(path.c_str());
        const double start = Clock();
        if (target == MEMORY) {
            bytes = contender.SaveMemory();
        } else {
            contender.SaveFile(path);
        }
        (run < 0 ? result.fresh : result.times[run]) = Clock() - start;
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
        const double dropped = Clock() - dropping;
        (run < 0 ? result.fresh : result.times[run]) = opened - start;
        if (run >= 0) result.drops[run] = dropped;
    }
    result.runs = runs;
    result.bytes = FileSize(path);
}

} // namespace bench
