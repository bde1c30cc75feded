#pragma once

#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// A colour with four components, 0 to 255. Applications decide what alpha means.
class ZO_API TZoColor {
public:
    /// Black, with alpha 0.
    TZoColor() noexcept;
    TZoColor(unsigned char red, unsigned char green, unsigned char blue, unsigned char alpha) noexcept;
    TZoColor(const TZoColor&) noexcept;
    TZoColor& operator=(const TZoColor&) noexcept;
    virtual ~TZoColor();

    unsigned char GetRed() const noexcept { return red; }
    unsigned char GetGreen() const noexcept { return green; }
    unsigned char GetBlue() const noexcept { return blue; }
    unsigned char GetAlpha() const noexcept { return alpha; }
    void SetRed(unsigned char value) noexcept { red = value; }
    void SetGreen(unsigned char value) noexcept { green = value; }
    void SetBlue(unsigned char value) noexcept { blue = value; }
    void SetAlpha(unsigned char value) noexcept { alpha = value; }
    /// Alpha is unchanged.
    void SetRGB(unsigned char newRed, unsigned char newGreen, unsigned char newBlue) noexcept;

    // Components scaled to [0, 1].
    float GetRedAsFloat() const noexcept { return GetComponentAsFloat(red); }
    float GetGreenAsFloat() const noexcept { return GetComponentAsFloat(green); }
    float GetBlueAsFloat() const noexcept { return GetComponentAsFloat(blue); }
    float GetAlphaAsFloat() const noexcept { return GetComponentAsFloat(alpha); }
    static float GetComponentAsFloat(unsigned char component) noexcept {
        return static_cast<float>(component / 255.0);
    }

    /// "red,green,blue" in decimal.
    ZoString ToRGBString() const;
    /// "red,green,blue,alpha" in decimal.
    ZoString ToRGBAString() const;
    ZoString ToString() const;
    /// Reads what `ToString` wrote. Each piece between commas gives the low 8 bits of the number at its
    /// start, 0 if there is none; pieces after the fourth are ignored. False, with the colour unchanged, for
    /// fewer than four.
    bool FromString(const ZoString& text);

    bool operator==(const TZoColor& other) const noexcept;
    bool operator!=(const TZoColor& other) const noexcept;
    bool AreRgbEqual(const TZoColor& other) const noexcept;
    /// Ignores alpha.
    bool IsBlack() const noexcept;
    /// Ignores alpha.
    bool IsWhite() const noexcept;

    /// Adds to red, green and blue, up to 255.
    void AddBrightDelta(int delta) noexcept;
    /// Subtracts from red, green and blue, down to 0.
    void AddDarkDelta(int delta) noexcept;

    /// The colour word 0x00BBGGRR, which the system's drawing functions and `ULongToDoubleArray` take.
    operator unsigned long() const noexcept;

private:
    void Shift(long long delta) noexcept;

    unsigned char red;
    unsigned char green;
    unsigned char blue;
    unsigned char alpha;
};

} // namespace ZoPrimitives
