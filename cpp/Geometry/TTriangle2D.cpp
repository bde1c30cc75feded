#include "ZoPrimitives/TTriangle2D.h"

#include "Geometry/CodedNumbers.h"
#include "Geometry/Predicates.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/ZoAssert.h"

#include <cmath>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TTriangle2D";

void AssertHasArea(const TTriangle2D& t) {
    ZO_ASSERT(SideOf({t.X1(), t.Y1()}, {t.X2(), t.Y2()}, {t.X3(), t.Y3()}) != 0,
              "corners that lie on no line", SOURCE);
}

} // namespace

ZO_POINT_BODY(TTriangle2D)

TZoClass* TTriangle2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TTriangle2D>(schema, "TTriangle2D", "NULL",
                                      {{Getfieldclassfor_x1, Addfieldfor_x1},
                                       {Getfieldclassfor_y1, Addfieldfor_y1},
                                       {Getfieldclassfor_x2, Addfieldfor_x2},
                                       {Getfieldclassfor_y2, Addfieldfor_y2},
                                       {Getfieldclassfor_x3, Addfieldfor_x3},
                                       {Getfieldclassfor_y3, Addfieldfor_y3}});
}

TTriangle2D::TTriangle2D() = default;
TTriangle2D::TTriangle2D(const Point2D& a, const Point2D& b, const Point2D& c)
    : x1Value(a.X()), y1Value(a.Y()), x2Value(b.X()), y2Value(b.Y()), x3Value(c.X()), y3Value(c.Y()) {}
TTriangle2D::TTriangle2D(StreamableInit init) : TPath2D(init) {}
TTriangle2D::TTriangle2D(const TTriangle2D&) = default;
TTriangle2D& TTriangle2D::operator=(const TTriangle2D&) = default;

TCircle2D TTriangle2D::Circumcircle() const {
    AssertHasArea(*this);
    // From the first corner, so that its place takes nothing away.
    const LDPoint p(x2Value - x1Value, y2Value - y1Value), q(x3Value - x1Value, y3Value - y1Value);
    const double twice = 2 * (p.x * q.y - p.y * q.x);
    const double pp = p.x * p.x + p.y * p.y, qq = q.x * q.x + q.y * q.y;
    const double x = (q.y * pp - p.y * qq) / twice, y = (p.x * qq - q.x * pp) / twice;
    return {{x1Value + x, y1Value + y}, std::hypot(x, y)};
}

TCircle2D TTriangle2D::Incircle() const {
    AssertHasArea(*this);
    const double a = B().Distance(C()), b = C().Distance(A()), c = A().Distance(B()), sum = a + b + c;
    return {
        {(a * x1Value + b * x2Value + c * x3Value) / sum, (a * y1Value + b * y2Value + c * y3Value) / sum},
        2 * Area() / sum};
}

unsigned long long TTriangle2D::NPieces() const { return 3; }

TPathPiece TTriangle2D::Piece(unsigned long long index) const {
    ZO_ASSERT(index - 1 < 3, "index >= 1 && index <= NPieces()", SOURCE);
    const LDPoint corners[] = {{x1Value, y1Value}, {x2Value, y2Value}, {x3Value, y3Value}};
    return {corners[index - 1], corners[index % 3], 0};
}

bool TTriangle2D::IsClosed() const { return true; }

bool TTriangle2D::operator==(const TTriangle2D& other) const {
    return A() == other.A() && B() == other.B() && C() == other.C();
}
bool TTriangle2D::operator==(const ZoObject& other) const {
    const auto* triangle = dynamic_cast<const TTriangle2D*>(&other);
    return triangle != nullptr && *this == *triangle;
}

void TTriangle2D::Write(OutputStreamer& streamer) {
    TPath2D::Write(streamer);
    WriteCoded(streamer, 10, x1Value, y1Value);
    WriteCoded(streamer, 11, x2Value, y2Value);
    WriteCoded(streamer, 12, x3Value, y3Value);
}

bool TTriangle2D::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, x1Value, y1Value) ||
           ReadCoded(code, streamer, 11, x2Value, y2Value) ||
           ReadCoded(code, streamer, 12, x3Value, y3Value) || TPath2D::ReadData(code, streamer);
}

} // namespace ZoPrimitives
