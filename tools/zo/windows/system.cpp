#include "system.h"

#include "paths.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <stdlib.h>

namespace ZoTool {

// Those that `main` is given lost what the code page lacks.
std::vector<std::string> Arguments(int, char**) {
    int count = 0;
    wchar_t** const given = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> words;
    for (int i = 0; i < count; ++i) words.push_back(Utf8Of(given[i]));
    LocalFree(given);
    return words;
}

std::shared_ptr<void> PrepareStreams() {
    for (std::FILE* const stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    const UINT before = GetConsoleOutputCP(); // 0: no console
    SetConsoleOutputCP(CP_UTF8);
    return {nullptr, [before](void*) {
                if (before != 0) SetConsoleOutputCP(before);
            }};
}

bool IsTerminal(std::FILE* stream) {
    const HANDLE console = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) != 0 &&
           SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::FILE* OpenForWriting(const std::string& path) { return _wfopen(PathOf(path).c_str(), L"wb"); }

std::string Environment(const char* name) {
    const wchar_t* const value = _wgetenv(PathOf(name).c_str());
    return value == nullptr ? "" : Utf8Of(value);
}

} // namespace ZoTool
