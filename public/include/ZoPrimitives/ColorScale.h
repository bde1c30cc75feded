#pragma once

#include "ZoPrimitives/TZoColor.h"

namespace ZoPrimitives {

/// Colours a value between two limits: from the low colour through a middle one to the high colour. The
/// defaults give blue, cyan, green, yellow and red at the quarter points.
class ZO_API TColorScale {
public:
    /// Both limits are 0: values up to 0 get the low colour, others the high colour.
    TColorScale();
    TColorScale(double min, double max);
    TColorScale(const TColorScale&);
    TColorScale& operator=(const TColorScale&);
    virtual ~TColorScale();

    void SetScaleLimits(double min, double max);
    double GetLimitMin() const { return limitMin; }
    double GetLimitMax() const { return limitMax; }

    /// Each component of the middle colour is the complement, in 8 bits, of the sum of the other two.
    void SetColorLimits(const TZoColor& low, const TZoColor& high);
    const TZoColor& GetColorMin() const { return colorMin; }
    const TZoColor& GetColorMax() const { return colorMax; }

    /// The low colour up to `GetLimitMin`, the high colour from `GetLimitMax` on; the low colour where both
    /// apply, as with equal or reversed limits.
    ///
    /// In the first quarter the low colour is full and the middle colour rises; in the second the low colour
    /// fades; the upper half mirrors this. Where two colours share a component their sum wraps in 8 bits.
    /// Alpha is 0 between the limits. Black for NaN, and where the limits are NaN or too far apart.
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
