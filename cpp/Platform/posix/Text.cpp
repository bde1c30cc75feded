#include "Platform/Platform.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <locale.h>
#include <memory>

namespace ZoPrimitives::Platform {

namespace {

using CaseTable = std::array<unsigned char, 256>;

/// Letters whose other case the code page lacks (the micro sign, sharp s, the florin) stay.
constexpr CaseTable MakeTable(bool upper) {
    CaseTable table{};
    for (unsigned i = 0; i < 256; ++i) table[i] = static_cast<unsigned char>(i);
    const auto pair = [&](unsigned capital, unsigned small) {
        table[upper ? small : capital] = static_cast<unsigned char>(upper ? capital : small);
    };
    for (unsigned c = 'A'; c <= 'Z'; ++c) pair(c, c + 0x20);
    for (unsigned c = 0xC0; c <= 0xDE; ++c) {
        if (c != 0xD7) pair(c, c + 0x20); // the multiplication and division signs are no letters
    }
    pair(0x8A, 0x9A);
    pair(0x8C, 0x9C);
    pair(0x8E, 0x9E);
    pair(0x9F, 0xFF);
    return table;
}

constexpr CaseTable UPPER = MakeTable(true);
constexpr CaseTable LOWER = MakeTable(false);

void Map(char* text, std::size_t size, const CaseTable& table) {
    for (std::size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>(table[static_cast<unsigned char>(text[i])]);
    }
}

} // namespace

void UppercaseAnsi(char* text, std::size_t size) { Map(text, size, UPPER); }
void LowercaseAnsi(char* text, std::size_t size) { Map(text, size, LOWER); }

ClassicLocale::ClassicLocale() {
    // Never freed: texts are formatted until the process ends.
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
