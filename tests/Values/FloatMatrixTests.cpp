#include "ZoPrimitives/FloatMatrix.h"
#include "ZoPrimitives/TLine2D.h"
#include "ZoPrimitives/TTransformationParts.h"

#include "Geometry/Random.h"
#include "support/Assertions.h"
#include "support/RoundTrip.h"

#include <cmath>

using namespace ZoPrimitives;

namespace {

constexpr double PI = 3.141592653589793;

FloatMatrix RandomMatrix(Random& random, unsigned rows, unsigned columns) {
    FloatMatrix matrix(rows, columns);
    for (unsigned row = 1; row <= rows; ++row)
        for (unsigned column = 1; column <= columns; ++column)
            matrix.Element(row, column, random.Uniform(-1, 1));
    return matrix;
}

double LargestOf(const FloatMatrix& matrix) {
    double largest = 0;
    for (unsigned row = 1; row <= matrix.NRows(); ++row)
        for (unsigned column = 1; column <= matrix.NColumns(); ++column)
            largest = std::max(largest, std::abs(matrix.Element(row, column)));
    return largest;
}

FloatMatrix Hilbert(unsigned size) {
    FloatMatrix matrix(size, size);
    for (unsigned row = 1; row <= size; ++row)
        for (unsigned column = 1; column <= size; ++column)
            matrix.Element(row, column, 1.0 / (row + column - 1));
    return matrix;
}

TEST(FloatMatrixTests, Computes) {
    const FloatMatrix a = {{1, 2, 3}, {4, 5, 6}}, b = {{7, 8}, {9, 10}, {11, 12}};
    EXPECT_EQ(a * b, FloatMatrix({{58, 64}, {139, 154}}));
    EXPECT_EQ(a.Transposed(), FloatMatrix({{1, 4}, {2, 5}, {3, 6}}));
    EXPECT_EQ(a + a, a * 2);
    EXPECT_EQ(a - a, FloatMatrix(2, 3));
    EXPECT_TRUE(a.NRows() == 2 && a.NColumns() == 3 && a.Element(2, 1) == 4);
    FloatMatrix solution;
    EXPECT_TRUE(FloatMatrix({{0, 2}, {3, 4}}).Solve({{6}, {18}}, solution));
    EXPECT_EQ(solution, FloatMatrix({{2}, {3}}));
    EXPECT_TRUE(FloatMatrix().Invert(solution) && solution == FloatMatrix());
    const std::pair<const char*, std::function<void()>> refused[] = {
        {"rows and columns, or neither", [] { FloatMatrix(0, 2); }},
        {"rows of one length",
         [] {
             FloatMatrix({{1, 2}, {3}});
         }},
        {"row and column from 1 to those there are", [&] { a.Element(0, 1); }},
        {"row and column from 1 to those there are", [&] { a.Element(1, 4); }},
        {"matrices of one size", [&] { a + b; }},
        {"as many columns as the right one has rows", [&] { a* a; }},
        {"a square matrix", [&] { a.Determinant(); }},
        {"as many rows on the right", [&] { static_cast<void>((b * a).Solve(a, solution)); }},
    };
    for (const auto& [text, call] : refused) EXPECT_EQ(AssertionOf(call).expression, text);
}

TEST(FloatMatrixTests, TellsOfSingularMatrices) {
    const double tiny = std::nextafter(1, 2), nan = std::nan("");
    struct Row {
        const char* name;
        FloatMatrix matrix;
        double determinant, least, most; // the bounds of the condition
        bool regular;
    };
    const Row rows[] = {
        {"nothing", {}, 1, 1, 1, true},
        {"a number", {{-4}}, -4, 1, 1, true},
        {"zero", {{0}}, 0, HUGE_VAL, HUGE_VAL, false},
        {"rows that change places", {{0, 1}, {1, 0}}, -1, 1, 1, true},
        {"units of any size", {{1e-200, 0}, {0, 1e300}}, 1e100, 1, 2, true},
        {"stiffnesses in mixed units", {{12e9, 6e18}, {6e18, 4e27}}, 12e36, 10, 80, true},
        {"doubled rows", {{1, 2}, {2, 4}}, 0, HUGE_VAL, HUGE_VAL, false},
        {"an empty column", {{1, 0}, {2, 0}}, 0, HUGE_VAL, HUGE_VAL, false},
        {"within rounding of singular", {{1, 1}, {1, tiny}}, tiny - 1, 1e15, HUGE_VAL, false},
        {"near to singular", {{1, 1}, {1, 1 + 1e-8}}, 1e-8, 2e8, 5e8, true},
        {"Hilbert's of 6", Hilbert(6), 5.3673e-18, 1e6, 3e8, true},
        {"Hilbert's of 14", Hilbert(14), 0, 1e15, HUGE_VAL, false},
        {"no number", {{1, nan}, {0, 1}}, nan, HUGE_VAL, HUGE_VAL, false},
        {"an infinity", {{HUGE_VAL}}, nan, HUGE_VAL, HUGE_VAL, false},
    };
    for (const auto& [name, matrix, determinant, least, most, regular] : rows) {
        EXPECT_TRUE(std::isnan(determinant) ? std::isnan(matrix.Determinant())
                                            : std::abs(matrix.Determinant() - determinant) <=
                                                  1e-5 * std::abs(determinant) + 1e-80)
            << name << matrix.Determinant();
        EXPECT_TRUE(matrix.Condition() >= least && matrix.Condition() <= most) << name << matrix.Condition();
        FloatMatrix inverse({{77}});
        EXPECT_EQ(matrix.Invert(inverse), regular) << name;
        EXPECT_EQ(inverse == FloatMatrix({{77}}), !regular) << name;
    }
}

TEST(FloatMatrixTests, SolvesRandomMatrices) {
    Random random(11);
    for (unsigned size = 1; size <= 40; ++size) {
        const FloatMatrix a = RandomMatrix(random, size, size), x = RandomMatrix(random, size, 3);
        FloatMatrix solution, inverse;
        ASSERT_TRUE(a.Solve(a * x, solution) && a.Invert(inverse));
        const double condition = a.Condition(), error = 1e-15 * condition * size;
        ASSERT_LT(LargestOf(solution - x), error) << size;
        ASSERT_LT(LargestOf(a * inverse - FloatMatrix::Identity(size)), error) << size;
        ASSERT_NEAR(a.Determinant() * inverse.Determinant(), 1, error) << size;
        ASSERT_NEAR(a.Transposed().Determinant() / a.Determinant(), 1, error) << size;
        // The estimate beside the inverse's own norm; the elements are of one size.
        double norm = 0, inverseNorm = 0;
        for (unsigned column = 1; column <= size; ++column) {
            double sum = 0, inverseSum = 0;
            for (unsigned row = 1; row <= size; ++row) {
                sum += std::abs(a.Element(row, column));
                inverseSum += std::abs(inverse.Element(row, column));
            }
            norm = std::max(norm, sum);
            inverseNorm = std::max(inverseNorm, inverseSum);
        }
        ASSERT_GT(condition, norm * inverseNorm / 30) << size;
        ASSERT_LT(condition, norm * inverseNorm * 30) << size;
    }
}

TEST(FloatMatrixTests, IsSavedAndOpened) {
    TZoMetaData schema;
    ZoRegisterGeometry(&schema);
    FloatMatrix matrix = {{1, 2}, {3, 4}, {5, 6}}, nothing;
    for (FloatMatrix* object : {&matrix, &nothing}) ExpectOpened(schema, *object);
    EXPECT_EQ(ExpectReadAsText(schema, matrix), "70|3|71|2|40|1.|40|2.|40|3.|40|4.|40|5.|40|6.|");
    EXPECT_EQ(ExpectReadAsText(schema, nothing), "70|0|71|0|");

    const ClassEntry entry{
        .name = "FloatMatrix",
        .values = {{0, ftUnsigned, "rows"}, {0, ftUnsigned, "columns"}, {0, ftListDouble, "elements"}}};
    const std::tuple<const char*, long long, long long, int, bool> cases[] = {
        {"fitting", 2, 1, 2, true},
        {"too few", 2, 2, 3, false},
        {"too many", 1, 2, 3, false},
        {"rows without columns", 4, 0, 0, false},
        {"sizes whose product wraps", 1LL << 31, 1LL << 31, 0, false},
    };
    for (const auto& [name, rows, columns, count, accepted] : cases) {
        Payload payload;
        payload.Int(rows).Int(columns).Int(count);
        std::string text = "70\n" + std::to_string(rows) + "\n71\n" + std::to_string(columns) + "\n";
        for (int i = 0; i < count; ++i) {
            payload.Double(i);
            text += "40\n1\n";
        }
        Opened opened(FileOf({entry}, {Row{1, 1, payload}}), schema);
        EXPECT_EQ(opened.root != nullptr, accepted) << name;
        const Testing::TemporaryFolder folder;
        folder.Write("text", text + "0\n");
        InputStreamer reader(new FileInputStream(folder.Path("text").c_str()), nullptr);
        EXPECT_EQ(FailureOf([&] { FloatMatrix().Read(reader); }),
                  accepted ? "" : "Invalid object : data still incomplete after read. @ ")
            << name;
    }
}

TEST(FloatMatrixTests, TransformationsAreInvertedAndTakenApart) {
    const auto near = [](const TTransformation& a, const TTransformation& b, double error) {
        for (unsigned i = 0; i < 16; ++i)
            if (!(std::abs(a.Element(i / 4 + 1, i % 4 + 1) - b.Element(i / 4 + 1, i % 4 + 1)) <= error))
                return false;
        return true;
    };
    TTransformation inverse, view, flat = TTransformation::Scaling(1, 0, 1);
    TTransformationParts parts;
    EXPECT_TRUE((TTransformation::Translation(1, 2, 3) * TTransformation::Scaling(2, 4, 8)).Invert(inverse));
    EXPECT_EQ(inverse, TTransformation::Scaling(0.5, 0.25, 0.125) * TTransformation::Translation(-1, -2, -3));
    EXPECT_FALSE(flat.Invert(view) || flat.Decompose(parts) || view != TTransformation());
    EXPECT_EQ(TTransformation::Scaling(2, 3, -4).Determinant(), -24);
    view.Element(4, 1, 0.5);
    EXPECT_TRUE(view.Invert(inverse) && view * inverse == TTransformation());
    EXPECT_FALSE(view.Decompose(parts)) << "a perspective";

    const std::tuple<const char*, TTransformation, TVector3D, double, double> mirrors[] = {
        {"nothing", {}, {0, 0, 1}, 0, 1},
        {"half a turn", TTransformation::Rotation(PI, 1, 0, 0), {1, 0, 0}, PI, 1},
        {"a turn to the right", TTransformation::Rotation(-1, 0, 1, 0), {0, -1, 0}, 1, 1},
        {"a small turn", TTransformation::Rotation(1e-9, 0, 0, 1), {0, 0, 1}, 1e-9, 1},
        {"a mirror", TTransformation::Scaling(-1, 1, 1), {0, 0, 1}, 0, -1},
    };
    for (const auto& [name, transformation, axis, angle, x] : mirrors) {
        ASSERT_TRUE(transformation.Decompose(parts)) << name;
        EXPECT_TRUE(parts.axis.Equal(axis, 12)) << name << parts.axis.ToString().c_str();
        EXPECT_NEAR(parts.angle, angle, 1e-15) << name;
        EXPECT_NEAR(parts.scaling.Element(1, 1), x, 1e-15) << name;
    }

    Random random(12);
    for (int i = 0; i < 2000; ++i) {
        TTransformation all;
        const double size = std::pow(10, random.Uniform(-9, 9));
        for (unsigned k = 0; k < 12; ++k) all.Element(k / 4 + 1, k % 4 + 1, random.Uniform(-1, 1) * size);
        FloatMatrix corner(3, 3);
        for (unsigned k = 0; k < 9; ++k)
            corner.Element(k / 3 + 1, k % 3 + 1, all.Element(k / 3 + 1, k % 3 + 1));
        const double condition = corner.Condition();
        if (condition > 1e6) continue;
        ASSERT_TRUE(all.Invert(inverse) && all.Decompose(parts));
        const double error = 1e-15 * condition;
        ASSERT_TRUE(near(all * inverse, TTransformation(), error * 10 * std::max(1.0, size))) << i;
        ASSERT_EQ(inverse.Element(4, 4), 1);
        const TTransformation turn = parts.rotation;
        ASSERT_TRUE(near(parts.translation * turn * parts.shear * parts.scaling, all, error * size)) << i;
        ASSERT_TRUE(
            near(TTransformation::Rotation(parts.angle, parts.axis.X(), parts.axis.Y(), parts.axis.Z()), turn,
                 2e-15))
            << i;
        ASSERT_TRUE(turn.Invert(inverse) && near(turn * inverse, TTransformation(), 1e-15));
        ASSERT_NEAR(turn.Determinant(), 1, 1e-14);
        ASSERT_EQ(parts.scaling.Determinant() < 0, all.Determinant() < 0) << i;
        ASSERT_TRUE(parts.shear.Element(2, 1) == 0 && parts.shear.Element(1, 1) == 1 &&
                    parts.shear.Element(3, 3) == 1);
    }
}

} // namespace
