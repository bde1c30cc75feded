#pragma once

#include "ZoPrimitives/ZoString.h"

#include <cstdint>
#include <type_traits>

namespace ZoPrimitives {

class Point3D;

/// The 64-bit fingerprint of a value.
class ZO_API TChecksumType {
public:
    TChecksumType() noexcept : value(0) {}
    TChecksumType(std::uint64_t newValue) noexcept : value(newValue) {}
    TChecksumType(const TChecksumType&) noexcept;
    TChecksumType& operator=(const TChecksumType&) noexcept;
    virtual ~TChecksumType();
    virtual bool operator==(const TChecksumType& other) const;
    /// Negates the most derived `operator==`.
    virtual bool operator!=(const TChecksumType& other) const;

    unsigned long long GetValue() const noexcept { return value; }
    void SetValue(unsigned long long newValue) noexcept { value = newValue; }

private:
    std::uint64_t value;
};

/// The 64-bit FNV-1a hash of a value's bytes, the same in every process and on every platform.
ZO_API TChecksumType CreateChecksum(int value);
ZO_API TChecksumType CreateChecksum(bool value);
/// 0.0 and -0.0 have the same hash; every other bit pattern, NaNs included, has its own.
ZO_API TChecksumType CreateChecksum(double value);
/// Hashes the characters without the terminator.
ZO_API TChecksumType CreateChecksum(const ZoString& text);
/// The same hash as for a `ZoString` of that text; null counts as the empty text.
ZO_API TChecksumType CreateChecksum(const char* text);
/// Twice the exclusive or of the coordinates' checksums: their order does not matter, and equal ones cancel
/// out.
ZO_API TChecksumType CreateChecksum(const Point3D& point);

/// Types that would convert to another value on the way to `CreateChecksum`, or whose width depends on the
/// platform: integers that do not fit an int, long double, and pointers other than text.
template <class T>
inline constexpr bool NeedsExplicitChecksumType =
    (std::is_pointer_v<T> && !std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, char>) ||
    std::is_member_pointer_v<T> ||
    (std::is_integral_v<T> && sizeof(T) >= sizeof(int) && !std::is_same_v<T, int>) ||
    std::is_same_v<T, long double>;

template <class T, std::enable_if_t<NeedsExplicitChecksumType<T>, int> = 0>
TChecksumType CreateChecksum(T) = delete; // cast to the int, bool, double or text that is meant

/// The starting value for `TCombinedChecksum`.
ZO_API TChecksumType GetChecksumSeed();
/// A random value, uniform from 1 to 2,147,483,648.
ZO_API TChecksumType CreateRandomChecksum();

/// The fingerprint of a structure: start from `GetChecksumSeed()` and combine the checksum of each member.
/// The order matters; only the last 64 combined values affect the result.
class ZO_API TCombinedChecksum {
public:
    explicit TCombinedChecksum(TChecksumType seed);
    TCombinedChecksum(const TCombinedChecksum&);
    TCombinedChecksum& operator=(const TCombinedChecksum&);
    virtual ~TCombinedChecksum();

    void Combine(const TChecksumType& other);
    template <class T, std::enable_if_t<std::is_arithmetic_v<T>, int> = 0>
    void Combine(T) = delete; // a plain number is no checksum: combine CreateChecksum(number)

    TChecksumType GetChecksum() const { return checksum; }
    void SetChecksum(TChecksumType newChecksum) { checksum = newChecksum; }

private:
    TChecksumType checksum;
};

} // namespace ZoPrimitives
