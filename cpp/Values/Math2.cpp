#include "ZoPrimitives/Math2.h"

#include "Values/Components.h"
#include "Values/FullTurn.h"
#include "ZoPrimitives/NumberText.h"
#include "ZoPrimitives/Saturated.h"
#include "ZoPrimitives/grandeza.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

namespace ZoPrimitives {

namespace {

constexpr double TOLERANCES[] = {1e0,   1e-1,  1e-2,  1e-3,  1e-4,  1e-5,  1e-6,  1e-7,
                                 1e-8,  1e-9,  1e-10, 1e-11, 1e-12, 1e-13, 1e-14, 1e-15,
                                 1e-16, 1e-17, 1e-18, 1e-19, 1e-20, 0.0,   0.0};

constexpr double EXACT_POWERS[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

constexpr unsigned MAX_DECIMALS =
    std::numeric_limits<double>::max_exponent10; // a greater power of ten is infinite

double Tolerance(unsigned precision) {
    ZO_ASSERT(precision <= 22, "precision <= 22", ZoSources::MATH2);
    return TOLERANCES[precision];
}

/// The number `start` ("1e" or "1e-") with this exponent; infinite or 0 when out of range.
double Power(const char* start, unsigned exponent) { return RealOf(start + std::to_string(exponent)); }

double PowerOfTen(unsigned exponent) {
    return exponent < std::size(EXACT_POWERS) ? EXACT_POWERS[exponent] : Power("1e", exponent);
}

/// 10^-exponent.
double InversePowerOfTen(unsigned exponent) {
    return exponent <= 20 ? TOLERANCES[exponent] : Power("1e-", exponent);
}

/// The decimal exponent of the first digit of a finite number.
int DecimalExponent(double value) {
    char text[32];
    const char* end = std::to_chars(text, text + sizeof(text), value, std::chars_format::scientific).ptr;
    const std::string_view all(text, static_cast<std::size_t>(end - text));
    return IntOf(all.substr(all.find('e') + 1));
}

/// Multiplies by 10 until the magnitude, which must not be 0, reaches `low`; returns the number of steps.
int ScaleUp(double& value, double low) {
    int steps = 0;
    for (; !GreaterEqual(std::abs(value), low, 20); ++steps) value *= 10;
    return steps;
}

/// Multiplies by 0.1 until the magnitude, which must be finite, is below `high`; returns the number of steps.
int ScaleDown(double& value, double high) {
    int steps = 0;
    for (; !Less(std::abs(value), high, 20); ++steps) value *= 0.1;
    return steps;
}

/// Scales `value` to `intDigits` digits before the point and returns its exponent.
int Normalise(double& value, unsigned intDigits) {
    const double limit = PowerOfTen(intDigits);
    if (!std::isfinite(value) || !std::isfinite(limit) || Equal(value, 0, 20)) return 0;
    return Greater(std::abs(value), limit, 20) ? ScaleDown(value, limit) : -ScaleUp(value, limit / 10);
}

/// The number of decimals with which `value`, divided by 10^exponent, shows as many digits as a number with
/// one digit before the point.
unsigned WidenedDecimals(double value, int exponent, unsigned decimals) {
    if (value == 0) return decimals;
    const long long zeros = static_cast<long long>(exponent) - DecimalExponent(value);
    if (zeros < 0) return std::max(decimals, 2u);
    if (decimals >= MAX_DECIMALS || Equal(value, 0, 20)) return decimals;
    return decimals + static_cast<unsigned>(std::min<long long>(zeros, MAX_DECIMALS - decimals));
}

ZoString WithExponent(const ZoString& mantissa, int exponent) {
    return exponent == 0 || mantissa == "nan" ? mantissa : mantissa + "x10^" + exponent;
}

} // namespace

bool Equal(double a, double b, unsigned precision) { return Tolerance(precision) > std::abs(a - b); }

bool Equal(const GAngulo& a, const GAngulo& b, unsigned precision) {
    const auto turns = [&](double none, double full) {
        return Equal(none, 0, precision) && Equal(full, FULL_TURN, precision);
    };
    return turns(a, b) || turns(b, a) || Equal(double{a}, double{b}, precision);
}

bool Different(double a, double b, unsigned precision) { return !Equal(a, b, precision); }

bool Less(double a, double b, unsigned precision) { return !Equal(a, b, precision) && b > a; }

bool LessEqual(double a, double b, unsigned precision) {
    return Less(a, b, precision) || Equal(a, b, precision);
}

bool Greater(double a, double b, unsigned precision) {
    return !Less(a, b, precision) && !Equal(a, b, precision);
}

bool GreaterEqual(double a, double b, unsigned precision) { return !Less(a, b, precision); }

double Min(double a, double b, unsigned precision) { return Less(a, b, precision) ? a : b; }

double Max(double a, double b, unsigned precision) { return Less(b, a, precision) ? a : b; }

bool Between(double x, double low, double high, unsigned precision) {
    return Greater(x, low, precision) && Less(x, high, precision);
}

bool BetweenEqual(double x, double low, double high, unsigned precision) {
    return GreaterEqual(x, low, precision) && LessEqual(x, high, precision);
}

double Clamp(double value, double upper, double lower) { return Max(lower, Min(upper, value, 4), 4); }

double IntPart(double x) { return x < 0 ? std::ceil(x) : std::floor(x); }

double ExRound(double x, unsigned decimals) {
    const double sign = x < 0 ? -1 : 1;
    const double whole = IntPart(x);
    const double fraction = std::abs(x - whole);
    const double power = PowerOfTen(decimals); // infinite above 308 decimals, which gives NaN
    const double scaled = (fraction + 5 * InversePowerOfTen(decimals + 1)) * power;
    return whole + sign * IntPart(scaled) / power;
}

double RobustRound(double x, unsigned decimals) { return ExRound(ExRound(x, decimals + 2), decimals); }

double RoundUp(double x, unsigned decimals) {
    const double power = PowerOfTen(decimals);
    return std::ceil(ExRound(x * power, 1)) / power;
}

double RoundDown(double x, unsigned decimals) {
    const double power = PowerOfTen(decimals);
    return std::floor(x * power) / power;
}

double Round(long double x) { return std::floor(static_cast<double>(x) + 0.5); }

double RoundNearest(long double x) {
    const auto value = static_cast<double>(x);
    const double below = std::floor(value);
    return value > below + 0.5 ? std::ceil(value) : below;
}

int RoundUp(long double x) { return Saturated(std::ceil(static_cast<double>(x))); }

double AdjustAngle(double x) {
    const double rest = x - Saturated(x / FULL_TURN) * FULL_TURN;
    return rest < 0 ? rest + FULL_TURN : rest;
}

double ExAdjustAngle(double angle, unsigned precision, bool radians) {
    const double full = radians ? ExRound(FULL_TURN, precision) : 360.0;
    const double x = ExRound(angle, precision);
    const double rest = ExRound(x - Saturated(x / full) * full, precision);
    return Less(rest, 0.0, precision) ? rest + full : rest;
}

bool Bhaskara(double& x1, double& x2, double a, double b, double c) {
    const double discriminant = b * b - (4 * a) * c;
    if (discriminant < 0) return false;
    const double root = std::sqrt(discriminant);
    x1 = (root - b) / (2 * a);
    x2 = (-b - root) / (2 * a);
    return true;
}

float Interpolacao(float x0, float x1, float x, float y0, float y1) {
    return ((y1 - y0) / (x1 - x0)) * (x - x0) + y0;
}

double Interpolacao(double x0, double x1, double x, double y0, double y1) {
    return ((y1 - y0) / (x1 - x0)) * (x - x0) + y0;
}

int Factorial(int n) {
    std::uint32_t product = 1;
    for (int i = 2; i <= n && product != 0; ++i) product *= static_cast<std::uint32_t>(i);
    return static_cast<int>(product);
}

long double Distance(long double x1, long double y1, long double z1, long double x2, long double y2,
                     long double z2) {
    const double x = static_cast<double>(x2) - static_cast<double>(x1);
    const double y = static_cast<double>(y2) - static_cast<double>(y1);
    const double z = static_cast<double>(z2) - static_cast<double>(z1);
    return Length({x, y, z});
}

bool IsNan(double x) { return std::isnan(x); }

unsigned SwapBytes(unsigned) { return 0; }

int HexStrToInt(const char* text) {
    if (text == nullptr) return 0;
    if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text += 2;
    std::uint32_t value = 0;
    for (;; ++text) {
        unsigned digit = 0;
        if (*text >= '0' && *text <= '9') {
            digit = static_cast<unsigned>(*text - '0');
        } else if (*text >= 'A' && *text <= 'F') {
            digit = static_cast<unsigned>(*text - 'A' + 10);
        } else if (*text >= 'a' && *text <= 'f') {
            digit = static_cast<unsigned>(*text - 'a' + 10);
        } else {
            return static_cast<int>(value);
        }
        value = value * 16 + digit;
    }
}

unsigned long DoubleArrayToColor(const double rgb[3]) {
    ZoString text;
    for (int i = 0; i < 3; ++i) {
        const int component = ZoString(rgb[i] * 255.0).ToInt();
        text += ZoString::FormatString("%.2X", static_cast<unsigned>(component));
    }
    return static_cast<std::uint32_t>(HexStrToInt(text.c_str()));
}

void ULongToDoubleArray(unsigned long color, double out[3]) {
    const ZoString text = ZoString::FormatString("%.6X", static_cast<unsigned>(color));
    for (unsigned i = 0; i < 3; ++i) {
        const unsigned first = 4 - 2 * i;
        out[i] = HexStrToInt(text.substr(first, first + 1).c_str()) / 255.0;
    }
}

ZoString FormatFloat(double value, unsigned decimals, bool keepZeros, char separator) {
    double rounded = ExRound(value, decimals);
    if (!std::isfinite(rounded)) return "nan";
    if (rounded == 0) rounded = 0; // not -0

    char text[2 * MAX_DECIMALS + 8]; // sign, digits, point, decimals
    char* end = std::to_chars(text, text + sizeof(text), rounded, std::chars_format::fixed,
                              static_cast<int>(decimals))
                    .ptr;
    if (decimals != 0) {
        char* point = end - decimals - 1;
        if (!keepZeros) {
            while (end[-1] == '0') --end;
            if (end[-1] == '.') --end;
        }
        if (point < end) *point = separator;
    }
    return {text, static_cast<unsigned>(end - text)};
}

ZoString FormatFloatInScientificNotation(double value, unsigned intDigits, unsigned decimals, bool keepZeros,
                                         char separator) {
    double mantissa = value;
    const int exponent = Normalise(mantissa, intDigits);
    return WithExponent(FormatFloat(mantissa, decimals, keepZeros, separator), exponent);
}

ZoString FormatFloatInScientificNotationWithFixedExponent(double value, int exponent, unsigned decimals,
                                                          bool keepZeros, char separator) {
    double mantissa = value;
    const double step = exponent > 0 ? 0.1 : 10;
    const int direction = exponent > 0 ? 1 : -1;
    for (int i = 0; i != exponent && mantissa != 0 && std::isfinite(mantissa); i += direction)
        mantissa *= step;
    const unsigned wanted = WidenedDecimals(value, exponent, decimals);
    return WithExponent(FormatFloat(mantissa, wanted, keepZeros, separator), exponent);
}

} // namespace ZoPrimitives
