#pragma once

#include "ZoPrimitives/ConvertionHelper.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/ZoString.h"
#include "ZoPrimitives/grandeza.h"

// Sections as calculations see them. These classes know nothing of files: the library's helpers make them
// from the sections and materials that are saved, and those from these.

namespace Frame {

/// What profiles are rolled from.
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
    ZoPrimitives::pointer<Metal> metal; ///< shared by profiles; null when it is not known

    /// How strong it is in bending.
    ZoPrimitives::GVolume Modulus() const { return ZoPrimitives::GVolume(2 * inertia / depth); }
    /// For each length; the metal must be known.
    ZoPrimitives::GForcaLinear LineWeight() const;
};

using Profiles = ZoPrimitives::TIVector<Profile>;

/// Makes the materials for metals and the sections for profiles.
class SectionFactory : public ZoPrimitives::IStreamableConvertionFactory {
public:
    ZoPrimitives::ZoObjectStreamable*
    CreateStreamable(const ZoPrimitives::ZoString& businessClassName) override;
};

} // namespace Frame
