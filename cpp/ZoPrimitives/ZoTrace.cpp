#include "ZoPrimitives/ZoTrace.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/AnsiLiteral.h"

#include <mutex>
#include <utility>

namespace ZoPrimitives {

constinit std::atomic<std::uint32_t> TZoTrace::timestamp = 0;
constinit std::atomic<bool> TZoTrace::firstTrace = true;
constinit thread_local std::FILE* TZoTrace::traceFile = nullptr;

void TZoTrace::Tic() { timestamp = Platform::Current().Ticks(); }

void TZoTrace::Toc(ZoString operation, ZoString detail) {
    const std::uint32_t passed = Platform::Current().Ticks() - timestamp;
    ZoString text("O tempo de execução da operação foi: "_ansi);
    text += passed;
    text += "ms. (";
    text += operation;
    text += ", ";
    text += detail;
    text += ")";
    TraceSimplesArquivo(ZoString::FormatString(text).c_str());
}

void TZoTrace::TocTic(ZoString operation, ZoString detail) {
    Toc(std::move(operation), std::move(detail));
    Tic();
}

void TZoTrace::TraceSimplesArquivo(const char* text) {
    // Two files that append at once overwrite each other's line on Windows.
    static std::mutex oneLine;
    const std::lock_guard<std::mutex> alone(oneLine);
    CreateFileA();
    if (traceFile == nullptr) return;
    std::fprintf(traceFile, "%s\n", text != nullptr ? text : "");
    std::fclose(std::exchange(traceFile, nullptr));
}

ZoString TZoTrace::Tabs(int n) { return n < 1 ? ZoString() : ZoString('\t', static_cast<unsigned>(n)); }

void TZoTrace::CreateFileA() {
    const bool truncate = firstTrace.exchange(false);
    traceFile = Platform::Current().OpenTraceFile(truncate);
}

} // namespace ZoPrimitives
