#include "system.h"

#include <windows.h>

#include <fcntl.h>
#include <filesystem>
#include <io.h>
#include <shellapi.h>
#include <stdlib.h>

namespace ZoTool {

namespace {

std::string Utf8(const wchar_t* text) {
    const std::u8string utf8 = std::filesystem::path(text).u8string();
    return {utf8.begin(), utf8.end()};
}

} // namespace

// Those that `main` is given lost what the code page lacks.
std::vector<std::string> Arguments(int, char**) {
    int count = 0;
    wchar_t** const given = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> words;
    for (int i = 0; i < count; ++i) words.push_back(Utf8(given[i]));
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

std::FILE* OpenForWriting(const std::string& path) {
    return _wfopen(std::filesystem::path(std::u8string(path.begin(), path.end())).c_str(), L"wb");
}

std::string Environment(const char* name) {
    const std::wstring wide = std::filesystem::path(name).wstring();
    const wchar_t* const value = _wgetenv(wide.c_str());
    return value == nullptr ? "" : Utf8(value);
}

} // namespace ZoTool
