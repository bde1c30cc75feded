#include "ZoPrimitives/ColorScale.h"

#include <cmath>

namespace ZoPrimitives {

namespace {

/// The low 8 bits of the integer part; 0 for NaN and infinities.
unsigned char LowByte(double value) {
    if (!std::isfinite(value)) return 0;
    return static_cast<unsigned char>(static_cast<int>(std::fmod(value, 256)));
}

} // namespace

TColorScale::TColorScale() : TColorScale(0, 0) {}
TColorScale::TColorScale(double min, double max) : limitMin(min), limitMax(max) { InitColorLimits(); }
TColorScale::TColorScale(const TColorScale&) = default;
TColorScale& TColorScale::operator=(const TColorScale&) = default;
TColorScale::~TColorScale() = default;

void TColorScale::SetScaleLimits(double min, double max) {
    limitMin = min;
    limitMax = max;
}

void TColorScale::SetColorLimits(const TZoColor& low, const TZoColor& high) {
    const TZoColor mid(MakeRGB(low.GetRed(), high.GetRed()), MakeRGB(low.GetGreen(), high.GetGreen()),
                       MakeRGB(low.GetBlue(), high.GetBlue()), 0);
    const TZoColor newMax = high; // `high` may be the current `colorMin`
    colorMin = low;
    colorMax = newMax;
    colorMid = mid;
}

TZoColor TColorScale::GetColor(double value) const {
    if (value <= limitMin) return colorMin;
    if (value >= limitMax) return colorMax;

    const double half = (limitMax - limitMin) / 2;
    const double mid = limitMin + half;
    double endWeight = half;
    double midWeight = half;
    const bool upperHalf = value > mid;
    if (!upperHalf && value < mid - half / 2) {
        midWeight = 2 * std::abs(value - limitMin);
    } else if (!upperHalf) {
        endWeight = 2 * std::abs(mid - value);
    } else if (value > mid + half / 2) {
        midWeight = 2 * std::abs(limitMax - value);
    } else {
        endWeight = 2 * std::abs(value - mid);
    }
    unsigned char red = 0, green = 0, blue = 0;
    CalculateColor(red, green, blue, endWeight, midWeight, upperHalf);
    return {red, green, blue, 0};
}

void TColorScale::InitColorLimits() { SetColorLimits({0, 0, 255, 0}, {255, 0, 0, 0}); }

unsigned char TColorScale::MakeRGB(unsigned char low, unsigned char high) {
    return static_cast<unsigned char>(~(low + high));
}

void TColorScale::CalculateColor(unsigned char& red, unsigned char& green, unsigned char& blue,
                                 double endWeight, double midWeight, bool upperHalf) const {
    const TZoColor& end = upperHalf ? colorMax : colorMin;
    const double half = (limitMax - limitMin) / 2;
    const auto blend = [&](unsigned char ofEnd, unsigned char ofMid) {
        return LowByte((ofEnd * endWeight + ofMid * midWeight) / half);
    };
    red = blend(end.GetRed(), colorMid.GetRed());
    green = blend(end.GetGreen(), colorMid.GetGreen());
    blue = blend(end.GetBlue(), colorMid.GetBlue());
}

} // namespace ZoPrimitives
