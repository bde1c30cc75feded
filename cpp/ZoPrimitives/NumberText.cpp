#include "ZoPrimitives/NumberText.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace ZoPrimitives {

namespace {

constexpr int SIGNIFICANT_DIGITS = 15;
constexpr std::size_t EXPONENT_DIGITS = 3;

bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Removes leading blanks and the sign; returns whether it is a minus.
bool TakeSign(std::string_view& text) {
    while (!text.empty() && IsBlank(text[0])) text.remove_prefix(1);
    const bool negative = !text.empty() && text[0] == '-';
    if (negative || (!text.empty() && text[0] == '+')) text.remove_prefix(1);
    return negative;
}

long long TakeDigits(std::string_view& text) {
    long long value = 0;
    for (; !text.empty() && IsDigit(text[0]); text.remove_prefix(1)) {
        value = std::min(value * 10 + (text[0] - '0'), LLONG_MAX / 16);
    }
    return value;
}

/// Removes an incomplete exponent, because `from_chars` accepts "p+-1" as one. `text` starts at its first
/// digit or point.
std::string_view WithoutHalfExponent(std::string_view text, bool hexadecimal) {
    const std::size_t end = text.find_first_not_of(hexadecimal ? "0123456789abcdefABCDEF." : "0123456789.");
    if (end == std::string_view::npos || (text[end] | 0x20) != (hexadecimal ? 'p' : 'e')) return text;
    std::size_t digit = end + 1;
    if (digit < text.size() && (text[digit] == '+' || text[digit] == '-')) ++digit;
    return digit < text.size() && IsDigit(text[digit]) ? text : text.substr(0, end);
}

/// Whether an out-of-range number is too large, not too small. `text` starts at its first digit or point.
bool TooLarge(std::string_view text, bool hexadecimal) {
    long long scale = 0; // the position of the first nonzero digit, in digits
    bool point = false;
    bool significant = false;
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '.' && !point) {
            point = true;
        } else if (hexadecimal ? IsHexDigit(c) : IsDigit(c)) {
            if (!significant && c != '0') significant = true;
            if (significant && !point) ++scale;
            if (!significant && point) --scale;
        } else {
            break;
        }
    }
    if (hexadecimal) scale *= 4;
    if (i < text.size() && (text[i] | 0x20) == (hexadecimal ? 'p' : 'e')) {
        text.remove_prefix(i + 1);
        const bool negative = !text.empty() && text[0] == '-';
        if (negative || (!text.empty() && text[0] == '+')) text.remove_prefix(1);
        const long long exponent = TakeDigits(text);
        scale += negative ? -exponent : exponent;
    }
    return scale > 0;
}

} // namespace

long long IntegerOf(std::string_view text) noexcept {
    const bool negative = TakeSign(text);
    const long long value = TakeDigits(text);
    return negative ? -value : value;
}

int IntOf(std::string_view text) noexcept {
    return static_cast<int>(std::clamp<long long>(IntegerOf(text), INT_MIN, INT_MAX));
}

bool WholeInt(std::string_view text, int& value) noexcept {
    if (!text.empty() && IsBlank(text[0])) return false;
    const bool negative = TakeSign(text);
    if (text.empty()) return false;
    const long long read = negative ? -TakeDigits(text) : TakeDigits(text);
    if (!text.empty() || read < INT_MIN || read > INT_MAX) return false;
    value = static_cast<int>(read);
    return true;
}

double RealOf(std::string_view text) noexcept {
    const bool negative = TakeSign(text);
    if (text.empty() || text[0] == '-') return 0; // `from_chars` would accept a second minus

    double value = 0;
    std::from_chars_result result{text.data(), std::errc::invalid_argument};
    const bool hexadecimal = text.size() > 1 && text[0] == '0' && (text[1] | 0x20) == 'x';
    if (hexadecimal) text.remove_prefix(2);
    text = WithoutHalfExponent(text, hexadecimal);
    if (hexadecimal) {
        if (!text.empty() && text[0] != '-') {
            result = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::hex);
        }
        // "0xinf" and "0xnan" read as their leading zero.
        if (!std::isfinite(value)) value = 0;
    } else {
        result = std::from_chars(text.data(), text.data() + text.size(), value);
        if (result.ec == std::errc::invalid_argument) return 0;
    }
    if (result.ec == std::errc::result_out_of_range) {
        value = TooLarge(text, hexadecimal) ? std::numeric_limits<double>::infinity() : 0;
    }
    return negative ? -value : value;
}

float FloatOf(std::string_view text) noexcept {
    const double value = RealOf(text);
    const double size = std::fabs(value);
    // Converting a double beyond the largest float is undefined; up to half a step beyond, the result is the
    // largest.
    if (!(size > FLT_MAX)) return static_cast<float>(value);
    const float nearest = size < 0x1.ffffffp127 ? FLT_MAX : std::numeric_limits<float>::infinity();
    return std::signbit(value) ? -nearest : nearest;
}

void RealText::Append(std::string_view more) noexcept {
    std::copy(more.begin(), more.end(), text + size);
    size += more.size();
    text[size] = '\0';
}

void RealText::Append(std::size_t count, char c) noexcept {
    std::fill_n(text + size, count, c);
    size += count;
    text[size] = '\0';
}

RealText::RealText(double value) noexcept {
    if (std::signbit(value) && !std::isnan(value)) Append("-");
    if (std::isnan(value)) {
        Append("nan");
    } else if (std::isinf(value)) {
        Append("inf");
    } else if (value == 0) {
        Append("0.");
    } else {
        AppendDigits(std::fabs(value));
    }
}

void RealText::AppendDigits(double value) noexcept {
    // "d.dddddddddddddde+xx", rounded to 15 digits.
    char rounded[32];
    const std::to_chars_result end = std::to_chars(rounded, rounded + sizeof rounded, value,
                                                   std::chars_format::scientific, SIGNIFICANT_DIGITS - 1);
    char digits[SIGNIFICANT_DIGITS];
    digits[0] = rounded[0];
    std::copy_n(rounded + 2, SIGNIFICANT_DIGITS - 1, digits + 1);
    std::string_view significant(digits, SIGNIFICANT_DIGITS);
    while (significant.size() > 1 && significant.back() == '0') significant.remove_suffix(1);
    const char* behind = rounded + 2 + SIGNIFICANT_DIGITS; // after the digits, the point and the "e"
    const int exponent = IntOf({behind, static_cast<std::size_t>(end.ptr - behind)});

    const std::size_t count = significant.size();
    const auto distance = static_cast<std::size_t>(std::abs(exponent));
    if (exponent < -1 || exponent >= SIGNIFICANT_DIGITS) {
        Append(significant.substr(0, 1));
        Append(".");
        Append(significant.substr(1));
        Append(exponent < 0 ? "e-" : "e+");
        char exponentDigits[8];
        const std::to_chars_result last =
            std::to_chars(exponentDigits, exponentDigits + sizeof exponentDigits, distance);
        const std::string_view power(exponentDigits, static_cast<std::size_t>(last.ptr - exponentDigits));
        for (std::size_t written = power.size(); written < EXPONENT_DIGITS; ++written) Append("0");
        Append(power);
    } else if (exponent < 0) {
        Append("0.");
        Append(significant);
    } else {
        Append(significant.substr(0, distance + 1));
        if (count <= distance) Append(distance + 1 - count, '0');
        Append(".");
        if (count > distance + 1) Append(significant.substr(distance + 1));
    }
}

} // namespace ZoPrimitives
