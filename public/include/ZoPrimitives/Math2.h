#pragma once

// Comparison of doubles within a tolerance, rounding, angles, colour words, and numbers as display text.
//
// A precision is a number of decimal places, 0 to 22; more fails the assertion "precision <= 22". Values are
// equal when they differ by less than the tolerance, 10^-precision. At 21 and 22 the tolerance is 0: nothing
// is equal, not even a value and itself, and everything that is not less is greater.

#include "ZoPrimitives/ZoString.h"

#include <type_traits>

namespace ZoPrimitives {

class GAngulo;

// NaN is neither equal to nor less than anything, so `Greater` and `GreaterEqual` hold. The same goes for an
// infinity and itself, because their difference is NaN.

ZO_API bool Equal(double a, double b, unsigned precision);
/// Compares the angles in radians. 0 equals a full turn, but other multiples of a turn are distinct.
ZO_API bool Equal(const GAngulo& a, const GAngulo& b, unsigned precision);
ZO_API bool Different(double a, double b, unsigned precision);
ZO_API bool Less(double a, double b, unsigned precision);
ZO_API bool LessEqual(double a, double b, unsigned precision);
ZO_API bool Greater(double a, double b, unsigned precision);
ZO_API bool GreaterEqual(double a, double b, unsigned precision);
/// The second value when both are equal within the tolerance.
ZO_API double Min(double a, double b, unsigned precision);
/// The second value when both are equal within the tolerance.
ZO_API double Max(double a, double b, unsigned precision);
/// Excludes the bounds and values equal to them.
ZO_API bool Between(double x, double low, double high, unsigned precision);
/// Includes the bounds.
ZO_API bool BetweenEqual(double x, double low, double high, unsigned precision);
/// The value limited to the bounds; the upper bound is applied first. A value equal to a bound at precision 4
/// is returned unchanged.
ZO_API double Clamp(double value, double upper, double lower);

// Rounding to a number of decimals. Above 308 decimals the power of ten is infinite and the result NaN.

/// Drops the decimals, towards zero.
ZO_API double IntPart(double x);
/// Halves round away from zero. Only the fraction is rounded, so a value without decimals (all from 2^53 on)
/// is unchanged. Half a unit is added to the fraction in binary, so 0.615, which is slightly less than that,
/// rounds to 0.62. An infinity gives NaN.
ZO_API double ExRound(double x, unsigned decimals);
/// Rounds with `ExRound` to two more decimals, then to `decimals`.
ZO_API double RobustRound(double x, unsigned decimals);
/// Rounds towards plus infinity, after rounding one decimal further: 1.2304 gives 1.23. NaN for an infinity,
/// or where x times the power of ten overflows.
ZO_API double RoundUp(double x, unsigned decimals);
/// Rounds the product with the power of ten towards minus infinity without correcting it: 0.29 gives 0.28,
/// because 100 times 0.29 is below 29. An infinity is unchanged, and is the result where the product
/// overflows.
ZO_API double RoundDown(double x, unsigned decimals);

// Computed in double on every platform.

/// Floor of x + 0.5: halves go up, and so does 0.49999999999999994, the double just below a half. Infinities
/// and values without decimals are unchanged, except odd ones from 2^52 to 2^53, which go up.
ZO_API double Round(long double x);
/// Halves go down. Infinities and values without decimals are unchanged.
ZO_API double RoundNearest(long double x);
/// The next integer upwards; the nearest `int` when out of range, 0 for NaN.
ZO_API int RoundUp(long double x);

// Angles. Turns are counted in 32 bits: an angle of more turns is not brought into range. An infinity is
// unchanged or becomes NaN.

/// The angle in radians in [0, 2 pi); within rounding of a whole turn it may be 2 pi itself.
ZO_API double AdjustAngle(double x);
/// The angle in [0, full turn), where a full turn is 2 pi or, unless `radians`, 360. The angle and the full
/// turn are rounded to `precision` decimals first, and so is the remainder after whole turns, to which a full
/// turn is added if it is negative. Within rounding of a whole turn the result may be the full turn itself.
ZO_API double ExAdjustAngle(double angle, unsigned precision, bool radians);

/// The roots of a x^2 + b x + c; x1 has the positive square root. False, with x1 and x2 unchanged, when b^2 -
/// 4 a c, as computed, is negative. The roots are infinite or NaN when a is 0, and NaN when the discriminant
/// is. When b^2 is much larger than 4 a c, the root near 0 loses digits.
ZO_API bool Bhaskara(double& x1, double& x2, double a, double b, double c);

/// The y at x on the line through (x0, y0) and (x1, y1); infinite or NaN when x0 equals x1.
ZO_API float Interpolacao(float x0, float x1, float x, float y0, float y1);
ZO_API double Interpolacao(double x0, double x1, double x, double y0, double y1);
/// Integers and mixed arguments are converted to double.
template <class A, class B, class C, class D, class E,
          std::enable_if_t<std::is_arithmetic_v<A> && std::is_arithmetic_v<B> && std::is_arithmetic_v<C> &&
                               std::is_arithmetic_v<D> && std::is_arithmetic_v<E>,
                           int> = 0>
double Interpolacao(A x0, B x1, C x, D y0, E y1) {
    return Interpolacao(static_cast<double>(x0), static_cast<double>(x1), static_cast<double>(x),
                        static_cast<double>(y0), static_cast<double>(y1));
}

/// The low 32 bits of n!: exact up to 12, 0 from 34 on. 1 for n below 1.
ZO_API int Factorial(int n);
/// Computed in double on every platform.
ZO_API long double Distance(long double x1, long double y1, long double z1, long double x2, long double y2,
                            long double z2);
ZO_API bool IsNan(double x);
/// Always 0: a placeholder.
ZO_API unsigned SwapBytes(unsigned value);
/// The hexadecimal digits at the start, after an optional "0x"; the low 32 bits if there are more than eight.
/// 0 for a text without any, and for null.
ZO_API int HexStrToInt(const char* text);

// Colour words. The two functions use opposite byte orders: neither inverts the other.

/// 0x00RRGGBB from components between 0 and 1. Components are truncated, not rounded, to 255ths (after
/// rounding these to six decimals). Outside 0 to 1 their digits run into the other components.
ZO_API unsigned long DoubleArrayToColor(const double rgb[3]);
/// Components between 0 and 1 of 0x00BBGGRR; above 0xFFFFFF, of its first six hexadecimal digits. Uses the
/// low 32 bits.
ZO_API void ULongToDoubleArray(unsigned long color, double out[3]);

// Numbers for display: rounded with `ExRound`, without exponent or grouping, and never "-0". `separator`
// replaces the decimal point. Trailing zeros of the decimals are dropped unless `keepZeros`. Infinities, NaN
// and everything with more than 308 decimals give "nan".

ZO_API ZoString FormatFloat(double value, unsigned decimals, bool keepZeros, char separator);
/// The value scaled to `intDigits` digits before the point, and its power of ten as "x10^4" unless the
/// exponent is 0. Values below 1e-20 are not scaled.
ZO_API ZoString FormatFloatInScientificNotation(double value, unsigned intDigits, unsigned decimals,
                                                bool keepZeros, char separator);
/// The value divided by 10^exponent, then "x10^" and the exponent unless it is 0.
///
/// A number with one digit before the point shows `decimals` + 1 significant digits. To show as many, a
/// smaller one gets an extra decimal for each leading zero, up to 308 decimals in total. One of 10 or more
/// gets at least two decimals. Values below 1e-20 get no extra decimals.
ZO_API ZoString FormatFloatInScientificNotationWithFixedExponent(double value, int exponent,
                                                                 unsigned decimals, bool keepZeros,
                                                                 char separator);

} // namespace ZoPrimitives
