#include "ZoPrimitives/ZoTrace.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/AnsiLiteral.h"

#include <mutex>
#include <utility>

namespace ZoPrimitives {

namespace {

// Guards all the state. Held while a line is written, because on Windows two files that append at once
// overwrite each other's line.
std::mutex& Guard() {
    static std::mutex guard;
    return guard;
}

} // namespace

constinit std::uint32_t TZoTrace::timestamp = 0;
constinit bool TZoTrace::firstTrace = true;
constinit std::FILE* TZoTrace::traceFile = nullptr;

void TZoTrace::Tic() {
    const std::lock_guard alone(Guard());
    timestamp = Platform::Current().Ticks();
}

std::uint32_t TZoTrace::Passed() {
    const std::lock_guard alone(Guard());
    return Platform::Current().Ticks() - timestamp;
}

void TZoTrace::Toc(ZoString operation, ZoString detail) {
    const std::uint32_t passed = Passed();
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
    const std::lock_guard alone(Guard());
    CreateFileA();
    if (traceFile == nullptr) return;
    std::fprintf(traceFile, "%s\n", text != nullptr ? text : "");
    std::fclose(std::exchange(traceFile, nullptr));
}

ZoString TZoTrace::Tabs(int n) { return n < 1 ? ZoString() : ZoString('\t', static_cast<unsigned>(n)); }

void TZoTrace::CreateFileA() {
    const bool truncate = std::exchange(firstTrace, false);
    traceFile = Platform::Current().OpenTraceFile(truncate);
}

} // namespace ZoPrimitives
