#include "ZoPrimitives/ZoTrace.h"

#include "ZoPrimitives/AnsiLiteral.h"
#include "support/FakeClock.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <thread>

using namespace ZoPrimitives;

namespace {

// An explicit instantiation may name what is private.
bool& FirstTrace();
template <bool* FIRST>
struct Opened {
    friend bool& FirstTrace() { return *FIRST; }
};
template struct Opened<&TZoTrace::firstTrace>;

struct ZoTraceTests : testing::Test {
    struct Services : Testing::FakeClock {
        std::FILE* OpenTraceFile(bool truncate) override {
            return std::fopen(path.c_str(), truncate ? "wb" : "ab");
        }
        Testing::TemporaryFolder folder;
        std::string path = folder.Path("Trace.txt");
    };

    ZoTraceTests() {
        FirstTrace() = true;
        TZoTrace::Tic();
    }
    /// What was traced; the next line is the first again.
    std::string Trace() {
        FirstTrace() = true;
        return services.folder.Read("Trace.txt");
    }

    Services services;
    const std::string prefix = "O tempo de execução da operação foi: "_ansi;
};

TEST_F(ZoTraceTests, FirstLineEmptiesTheFile) {
    services.folder.Write("Trace.txt", "of another process\n");
    services.ticks = 12;
    TZoTrace::Toc("Abrir", "obra");
    TZoTrace::TocTic("Salvar", "");
    services.ticks = 10; // wrapped
    TZoTrace::Toc("", "x");
    TZoTrace::TraceSimplesArquivo("50% %d %n %%\tas it is\n");
    TZoTrace::TraceSimplesArquivo(nullptr);
    EXPECT_EQ(Trace(), prefix + "12ms. (Abrir, obra)\n" + prefix + "12ms. (Salvar, )\n" + prefix +
                           "4294967294ms. (, x)\n50% %d %n %%\tas it is\n\n\n");
}

TEST_F(ZoTraceTests, PercentSignsOfTextsAreInterpreted) {
    const char* const text =
        "100%%, %%%%d [%n] %d %s %ls %f %p %c %q %*d %.*s %1$n %hhn %999999999d 50% dos %";
    const std::string written = "100%, %%d [] %d %s %ls %f %p %c %q %*d %.*s %1$n %hhn %999999999d 50% dos %";
    TZoTrace::Toc(text, text);
    EXPECT_EQ(Trace(), prefix + "0ms. (" + written + ", " + written + ")\n");
    TZoTrace::Toc(ZoString('%', 20'001), "");
    EXPECT_EQ(Trace().size(), 10'000u) << "cut as by FormatString";
}

TEST_F(ZoTraceTests, WithoutAFileThereIsNoTrace) {
    services.path = services.folder.Path("missing/Trace.txt");
    TZoTrace::Toc("a", "b");
    EXPECT_TRUE(services.folder.Names().empty());
}

TEST_F(ZoTraceTests, ThreadsMayTraceAtOnce) {
    const auto trace = [] {
        for (int i = 0; i < 50; ++i) {
            TZoTrace::TraceSimplesArquivo("");
            TZoTrace::Tic();
        }
    };
    std::thread other(trace); // the first line is either's
    trace();
    other.join();
    EXPECT_EQ(Trace(), std::string(100, '\n'));
}

} // namespace
