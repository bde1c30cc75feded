#include "Platform/AnsiCase.h"
#include "Platform/Platform.h"

#include <cstdarg>
#include <cstdio>
#include <locale.h>

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

} // namespace ZoPrimitives::Platform
