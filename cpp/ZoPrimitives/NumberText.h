#pragma once

#include <cstddef>
#include <string_view>

namespace ZoPrimitives {

// Numbers in text, the same on every system and in every locale. What cannot be read gives 0; what follows
// the number is of no account.

/// Blanks, a sign and digits at the start; beyond 64 bits some number that no 32 bits hold either.
long long IntegerOf(std::string_view text) noexcept;
/// The nearest `int`.
int IntOf(std::string_view text) noexcept;
/// The `int` that a text consists of, an optional sign and digits; false for any other text.
bool WholeInt(std::string_view text, int& value) noexcept;
/// As C's `atof` in the C locale (hexadecimal, "inf" and "nan" included); infinite when out of range.
double RealOf(std::string_view text) noexcept;
float FloatOf(std::string_view text) noexcept;

/// A double as text, for tokens, as the C runtime's `_gcvt(value, 15)` writes it: 15 significant digits
/// without the zeros at their end, and always a point ("100."). The fixed form for decimal exponents from -1
/// to 14, otherwise an exponent of a sign and three digits ("1.e+020"). "inf" and "nan" for what has no
/// digits; zero keeps its sign.
///
/// A double that is the nearest one to a number of at most 15 significant digits reads back as itself.
class RealText {
public:
    explicit RealText(double value) noexcept;
    std::string_view Text() const noexcept { return {text, size}; }
    const char* c_str() const noexcept { return text; }

private:
    void Append(std::string_view more) noexcept;
    void Append(std::size_t count, char c) noexcept;
    void AppendDigits(double value) noexcept;

    char text[32]; // the longest is "-1.23456789012345e-300"
    std::size_t size = 0;
};

} // namespace ZoPrimitives
