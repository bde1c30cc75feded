#include "Platform/AnsiCase.h"
#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

#include <clocale>
#include <cstdio>
#include <cstring>
#include <locale.h>

namespace ZoPrimitives::Platform {

namespace {

// The system maps by the process's code page. With another page than that of our texts it would mistake the
// bytes for other letters.
bool SystemMapsOurTexts() {
    static const bool same = ::GetACP() == 1252;
    return same;
}

void Map(char* text, std::size_t size, DWORD(WINAPI* map)(LPSTR, DWORD), const CaseTable& table) {
    if (size <= MAXDWORD && SystemMapsOurTexts())
        map(text, static_cast<DWORD>(size));
    else
        MapCase(text, size, table);
}

/// Makes the calling thread write numbers as C does during its lifetime.
class ClassicNumbers {
public:
    ClassicNumbers() {
        if (std::strcmp(std::localeconv()->decimal_point, ".") == 0) return;
        threads = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
        previous = std::setlocale(LC_NUMERIC, nullptr);
        std::setlocale(LC_NUMERIC, "C");
    }
    ClassicNumbers(const ClassicNumbers&) = delete;
    ClassicNumbers& operator=(const ClassicNumbers&) = delete;
    ~ClassicNumbers() {
        if (previous.empty()) return;
        std::setlocale(LC_NUMERIC, previous.c_str());
        _configthreadlocale(threads);
    }

private:
    int threads = 0;
    std::string previous;
};

} // namespace

void UppercaseAnsi(char* text, std::size_t size) { Map(text, size, ::CharUpperBuffA, UPPER); }
void LowercaseAnsi(char* text, std::size_t size) { Map(text, size, ::CharLowerBuffA, LOWER); }

int FormatText(char* buffer, std::size_t size, const char* format, std::va_list arguments) {
    const ClassicNumbers classic;
    return std::vsnprintf(buffer, size, format, arguments);
}

} // namespace ZoPrimitives::Platform
