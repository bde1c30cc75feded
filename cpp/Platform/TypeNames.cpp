#include "Platform/TypeNames.h"

#include "Platform/Platform.h"

#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <memory>
#ifdef __GNUC__
#include <cxxabi.h>
#endif

namespace ZoPrimitives::Platform {

namespace {

struct Spelling {
    std::string of; // Microsoft's
    std::string to;
};

bool IsOfWord(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

void Respell(std::string& name, const Spelling& spelling) {
    for (std::size_t at = 0; (at = name.find(spelling.of, at)) != std::string::npos;) {
        const bool endsWord = at > 0 && IsOfWord(name[at - 1]) && IsOfWord(spelling.of[0]);
        if (!endsWord) name.replace(at, spelling.of.size(), spelling.to);
        at += (endsWord ? spelling.of : spelling.to).size();
    }
}

} // namespace

std::string CommonTypeName(std::string name) {
    for (const Spelling& spelling : {Spelling{"class ", ""},
                                     {"struct ", ""},
                                     {"enum ", ""},
                                     {"union ", ""},
                                     {"`anonymous namespace'", "(anonymous namespace)"},
                                     {"__int64", "long long"},
                                     {",", ", "}})
        Respell(name, spelling);
    return name;
}

#ifdef __GNUC__

std::string TypeName(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : type.name();
}

#else

std::string TypeName(const std::type_info& type) { return CommonTypeName(type.name()); }

#endif

} // namespace ZoPrimitives::Platform
