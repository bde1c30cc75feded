#include "ZoPrimitives/TSegment2D.h"

#include "Geometry/CodedNumbers.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/ZoAssert.h"

namespace ZoPrimitives {

ZO_POINT_BODY(TSegment2D)

TZoClass* TSegment2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TSegment2D>(schema, "TSegment2D", "NULL",
                                     {{Getfieldclassfor_x1, Addfieldfor_x1},
                                      {Getfieldclassfor_y1, Addfieldfor_y1},
                                      {Getfieldclassfor_x2, Addfieldfor_x2},
                                      {Getfieldclassfor_y2, Addfieldfor_y2}});
}

TSegment2D::TSegment2D() = default;
TSegment2D::TSegment2D(const Point2D& start, const Point2D& end)
    : x1Value(start.X()), y1Value(start.Y()), x2Value(end.X()), y2Value(end.Y()) {}
TSegment2D::TSegment2D(StreamableInit init) : TPath2D(init) {}
TSegment2D::TSegment2D(const TSegment2D&) = default;
TSegment2D& TSegment2D::operator=(const TSegment2D&) = default;

unsigned long long TSegment2D::NPieces() const { return 1; }

TPathPiece TSegment2D::Piece(unsigned long long index) const {
    ZO_ASSERT(index == 1, "index == 1", "cpp/Geometry/TSegment2D");
    return {{x1Value, y1Value}, {x2Value, y2Value}, 0};
}

bool TSegment2D::operator==(const TSegment2D& other) const {
    return x1Value == other.x1Value && y1Value == other.y1Value && x2Value == other.x2Value &&
           y2Value == other.y2Value;
}
bool TSegment2D::operator==(const ZoObject& other) const {
    const auto* segment = dynamic_cast<const TSegment2D*>(&other);
    return segment != nullptr && *this == *segment;
}

void TSegment2D::Write(OutputStreamer& streamer) {
    TPath2D::Write(streamer);
    WriteCoded(streamer, 10, x1Value, y1Value);
    WriteCoded(streamer, 11, x2Value, y2Value);
}

bool TSegment2D::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, x1Value, y1Value) ||
           ReadCoded(code, streamer, 11, x2Value, y2Value) || TPath2D::ReadData(code, streamer);
}

} // namespace ZoPrimitives
