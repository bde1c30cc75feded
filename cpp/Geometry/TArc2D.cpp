#include "ZoPrimitives/TArc2D.h"

#include "Geometry/CodedNumbers.h"
#include "Geometry/Predicates.h"
#include "Values/FullTurn.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/ZoAssert.h"

#include <cmath>

namespace ZoPrimitives {

ZO_POINT_BODY(TArc2D)

TZoClass* TArc2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TArc2D>(schema, "TArc2D", "NULL",
                                 {{Getfieldclassfor_x1, Addfieldfor_x1},
                                  {Getfieldclassfor_y1, Addfieldfor_y1},
                                  {Getfieldclassfor_x2, Addfieldfor_x2},
                                  {Getfieldclassfor_y2, Addfieldfor_y2},
                                  {Getfieldclassfor_bulge, Addfieldfor_bulge}});
}

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TArc2D";

} // namespace

TArc2D::TArc2D() = default;
TArc2D::TArc2D(const Point2D& start, const Point2D& end, double bulge)
    : x1Value(start.X()), y1Value(start.Y()), x2Value(end.X()), y2Value(end.Y()), bulgeValue(bulge) {}
TArc2D::TArc2D(StreamableInit init) : TPath2D(init) {}
TArc2D::TArc2D(const TArc2D&) = default;
TArc2D& TArc2D::operator=(const TArc2D&) = default;

TArc2D TArc2D::Through(const Point2D& start, const Point2D& middle, const Point2D& end) {
    const LDPoint a(start.X(), start.Y()), m(middle.X(), middle.Y()), b(end.X(), end.Y());
    const LDPoint toStart = a - m, toEnd = b - m;
    const double dot = toStart.x * toEnd.x + toStart.y * toEnd.y;
    const int side = SideOf(a, b, m);
    ZO_ASSERT(side != 0 || dot <= 0, "the middle lies between the ends, or beside their line", SOURCE);
    if (side == 0) return {start, end, 0};
    // The angle at the middle is what is left of half a turn by half the arc's.
    const double angle = std::atan2(std::abs(toStart.x * toEnd.y - toStart.y * toEnd.x), dot);
    return {start, end, -side * std::tan((FULL_TURN / 2 - angle) / 2)};
}

TArc2D TArc2D::About(const Point2D& centre, double radius, double startAngle, double endAngle) {
    const double angle = endAngle - startAngle;
    ZO_ASSERT(std::abs(angle) < FULL_TURN, "less than a turn", SOURCE);
    const auto at = [&](double a) { return centre + Point2D(std::cos(a), std::sin(a)) * radius; };
    return {at(startAngle), at(endAngle), std::tan(angle / 4)};
}

double TArc2D::Radius() const {
    return Start().Distance(End()) * (1 / bulgeValue + bulgeValue) / 4 * (bulgeValue < 0 ? -1 : 1);
}

Point2D TArc2D::Centre() const {
    // Beside the chord's middle, to the left for a positive bulge below 1.
    const double factor = (1 / bulgeValue - bulgeValue) / 4;
    const double dx = x2Value - x1Value, dy = y2Value - y1Value;
    return {x1Value + dx / 2 - dy * factor, y1Value + dy / 2 + dx * factor};
}

double TArc2D::Angle() const { return 4 * std::atan(bulgeValue); }

unsigned long long TArc2D::NPieces() const { return 1; }

TPathPiece TArc2D::Piece(unsigned long long index) const {
    ZO_ASSERT(index == 1, "index == 1", SOURCE);
    return {{x1Value, y1Value}, {x2Value, y2Value}, bulgeValue};
}

bool TArc2D::operator==(const TArc2D& other) const {
    return x1Value == other.x1Value && y1Value == other.y1Value && x2Value == other.x2Value &&
           y2Value == other.y2Value && bulgeValue == other.bulgeValue;
}
bool TArc2D::operator==(const ZoObject& other) const {
    const auto* arc = dynamic_cast<const TArc2D*>(&other);
    return arc != nullptr && *this == *arc;
}

void TArc2D::Write(OutputStreamer& streamer) {
    TPath2D::Write(streamer);
    WriteCoded(streamer, 10, x1Value, y1Value);
    WriteCoded(streamer, 11, x2Value, y2Value);
    WriteCoded(streamer, 42, bulgeValue);
}

bool TArc2D::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, x1Value, y1Value) ||
           ReadCoded(code, streamer, 11, x2Value, y2Value) || ReadCoded(code, streamer, 42, bulgeValue) ||
           TPath2D::ReadData(code, streamer);
}

} // namespace ZoPrimitives
