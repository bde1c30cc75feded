#pragma once

#include "ZoPrimitives/ConvertionHelper.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/ZoString.h"

// Sections as calculations see them. These classes know nothing of files: the library's helpers make them
// from the sections and materials that are saved, and those from these.

namespace Frame {

/// What profiles are rolled from. Density in kg/m3.
class Metal : public ZoPrimitives::ZoObject {
public:
    ZoPrimitives::ZoString name;
    double density = 0;
};

/// A rolled profile, in cm, cm2 and cm4.
class Profile : public ZoPrimitives::ZoObject {
public:
    ZoPrimitives::ZoString name;
    double depth = 0;
    double area = 0;
    double inertia = 0;
    ZoPrimitives::pointer<Metal> metal; ///< shared by profiles; null when it is not known

    /// How strong it is in bending, in cm3.
    double Modulus() const { return 2 * inertia / depth; }
    /// In kg for each metre; the metal must be known.
    double MassPerMetre() const;
};

using Profiles = ZoPrimitives::TIVector<Profile>;

/// Makes the materials for metals and the sections for profiles.
class SectionFactory : public ZoPrimitives::IStreamableConvertionFactory {
public:
    ZoPrimitives::ZoObjectStreamable*
    CreateStreamable(const ZoPrimitives::ZoString& businessClassName) override;
};

} // namespace Frame
