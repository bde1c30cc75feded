#include "Platform/AnsiCase.h"
#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <memory>
#ifdef __GNUC__
#include <cxxabi.h>
#endif

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

#ifdef __GNUC__

std::string TypeName(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : type.name();
}

#else

std::string TypeName(const std::type_info& type) {
    std::string name = type.name();
    for (const std::string keyword : {"class ", "struct ", "enum ", "union "}) {
        for (std::size_t at = 0; (at = name.find(keyword, at)) != std::string::npos;) {
            const bool wholeWord = at == 0 || std::strchr("<, ", name[at - 1]) != nullptr;
            wholeWord ? name.erase(at, keyword.size()) : (at += keyword.size(), name);
        }
    }
    return name;
}

#endif

} // namespace ZoPrimitives::Platform
