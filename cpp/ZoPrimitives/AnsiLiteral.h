#pragma once

#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>
#include <cstddef>

namespace ZoPrimitives {

namespace Ansi {

template <std::size_t N>
struct Literal {
    char bytes[N];
    consteval Literal(const char (&source)[N]) { std::copy(source, source + N, bytes); }
};

/// The UTF-8 `source` in Windows-1252, padded with zeros.
template <std::size_t N>
struct Text {
    char bytes[N] = {};
    consteval explicit Text(const Literal<N>& source) {
        const char* from = source.bytes;
        for (char* to = bytes; *from != '\0'; ++to) {
            const int byte = Windows1252::FromUnicode(Windows1252::Next(from));
            if (byte < 0) throw "Windows-1252 lacks a character of this literal";
            *to = static_cast<char>(byte);
        }
    }
};

template <Literal SOURCE>
inline constexpr Text<sizeof SOURCE.bytes> TEXT{SOURCE};

} // namespace Ansi

/// "Espaço"_ansi: the UTF-8 literal as a NUL-terminated Windows-1252 text with static storage.
template <Ansi::Literal SOURCE>
consteval const char* operator""_ansi() {
    return Ansi::TEXT<SOURCE>.bytes;
}

} // namespace ZoPrimitives
