#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

namespace ZoPrimitives::Platform {

unsigned long LastError() { return ::GetLastError(); }
void SetLastError(unsigned long error) { ::SetLastError(error); }

namespace {

/// In a language of the system's (0: the user's); empty if it has none, or not in Windows-1252.
std::string WordsIn(DWORD language, unsigned long error) {
    constexpr UINT WINDOWS_1252 = 1252;
    wchar_t wide[512];
    const DWORD size = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                                            FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                        nullptr, error, language, wide, 512, nullptr);
    char text[512];
    BOOL lost = FALSE;
    const int length = ::WideCharToMultiByte(WINDOWS_1252, 0, wide, static_cast<int>(size), text, sizeof text,
                                             nullptr, &lost);
    if (size == 0 || length <= 0 || lost != FALSE) return {};
    std::string words(text, static_cast<std::size_t>(length));
    while (!words.empty() && (words.back() == ' ' || words.back() == '.')) words.pop_back();
    return words;
}

} // namespace

std::string DescribeError(unsigned long error) {
    const std::string words = WordsIn(0, error);
    return !words.empty() ? words : WordsIn(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), error);
}

} // namespace ZoPrimitives::Platform
