#include "console.h"

#include <windows.h>

#include <filesystem>
#include <shellapi.h>
#include <stdlib.h>

namespace Frame {

// Those that `main` is given lost what the code page lacks.
std::vector<std::string> Arguments(int, char**) {
    int count = 0;
    wchar_t** const given = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> words;
    for (int i = 0; i < count; ++i) words.push_back(std::filesystem::path(given[i]).u8string());
    LocalFree(given);
    return words;
}

bool RunCommand(const std::string& command) {
    return _wsystem(std::filesystem::u8path(command).c_str()) == 0;
}

std::shared_ptr<void> ShowUtf8() {
    const UINT before = GetConsoleOutputCP(); // 0: no console
    SetConsoleOutputCP(CP_UTF8);
    return {nullptr, [before](void*) {
                if (before != 0) SetConsoleOutputCP(before);
            }};
}

} // namespace Frame
