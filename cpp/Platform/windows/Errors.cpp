#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

namespace ZoPrimitives::Platform {

unsigned long LastError() { return ::GetLastError(); }
void SetLastError(unsigned long error) { ::SetLastError(error); }

std::string DescribeError(unsigned long error) {
    char text[512];
    const DWORD size = ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                                            FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                        nullptr, error, 0, text, sizeof text, nullptr);
    std::string words(text, size);
    while (!words.empty() && (words.back() == ' ' || words.back() == '.')) words.pop_back();
    return words;
}

} // namespace ZoPrimitives::Platform
