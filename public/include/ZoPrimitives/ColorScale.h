#pragma once

#include "ZoPrimitives/TZoColor.h"

namespace ZoPrimitives {

/// Colours a value between two limits: from the low colour over a middle one to the high colour, which
/// without further ado gives blue, cyan, green, yellow, red at the quarter points.
class ZO_API TColorScale {
public:
    /// Both limits 0: the low colour for values up to 0, the high colour above.
    TColorScale();
    TColorScale(double min, double max);
    TColorScale(const TColorScale&);
    TColorScale& operator=(const TColorScale&);
    virtual ~TColorScale();

    void SetScaleLimits(double min, double max);
    double GetLimitMin() const { return limitMin; }
    double GetLimitMax() const { return limitMax; }

    /// The middle colour is made of what both lack: each component is the complement of the sum of theirs,
    /// in 8 bits.
    void SetColorLimits(const TZoColor& low, const TZoColor& high);
    const TZoColor& GetColorMin() const { return colorMin; }
    const TZoColor& GetColorMax() const { return colorMax; }

    /// The low colour up to `GetLimitMin`, the high colour from `GetLimitMax` on; where both would do, as
    /// with limits that are equal or reversed, the low colour.
    ///
    /// In the first quarter the low colour is full and the middle colour rises; in the second the low colour
    /// fades; the upper half mirrors this. The sum of a component shared by both colours wraps in 8 bits.
    /// Alpha is 0 in between. Black for NaN, and between limits that are NaN or too far apart for a double.
    TZoColor GetColor(double value) const;

private:
    void InitColorLimits();
    static unsigned char MakeRGB(unsigned char low, unsigned char high);
    void CalculateColor(unsigned char& red, unsigned char& green, unsigned char& blue, double endWeight,
                        double midWeight, bool upperHalf) const;

    double limitMin;
    double limitMax;
    TZoColor colorMin;
    TZoColor colorMax;
    TZoColor colorMid;
};

} // namespace ZoPrimitives
