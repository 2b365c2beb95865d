#include <gtest/gtest.h>
#include <k7/foundation/error_string.h>
#include <k7/geodesy.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

// Where a matrix takes a point, after the division by w.
K7Vector3 Image(const K7Matrix4x4& m, double x, double y, double z) {
  double v[4] = {x, y, z, 1};
  EXPECT_EQ(m.VectorMult(v, v), K7_OK);
  return K7Vector3(v[0] / v[3], v[1] / v[3], v[2] / v[3]);
}

void ExpectNear(const K7Vector3& a, const K7Vector3& b, double tolerance = 1e-12) {
  EXPECT_LE(a.Distance(b), tolerance) << a.X() << " " << a.Y() << " " << a.Z();
}

K7Matrix4x4 IdentityMatrix() {
  K7Matrix4x4 m;
  m.Identity();
  return m;
}

double DistanceFromIdentity(const K7Matrix4x4& m) {
  double largest = 0;
  for (int i = 0; i < 16; ++i) largest = std::max(largest, std::fabs(m.ToArray()[i] - (i % 5 == 0)));
  return largest;
}

}  // namespace

TEST(Vector, MeetsTheIdentitiesOfItsAlgebra) {
  const K7Vector3 a(1, 2, 3), b(-4, 5, 0.5);
  K7Vector3 c;
  a.CrossProduct(b, c);
  EXPECT_EQ(c.DotProduct(a), 0);
  EXPECT_EQ(c.DotProduct(b), 0);
  EXPECT_DOUBLE_EQ(c.DotProduct(), a.DotProduct() * b.DotProduct() - a.DotProduct(b) * a.DotProduct(b));
  EXPECT_EQ(a.LinearInterpolate(b, 0.5), a.Midpoint(b));
  EXPECT_EQ(a + a.Invert(), K7Vector3());
  K7Vector3 zero;
  EXPECT_EQ(zero.Normalize(), 0);
  EXPECT_EQ(zero, K7Vector3());
  K7Vector4 v(2, 4, 5, 6);
  EXPECT_EQ(v.Normalize(), 9);
  EXPECT_DOUBLE_EQ(v.Length(), 1);
}

