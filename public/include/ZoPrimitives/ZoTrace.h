#pragma once

#include "ZoPrimitives/ZoString.h"

#include <cstdint>
#include <cstdio>

namespace ZoPrimitives {

/// Times operations and appends a line for each to the trace file, which the first line of a process empties.
/// The file is closed between lines. Errors are not reported: without a file there is no trace.
///
/// On Windows the file is Trace.txt in c:/temp (the folder must exist). Elsewhere it is Trace.txt in the
/// folder named by the environment variable ZO_TRACE_FOLDER, otherwise in that of TMPDIR, otherwise in /tmp;
/// a symbolic link or another user's file there is left alone.
///
/// Threads share one start time; lines are written one at a time.
class TZoTrace {
public:
    TZoTrace() = delete;

    /// Starts the clock.
    ZO_API static void Tic();
    /// Writes "O tempo de execução da operação foi: 12ms. (operation, detail)" with the time since the last
    /// `Tic` (or since the system started); the clock keeps running. Percent signs in the texts are
    /// interpreted as by `ZoString::FormatString` without arguments.
    ZO_API static void Toc(ZoString operation, ZoString detail);
    ZO_API static void TocTic(ZoString operation, ZoString detail);
    /// Writes `text` unchanged.
    ZO_API static void TraceSimplesArquivo(const char* text);

private:
    static ZoString Tabs(int n);
    static void CreateFileA();

    static std::uint32_t Passed();

    static std::uint32_t timestamp; // ms
    static bool firstTrace;
    static std::FILE* traceFile; // null unless a line is being written
};

} // namespace ZoPrimitives
