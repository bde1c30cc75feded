#include "Platform/AnsiCase.h"
#include "Platform/Platform.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <locale.h>
#include <memory>

namespace ZoPrimitives::Platform {

void UppercaseAnsi(char* text, std::size_t size) { MapCase(text, size, UPPER); }
void LowercaseAnsi(char* text, std::size_t size) { MapCase(text, size, LOWER); }

ClassicLocale::ClassicLocale() {
    // Never freed, because texts are formatted until the process ends.
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    previous = uselocale(classic);
}

ClassicLocale::~ClassicLocale() { uselocale(static_cast<locale_t>(previous)); }

int FormatText(char* buffer, std::size_t size, const char* format, std::va_list arguments) {
    const ClassicLocale classic;
    return std::vsnprintf(buffer, size, format, arguments);
}

std::string TypeName(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : type.name();
}

} // namespace ZoPrimitives::Platform
