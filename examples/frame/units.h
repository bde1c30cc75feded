#pragma once

#include "ZoPrimitives/grandeza.h"

#include <string>

namespace Frame {

/// The unit and decimals in which a report shows one quantity.
template <class Quantity, class Unit>
struct Shown {
    Unit unit;
    unsigned decimals;
    const char* usual = nullptr; ///< the usual UTF-8 name, if it differs
};

/// The units of a report, and the notation of its numbers.
struct Units {
    /// `name`: metric, technical or imperial. Throws `Failure` for other names, and for a separator other
    /// than a point or a comma.
    static Units Named(const std::string& name, const std::string& separator);

    template <class Quantity, class Unit>
    std::string Name(const Shown<Quantity, Unit>& shown) const {
        return shown.usual != nullptr ? shown.usual : Utf8(Quantity::NomeDaUnidade(shown.unit));
    }
    /// The number alone, for use under a heading with the unit.
    template <class Quantity, class Unit>
    std::string Number(const Shown<Quantity, Unit>& shown, const Quantity& value) const {
        return Decimal(value.Valor(shown.unit), shown.decimals);
    }
    template <class Quantity, class Unit>
    std::string Text(const Shown<Quantity, Unit>& shown, const Quantity& value) const {
        if (shown.usual != nullptr) return Number(shown, value) + " " + shown.usual;
        return Utf8(value.Texto(shown.unit, shown.decimals, true, separator));
    }
    std::string Decimal(double value, unsigned decimals) const;

    Shown<ZoPrimitives::GComprimento, ZoPrimitives::TComprimento> length; ///< levels, heights, spans
    Shown<ZoPrimitives::GComprimento, ZoPrimitives::TComprimento> total;  ///< of many members
    Shown<ZoPrimitives::GComprimento, ZoPrimitives::TComprimento> depth;  ///< of a section
    Shown<ZoPrimitives::GArea, ZoPrimitives::TArea> area;                 ///< of a section
    Shown<ZoPrimitives::GArea, ZoPrimitives::TArea> floor;                ///< of panels
    Shown<ZoPrimitives::GForcaArea, ZoPrimitives::TForcaArea> floorLoad;
    Shown<ZoPrimitives::GInercia, ZoPrimitives::TInercia> inertia;
    Shown<ZoPrimitives::GVolume, ZoPrimitives::TVolume> modulus; ///< of a section in bending
    Shown<ZoPrimitives::GForcaConcentrada, ZoPrimitives::TForcaConcentrada> load;
    Shown<ZoPrimitives::GForcaLinear, ZoPrimitives::TForcaLinear> lineLoad;
    Shown<ZoPrimitives::GForcaConcentrada, ZoPrimitives::TForcaConcentrada> steel;
    Shown<ZoPrimitives::GForcaLinear, ZoPrimitives::TForcaLinear> steelLine;
    Shown<ZoPrimitives::GPeso, ZoPrimitives::TPeso> density;
    char separator;

private:
    static std::string Utf8(const ZoPrimitives::ZoString& unitAtItsEnd);
};

} // namespace Frame
