#include "ZoPrimitives/TLine2D.h"

#include "ZoPrimitives/FloatMatrix.h"
#include "ZoPrimitives/RRect.h"
#include "ZoPrimitives/T3DBox.h"
#include "ZoPrimitives/T3DCylinder.h"
#include "ZoPrimitives/T3DMesh.h"
#include "ZoPrimitives/T3DSegment.h"
#include "ZoPrimitives/TArc2D.h"
#include "ZoPrimitives/TBezier2D.h"
#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TDrawingGraph.h"
#include "ZoPrimitives/TExtrusionPath.h"
#include "ZoPrimitives/TPlane3D.h"
#include "ZoPrimitives/TPolyline2D.h"
#include "ZoPrimitives/TRay2D.h"
#include "ZoPrimitives/TRegion.h"
#include "ZoPrimitives/TSegment2D.h"
#include "ZoPrimitives/TTriangle2D.h"

namespace ZoPrimitives {

void ZoRegisterGeometry(TZoMetaData* schema) {
    RRect::Register(schema);
    TLine2D::Register(schema);
    TRay2D::Register(schema);
    TSegment2D::Register(schema);
    TArc2D::Register(schema);
    TCircle2D::Register(schema);
    TTriangle2D::Register(schema);
    TBezier2D::Register(schema);
    TPolyline2D::Register(schema);
    TContour::Register(schema);
    TRegion::Register(schema);
    TDrawingGraph::Register(schema);
    FloatMatrix::Register(schema);
    T3DBox::Register(schema);
    TPlane3D::Register(schema);
    T3DSegment::Register(schema);
    T3DCylinder::Register(schema);
    T3DMesh::Register(schema);
    TExtrusionPath::Register(schema);
}

} // namespace ZoPrimitives
