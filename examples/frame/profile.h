#pragma once

#include "ZoPrimitives/ConvertionHelper.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/ZoString.h"
#include "ZoPrimitives/grandeza.h"

// Sections as calculations use them. These classes know nothing of files: the library's helpers convert
// between them and the saved sections and materials.

namespace Frame {

/// The material of profiles.
class Metal : public ZoPrimitives::ZoObject {
public:
    ZoPrimitives::ZoString name;
    ZoPrimitives::GPeso density = ZoPrimitives::GPeso(0.0);
};

/// A rolled profile.
class Profile : public ZoPrimitives::ZoObject {
public:
    ZoPrimitives::ZoString name;
    ZoPrimitives::GComprimento depth = ZoPrimitives::GComprimento(0.0);
    ZoPrimitives::GArea area = ZoPrimitives::GArea(0.0);
    ZoPrimitives::GInercia inertia = ZoPrimitives::GInercia(0.0);
    ZoPrimitives::pointer<Metal> metal; ///< shared between profiles; null if unknown

    /// The section modulus, a measure of bending strength.
    ZoPrimitives::GVolume Modulus() const { return ZoPrimitives::GVolume(2 * inertia / depth); }
    /// Weight per length; the metal must be known.
    ZoPrimitives::GForcaLinear LineWeight() const;
};

using Profiles = ZoPrimitives::TIVector<Profile>;

/// Makes materials from metals and sections from profiles.
class SectionFactory : public ZoPrimitives::IStreamableConvertionFactory {
public:
    ZoPrimitives::ZoObjectStreamable*
    CreateStreamable(const ZoPrimitives::ZoString& businessClassName) override;
};

} // namespace Frame
