#include "ZoPrimitives/TZoColor.h"

#include "ZoPrimitives/NumberText.h"

#include <algorithm>
#include <cstring>

namespace ZoPrimitives {

TZoColor::TZoColor() noexcept : TZoColor(0, 0, 0, 0) {}
TZoColor::TZoColor(unsigned char newRed, unsigned char newGreen, unsigned char newBlue,
                   unsigned char newAlpha) noexcept
    : red(newRed), green(newGreen), blue(newBlue), alpha(newAlpha) {}
TZoColor::TZoColor(const TZoColor&) noexcept = default;
TZoColor& TZoColor::operator=(const TZoColor&) noexcept = default;
TZoColor::~TZoColor() = default;

void TZoColor::SetRGB(unsigned char newRed, unsigned char newGreen, unsigned char newBlue) noexcept {
    red = newRed;
    green = newGreen;
    blue = newBlue;
}

ZoString TZoColor::ToRGBString() const { return ZoString::FormatString("%d,%d,%d", red, green, blue); }

ZoString TZoColor::ToRGBAString() const {
    return ZoString::FormatString("%d,%d,%d,%d", red, green, blue, alpha);
}

ZoString TZoColor::ToString() const { return ToRGBAString(); }

bool TZoColor::FromString(const ZoString& text) {
    unsigned char pieces[4];
    const char* piece = text.c_str();
    for (int i = 0; i < 4; ++i) {
        if (i > 0) {
            piece = std::strchr(piece, ',');
            if (piece == nullptr) return false;
            ++piece;
        }
        pieces[i] = static_cast<unsigned char>(IntOf(piece));
    }
    *this = TZoColor(pieces[0], pieces[1], pieces[2], pieces[3]);
    return true;
}

bool TZoColor::operator==(const TZoColor& other) const noexcept {
    return AreRgbEqual(other) && alpha == other.alpha;
}

bool TZoColor::operator!=(const TZoColor& other) const noexcept { return !(*this == other); }

bool TZoColor::AreRgbEqual(const TZoColor& other) const noexcept {
    return red == other.red && green == other.green && blue == other.blue;
}

bool TZoColor::IsBlack() const noexcept { return red == 0 && green == 0 && blue == 0; }

bool TZoColor::IsWhite() const noexcept { return red == 255 && green == 255 && blue == 255; }

void TZoColor::AddBrightDelta(int delta) noexcept { Shift(delta); }

void TZoColor::AddDarkDelta(int delta) noexcept { Shift(-static_cast<long long>(delta)); }

TZoColor::operator unsigned long() const noexcept {
    return red | static_cast<unsigned long>(green) << 8 | static_cast<unsigned long>(blue) << 16;
}

void TZoColor::Shift(long long delta) noexcept {
    for (unsigned char* component : {&red, &green, &blue}) {
        *component = static_cast<unsigned char>(std::clamp(*component + delta, 0LL, 255LL));
    }
}

} // namespace ZoPrimitives
