#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

namespace ZoPrimitives::Platform {

void Services::ShowMessageBox(const char* text) {
    // A null caption would show "Error" in the system's language.
    ::MessageBoxA(nullptr, text, "", MB_OK | MB_ICONHAND);
}

} // namespace ZoPrimitives::Platform