TEST(Matrix, VolumesMapToTheUnitCube) {
  K7Matrix4x4 ortho = IdentityMatrix(), frustum = ortho, perspective = ortho, mirrored = ortho;
  ASSERT_EQ(ortho.Ortho(-2, 4, 1, 5, 1, 9), K7_OK);
  ExpectNear(Image(ortho, -2, 1, -1), {-1, -1, -1});
  ExpectNear(Image(ortho, 4, 5, -9), {1, 1, 1});
  ASSERT_EQ(frustum.Frustum(-2, 4, 1, 5, 1, 9), K7_OK);
  ExpectNear(Image(frustum, -2, 1, -1), {-1, -1, -1});
  ExpectNear(Image(frustum, 9 * 4, 9 * 5, -9), {1, 1, 1});
  ASSERT_EQ(perspective.Perspective(90, 2, 1, 9), K7_OK);
  ExpectNear(Image(perspective, 9 * 2, 9, -9), {1, 1, 1});
  ASSERT_EQ(mirrored.Frustum(1, -1, -0.5, 0.5, 1, 2), K7_OK);
  ExpectNear(Image(mirrored, 1, 0.5, -1), {-1, 1, -1});

  const K7Matrix4x4 before = ortho;
  EXPECT_EQ(ortho.Ortho(1, 1, 0, 1, 0, 1), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(ortho.Frustum(0, 1, 2, 2, 1, 2), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(ortho.Perspective(45, 0, 1, 2), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(ortho.Rotate(10, 0, 0, 0), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(ortho.SetValue(4, 0, 1), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(ortho.LookAt(nullptr, nullptr, nullptr), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(ortho, before);
}

TEST(Matrix, BuildersMultiplyFromTheRight) {
  K7Matrix4x4 m = IdentityMatrix();
  m.Translate(10, 0, 0);
  m.Rotate(90, 0, 0, 5);
  m.Scale(2, 3, 4);
  // Scaled first, then turned from x to y, then moved.
  ExpectNear(Image(m, 1, 0, 0), {10, 2, 0});
  ExpectNear(Image(m, 0, 1, 1), {7, 0, 4});
  EXPECT_EQ(m.GetValue(0, 3), 10);
  EXPECT_EQ(m[3].X(), m.ToArray()[12]);

  K7Matrix4x4 camera = IdentityMatrix();
  const K7Vector3 eye(3, -2, 5), centre(0, 4, 1), up(0, 0, 2);
  ASSERT_EQ(camera.LookAt(&eye, &centre, &up), K7_OK);
  ExpectNear(Image(camera, 3, -2, 5), {0, 0, 0});
  ExpectNear(Image(camera, 0, 4, 1), {0, 0, -eye.Distance(centre)});
  const K7Vector3 above = Image(camera, 0, 4, 2);
  EXPECT_NEAR(above.X(), 0, 1e-12);
  EXPECT_GT(above.Y(), 0);
}

TEST(Matrix, InverseUndoesAndSingularStays) {
  std::mt19937_64 bits(5);
  std::uniform_real_distribution<> uniform(-10, 10);
  for (int i = 0; i < 2000; ++i) {
    K7Matrix4x4 m;
    for (int k = 0; k < 16; ++k) m.ToArray()[k] = uniform(bits);
    // A column scaled by a millionth of a millionth makes the numbers small, not the matrix singular.
    if (i % 3 == 0) m.Scale(1e-12, 1, 1e9);
    K7Matrix4x4 inverse = m;
    ASSERT_EQ(inverse.Invert(), K7_OK);
    EXPECT_LT(DistanceFromIdentity(m * inverse), 1e-8);

    // The last row as a combination of two others leaves only rounding at the last pivot.
    for (int c = 0; c < 4; ++c) m.SetValue(3, c, 0.1 * m.GetValue(0, c) - 0.7 * m.GetValue(1, c));
    const K7Matrix4x4 singular = m;
    EXPECT_EQ(m.Invert(), K7_ERR_OUT_OF_RANGE);
    EXPECT_EQ(m, singular);
  }
}

TEST(Matrix, UnProjectUndoesProject) {
  K7Matrix4x4 model = IdentityMatrix(), projection = model;
  const K7Vector3 eye(0, 0, 3), centre(0.2, 0.1, 0), up(0, 1, 0);
  model.LookAt(&eye, &centre, &up);
  projection.Perspective(40, 1.5, 0.5, 20);
  const int viewport[4] = {10, 20, 600, 400};
  const K7Matrix4x4 both = projection * model;
  double wx, wy, wz, x, y, z;
  ASSERT_EQ(model.Project(centre.X(), centre.Y(), centre.Z(), viewport, &projection, wx, wy, wz), K7_OK);
  ExpectNear({wx, wy, 0}, {310, 220, 0}, 1e-9);  // what is looked at stands in the middle
  ASSERT_EQ(model.Project(0.3, -0.4, 0.5, viewport, &projection, wx, wy, wz), K7_OK);
  ASSERT_EQ(both.UnProject(wx, wy, wz, viewport, x, y, z), K7_OK);
  ExpectNear({x, y, z}, {0.3, -0.4, 0.5});
  ASSERT_EQ(both.UnProject(10, 20, 0, viewport, x, y, z), K7_OK);
  EXPECT_NEAR(Image(model, x, y, z).Z(), -0.5, 1e-12);  // depth 0 is the near plane
  const int empty[4] = {0, 0, 0, 10};
  EXPECT_EQ(both.UnProject(0, 0, 0, empty, x, y, z), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(model.Project(0, 0, 3, viewport, &projection, wx, wy, wz),
            K7_ERR_OUT_OF_RANGE);  // the eye itself
}

TEST(MatrixStack, ModesHaveTheirOwnDepths) {
  K7MatrixStackK7 stack;
  const struct {
    K7MatrixMode mode;
    int pushes;
  } modes[] = {{K7_MATRIX_MODELVIEW, 23}, {K7_MATRIX_PROJECTION, 3}, {K7_MATRIX_TEXTURE, 3}};
  for (const auto& [mode, pushes] : modes) {
    ASSERT_EQ(stack.MatrixMode(mode), K7_OK);
    for (int i = 0; i < pushes; ++i) EXPECT_EQ(stack.PushMatrix(), K7_OK);
    EXPECT_EQ(stack.PushMatrix(), K7_ERR_OUT_OF_RANGE);
    for (int i = 0; i < pushes; ++i) EXPECT_EQ(stack.PopMatrix(), K7_OK);
    EXPECT_EQ(stack.PopMatrix(), K7_ERR_OUT_OF_RANGE);
  }
  EXPECT_EQ(stack.MatrixMode(static_cast<K7MatrixMode>(10)), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(stack.Scale(1, 2, 3), K7_OK);  // the texture stack is still the current one
  EXPECT_EQ(stack.MatrixMode(static_cast<K7MatrixMode>(5)), K7_OK);
  EXPECT_EQ(stack.PushMatrix(), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(stack.Identity(), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(stack.Translate(0, 0, 0), K7_OK);
}

TEST(MatrixStack, CombinesProjectionAndModelView) {
  K7MatrixStackK7 stack;
  stack.Translate(1, 2, 3);
  stack.PushMatrix();
  stack.Rotate(30, 1, 1, 0);
  stack.MatrixMode(K7_MATRIX_PROJECTION);
  stack.Ortho(-1, 3, -1, 1, 0, 5);
  K7Matrix4x4 model, projection, both;
  stack.GetTextureMatrix(both);
  EXPECT_EQ(both, IdentityMatrix());
  stack.GetModelMatrix(model);
  stack.GetProjectionMatrix(projection);
  std::copy(stack.GetModelviewProjectionMatrix(), stack.GetModelviewProjectionMatrix() + 16, both.ToArray());
  EXPECT_EQ(both, projection * model);
  stack.MatrixMode(K7_MATRIX_MODELVIEW);
  stack.PopMatrix();
  stack.GetModelMatrix(model);
  ExpectNear(Image(model, 0, 0, 0), {1, 2, 3});

  const double nan = std::numeric_limits<double>::quiet_NaN();
  K7Matrix4x4 none = IdentityMatrix();
  none.SetValue(0, 0, nan);
  EXPECT_EQ(none.Translate(0, 0, 0), K7_OK);
  EXPECT_EQ(none[3], IdentityMatrix()[3]);
}
