#pragma once

#include <cstddef>
#include <string_view>

namespace ZoPrimitives {

// Numbers in text, identical on every system and in every locale. Unreadable text gives 0; characters after
// the number are ignored.

constexpr bool IsDigit(char c) noexcept { return c >= '0' && c <= '9'; }

/// Parses blanks, a sign and digits at the start; beyond 64 bits the result is only guaranteed not to fit 32
/// bits.
long long IntegerOf(std::string_view text) noexcept;
/// As above, limited to the nearest `int`.
int IntOf(std::string_view text) noexcept;
/// Parses a text that is exactly an `int`, an optional sign and digits; false for any other text.
bool WholeInt(std::string_view text, int& value) noexcept;
/// Parses as C's `atof` in the C locale (hexadecimal, "inf" and "nan" included); infinite when out of range.
double RealOf(std::string_view text) noexcept;
float FloatOf(std::string_view text) noexcept;

/// A double as a text token, written as the C runtime's `_gcvt(value, 15)` does: 15 significant digits
/// without trailing zeros, and always a point ("100."). Fixed notation for decimal exponents from -1 to 14,
/// otherwise an exponent with a sign and three digits ("1.e+020"). "inf" or "nan" for other values; zero
/// keeps its sign.
///
/// The double nearest to a number of at most 15 significant digits reads back exactly.
class RealText {
public:
    explicit RealText(double value) noexcept;
    std::string_view Text() const noexcept { return {text, size}; }
    const char* c_str() const noexcept { return text; }

private:
    void Append(std::string_view more) noexcept;
    void Append(std::size_t count, char c) noexcept;
    void AppendDigits(double value) noexcept;

    char text[32]; // the longest text is "-1.23456789012345e-300"
    std::size_t size = 0;
};

} // namespace ZoPrimitives
