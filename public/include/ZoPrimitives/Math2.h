#pragma once

// Comparing doubles within a tolerance, rounding, angles, colour words, and numbers as text for display.
//
// A precision is a count of decimal places, 0 to 22; more fails the assertion "precision <= 22". The
// tolerance is 10^-precision, and the difference must stay below it. At 21 and 22 it is 0: nothing is equal,
// not even a value and itself, and everything that is not less is greater.

#include "ZoPrimitives/ZoString.h"

#include <type_traits>

namespace ZoPrimitives {

class GAngulo;

// Beside a NaN nothing is equal or less, so that `Greater` and `GreaterEqual` hold. The same goes for an
// infinity and itself, as their difference is a NaN.

ZO_API bool Equal(double a, double b, unsigned precision);
/// Of the angles in radians. 0 and a full turn are the same; other multiples of a turn are not.
ZO_API bool Equal(const GAngulo& a, const GAngulo& b, unsigned precision);
ZO_API bool Different(double a, double b, unsigned precision);
ZO_API bool Less(double a, double b, unsigned precision);
ZO_API bool LessEqual(double a, double b, unsigned precision);
ZO_API bool Greater(double a, double b, unsigned precision);
ZO_API bool GreaterEqual(double a, double b, unsigned precision);
/// Of two that are equal within the tolerance, the second one.
ZO_API double Min(double a, double b, unsigned precision);
/// Of two that are equal within the tolerance, the second one.
ZO_API double Max(double a, double b, unsigned precision);
/// Both ends excluded, with what is equal to them.
ZO_API bool Between(double x, double low, double high, unsigned precision);
/// Both ends included.
ZO_API bool BetweenEqual(double x, double low, double high, unsigned precision);
/// The value within the bounds, the upper one first. A value that is equal to a bound at precision 4 is
/// returned as it is.
ZO_API double Clamp(double value, double upper, double lower);

// Rounding to a count of decimals. Above 308 decimals the power of ten is infinite: NaN.

/// Without its decimals, towards zero.
ZO_API double IntPart(double x);
/// Halves go away from zero. The whole part is left as it is, so that a value without decimals (all from 2^53
/// on) comes back unchanged. What is a half is decided in binary, after adding half a unit to the fraction:
/// 0.615, which lies just below, rounds to 0.62. An infinity gives NaN.
ZO_API double ExRound(double x, unsigned decimals);
/// `ExRound` to two more decimals, then to those wanted.
ZO_API double RobustRound(double x, unsigned decimals);
/// Towards plus infinity, after rounding one decimal further: 1.2304 gives 1.23. NaN for an infinity, or
/// where x times the power of ten overflows.
ZO_API double RoundUp(double x, unsigned decimals);
/// Towards minus infinity, of the product with the power of ten as it is: 0.29 gives 0.28, as 100 times that
/// falls short of 29. An infinity stays, and is the result where the product overflows.
ZO_API double RoundDown(double x, unsigned decimals);

// In the precision of double on every platform.

/// The whole part of x + 0.5, towards minus infinity: halves go up, and so does 0.49999999999999994, the
/// double before a half. Infinities and values without decimals stay, but for odd ones from 2^52 to 2^53,
/// which go up.
ZO_API double Round(long double x);
/// Halves go down. Infinities and values without decimals stay.
ZO_API double RoundNearest(long double x);
/// The next integer upwards; the nearest `int` when out of range, 0 for NaN.
ZO_API int RoundUp(long double x);

// Angles. Turns are counted in 32 bits: beyond that many the result is not brought into range. An infinity
// stays or becomes NaN.

/// In radians, from 0 on and below 2 pi; within rounding of a whole turn it may be 2 pi itself.
ZO_API double AdjustAngle(double x);
/// The angle and the full turn (2 pi or, unless `radians`, 360) are rounded to `precision` decimals first; so
/// is what the angle has beyond whole turns, to which a negative one adds a turn. From 0 on and below the
/// full turn; within rounding of a whole turn it may be the full turn itself.
ZO_API double ExAdjustAngle(double angle, unsigned precision, bool radians);

/// The roots of a x^2 + b x + c; x1 is that with the positive square root. False, with both left as they are,
/// when there are none: b^2 - 4 a c, as computed, is below 0. They are infinite or NaN with a = 0, NaN where
/// that is NaN. Where b^2 is by far the greater, the root next to 0 loses digits.
ZO_API bool Bhaskara(double& x1, double& x2, double a, double b, double c);

/// The y at x on the line through (x0, y0) and (x1, y1); infinite or NaN for x0 = x1.
ZO_API float Interpolacao(float x0, float x1, float x, float y0, float y1);
ZO_API double Interpolacao(double x0, double x1, double x, double y0, double y1);
/// Integers and mixed arguments are taken as doubles.
template <class A, class B, class C, class D, class E,
          std::enable_if_t<std::is_arithmetic_v<A> && std::is_arithmetic_v<B> && std::is_arithmetic_v<C> &&
                               std::is_arithmetic_v<D> && std::is_arithmetic_v<E>,
                           int> = 0>
double Interpolacao(A x0, B x1, C x, D y0, E y1) {
    return Interpolacao(static_cast<double>(x0), static_cast<double>(x1), static_cast<double>(x),
                        static_cast<double>(y0), static_cast<double>(y1));
}

/// The low 32 bits: right up to 12, 0 from 34 on. 1 for n below 1.
ZO_API int Factorial(int n);
/// Computed in double on every platform.
ZO_API long double Distance(long double x1, long double y1, long double z1, long double x2, long double y2,
                            long double z2);
ZO_API bool IsNan(double x);
/// Always 0: a placeholder that swaps nothing.
ZO_API unsigned SwapBytes(unsigned value);
/// The hexadecimal digits at the start, after an optional "0x"; the low 32 bits of more than eight. 0 for a
/// text without any, and for null.
ZO_API int HexStrToInt(const char* text);

// Colour words. The two take opposite orders of bytes: neither undoes the other.

/// 0x00RRGGBB of components from 0 to 1. They are cut, not rounded, to 255ths (after rounding these to six
/// decimals). Outside 0 to 1 the digits run into the other components.
ZO_API unsigned long DoubleArrayToColor(const double rgb[3]);
/// Components from 0 to 1 of 0x00BBGGRR; above 0xFFFFFF, of its first six hexadecimal digits. Counts 32 bits.
ZO_API void ULongToDoubleArray(unsigned long color, double out[3]);

// Numbers for display: rounded with `ExRound`, without exponent or grouping, and never "-0". `separator`
// stands for the decimal point. Unless `keepZeros`, trailing zeros of the decimals are left out. Infinities
// and NaN are written "nan", and so is everything with more than 308 decimals.

ZO_API ZoString FormatFloat(double value, unsigned decimals, bool keepZeros, char separator);
/// The value scaled to `intDigits` digits before the point, and its power of ten as "x10^4" unless that is 0.
/// Below 1e-20 values are not scaled.
ZO_API ZoString FormatFloatInScientificNotation(double value, unsigned intDigits, unsigned decimals,
                                                bool keepZeros, char separator);
/// The value divided by 10^exponent, then "x10^" and the exponent unless that is 0.
///
/// A number with one digit before the point shows `decimals` + 1 significant digits; one that is smaller in
/// this exponent gets as many further decimals as it has leading zeros, to show as many (308 in all at most).
/// One of 10 or more gets two decimals at least. Values below 1e-20 get no further decimals.
ZO_API ZoString FormatFloatInScientificNotationWithFixedExponent(double value, int exponent,
                                                                 unsigned decimals, bool keepZeros,
                                                                 char separator);

} // namespace ZoPrimitives
