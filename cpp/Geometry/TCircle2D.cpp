#include "ZoPrimitives/TCircle2D.h"

#include "Geometry/CodedNumbers.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/ZoAssert.h"

namespace ZoPrimitives {

ZO_POINT_BODY(TCircle2D)

TZoClass* TCircle2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TCircle2D>(schema, "TCircle2D", "NULL",
                                    {{Getfieldclassfor_x, Addfieldfor_x},
                                     {Getfieldclassfor_y, Addfieldfor_y},
                                     {Getfieldclassfor_radius, Addfieldfor_radius}});
}

TCircle2D::TCircle2D() = default;
TCircle2D::TCircle2D(const Point2D& centre, double radius)
    : xValue(centre.X()), yValue(centre.Y()), radiusValue(radius) {}
TCircle2D::TCircle2D(StreamableInit init) : TPath2D(init) {}
TCircle2D::TCircle2D(const TCircle2D&) = default;
TCircle2D& TCircle2D::operator=(const TCircle2D&) = default;

unsigned long long TCircle2D::NPieces() const { return 2; }

TPathPiece TCircle2D::Piece(unsigned long long index) const {
    ZO_ASSERT(index - 1 < 2, "index >= 1 && index <= NPieces()", "cpp/Geometry/TCircle2D");
    const LDPoint left(xValue - radiusValue, yValue), right(xValue + radiusValue, yValue);
    return index == 1 ? TPathPiece{left, right, 1} : TPathPiece{right, left, 1};
}

bool TCircle2D::IsClosed() const { return true; }

bool TCircle2D::operator==(const TCircle2D& other) const {
    return xValue == other.xValue && yValue == other.yValue && radiusValue == other.radiusValue;
}
bool TCircle2D::operator==(const ZoObject& other) const {
    const auto* circle = dynamic_cast<const TCircle2D*>(&other);
    return circle != nullptr && *this == *circle;
}

void TCircle2D::Write(OutputStreamer& streamer) {
    TPath2D::Write(streamer);
    WriteCoded(streamer, 10, xValue, yValue);
    WriteCoded(streamer, 40, radiusValue);
}

bool TCircle2D::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, xValue, yValue) || ReadCoded(code, streamer, 40, radiusValue) ||
           TPath2D::ReadData(code, streamer);
}

} // namespace ZoPrimitives
