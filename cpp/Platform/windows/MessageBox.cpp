#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

#include <string>

namespace ZoPrimitives::Platform {

void Services::ShowMessageBox(const char* text) {
    constexpr UINT WINDOWS_1252 = 1252;
    const int size = ::MultiByteToWideChar(WINDOWS_1252, 0, text, -1, nullptr, 0);
    std::wstring wide(size > 0 ? static_cast<std::size_t>(size) : 1, L'\0');
    ::MultiByteToWideChar(WINDOWS_1252, 0, text, -1, wide.data(), size);
    // A null caption would show "Error" in the system's language.
    ::MessageBoxW(nullptr, wide.c_str(), L"", MB_OK | MB_ICONHAND | MB_TASKMODAL);
}

} // namespace ZoPrimitives::Platform
