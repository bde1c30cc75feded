#pragma once

#include "ZoPrimitives/TTransformation.h"
#include "ZoPrimitives/TVector3D.h"

namespace ZoPrimitives {

/// What a transformation does: `translation * rotation * shear * scaling`, the last one first.
struct TTransformationParts {
    TTransformation translation;
    /// By `angle` radians, from 0 to pi, about `axis`, of length 1.
    TTransformation rotation;
    TVector3D axis{0, 0, 1};
    double angle = 0;
    /// Has 1 on the diagonal and elements above it.
    TTransformation shear;
    /// Along the axes. A mirror image has one negative factor: on the axis with which the rotation then turns
    /// least.
    TTransformation scaling;
};

} // namespace ZoPrimitives
