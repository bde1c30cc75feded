#pragma once

#include "ZoPrimitives/ZoString.h"

#include <cstdint>
#include <cstdio>

namespace ZoPrimitives {

/// Times operations and appends a line for each to the trace file, which the first line of a process empties.
/// The file is closed between lines. Nothing reports an error: without a file there is no trace.
///
/// The file is c:\temp\Trace.txt on Windows (the folder must exist). Elsewhere it is Trace.txt in the folder
/// that the environment variable ZO_TRACE_FOLDER names, without it in that of TMPDIR, or in /tmp; a symbolic
/// link or another user's file there is left alone.
///
/// Threads share one start of time; their lines are written one at a time.
class TZoTrace {
public:
    TZoTrace() = delete;

    /// Time starts to count.
    ZO_API static void Tic();
    /// Writes "O tempo de execução da operação foi: 12ms. (operation, detail)", the time since the last `Tic`
    /// (before any, since the system started), which goes on counting. Percent signs in the texts are
    /// interpreted, as by `ZoString::FormatString` without arguments.
    ZO_API static void Toc(ZoString operation, ZoString detail);
    ZO_API static void TocTic(ZoString operation, ZoString detail);
    /// Writes `text` as it is.
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
