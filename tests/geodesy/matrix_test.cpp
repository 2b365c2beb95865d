#include <gtest/gtest.h>
#include <k7/core.h>

#include <cmath>
#include <random>

namespace {

// Where a matrix takes a point, after the division by w.
K7Vector3 Image(const K7Matrix4x4& m, const K7Vector3& p) {
  double v[4] = {p.X(), p.Y(), p.Z(), 1};
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
  EXPECT_EQ(c, K7Vector3(-14, -12.5, 13));
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
  ASSERT_EQ(frustum.Frustum(-2, 4, 1, 5, 1, 9), K7_OK);
  ASSERT_EQ(perspective.Perspective(90, 2, 1, 9), K7_OK);
  ASSERT_EQ(mirrored.Frustum(1, -1, -0.5, 0.5, 1, 2), K7_OK);
  const struct {
    const K7Matrix4x4& volume;
    K7Vector3 corner, image;
  } corners[] = {{ortho, {-2, 1, -1}, {-1, -1, -1}},        {ortho, {4, 5, -9}, {1, 1, 1}},
                 {frustum, {-2, 1, -1}, {-1, -1, -1}},      {frustum, {36, 45, -9}, {1, 1, 1}},
                 {perspective, {-2, -1, -1}, {-1, -1, -1}}, {perspective, {18, 9, -9}, {1, 1, 1}},
                 {mirrored, {1, 0.5, -1}, {-1, 1, -1}}};
  for (const auto& [volume, corner, image] : corners) ExpectNear(Image(volume, corner), image);

  const K7Matrix4x4 before = ortho;
  for (const int code :
       {ortho.Ortho(1, 1, 0, 1, 0, 1), ortho.Ortho(0, 1, 2, 2, 0, 1), ortho.Ortho(0, 1, 0, 1, 3, 3),
        ortho.Frustum(1, 1, 0, 1, 1, 2), ortho.Frustum(0, 1, 2, 2, 1, 2), ortho.Frustum(0, 1, 0, 1, 2, 2),
        ortho.Perspective(0, 1, 1, 2), ortho.Perspective(45, 0, 1, 2), ortho.Perspective(45, 1, 2, 2),
        ortho.Rotate(10, 0, 0, 0), ortho.SetValue(4, 0, 1), ortho.SetValue(0, -1, 1), ortho.Set(nullptr),
        ortho.LookAt(nullptr, nullptr, nullptr), ortho.VectorMult(nullptr, nullptr)})
    EXPECT_EQ(code, K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(ortho, before);
  EXPECT_EQ(ortho.GetValue(-1, 0) + ortho.GetValue(4, 3), 0);
}

TEST(Matrix, BuildersMultiplyFromTheRight) {
  K7Matrix4x4 m = IdentityMatrix(), turned = m, camera = m;
  m.Translate(10, 0, 0);
  m.Rotate(90, 0, 0, 5);
  m.Scale(2, 3, 4);
  // Scaled first, then turned from x to y, then moved.
  ExpectNear(Image(m, {1, 0, 0}), {10, 2, 0});
  ExpectNear(Image(m, {0, 1, 1}), {7, 0, 4});
  EXPECT_EQ(m.GetValue(0, 3), 10);
  EXPECT_EQ(m[3].X(), m.ToArray()[12]);
  // A third of a turn about the cube's diagonal takes each axis to the next; half of one about it mirrors.
  turned.Rotate(120, 1, 1, 1);
  ExpectNear(Image(turned, {1, 2, 3}), {3, 1, 2});
  turned.Rotate(180, 1, 2, 2);
  ExpectNear(Image(turned, {1, 2, 2}), {2, 1, 2});

  const K7Vector3 eye(3, -2, 5), centre(0, 4, 1), up(0, 0, 2), zero;
  ASSERT_EQ(camera.LookAt(&eye, &centre, &up), K7_OK);
  ExpectNear(Image(camera, eye), zero);
  ExpectNear(Image(camera, centre), {0, 0, -eye.Distance(centre)});
  const K7Vector3 above = Image(camera, {0, 4, 2});
  EXPECT_NEAR(above.X(), 0, 1e-12);
  EXPECT_GT(above.Y(), 0);
  EXPECT_EQ(camera.LookAt(&eye, &eye, &up), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(camera.LookAt(&eye, &centre, &zero), K7_ERR_OUT_OF_RANGE);
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
  const int viewport[4] = {10, 20, 600, 400}, empty[4] = {0, 0, 0, 10}, flat[4] = {0, 0, 10, 0};
  const K7Matrix4x4 both = projection * model;
  double wx, wy, wz, x, y, z;
  ASSERT_EQ(model.Project(centre.X(), centre.Y(), centre.Z(), viewport, &projection, wx, wy, wz), K7_OK);
  ExpectNear({wx, wy, 0}, {310, 220, 0}, 1e-9);  // what is looked at stands in the middle
  ASSERT_EQ(model.Project(0.3, -0.4, 0.5, viewport, &projection, wx, wy, wz), K7_OK);
  ASSERT_EQ(both.UnProject(wx, wy, wz, viewport, x, y, z), K7_OK);
  ExpectNear({x, y, z}, {0.3, -0.4, 0.5});
  ASSERT_EQ(both.UnProject(10, 20, 0, viewport, x, y, z), K7_OK);
  EXPECT_NEAR(Image(model, {x, y, z}).Z(), -0.5, 1e-12);  // depth 0 is the near plane
  EXPECT_EQ(both.UnProject(0, 0, 0, empty, x, y, z), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(both.UnProject(0, 0, 0, flat, x, y, z), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(model.Project(0, 0, 3, viewport, &projection, wx, wy, wz), K7_ERR_OUT_OF_RANGE);  // the eye
}

TEST(MatrixStack, ModesHaveTheirOwnDepths) {
  K7MatrixStackK7 stack;
  for (const auto& [mode, pushes] :
       {std::pair{K7_MATRIX_MODELVIEW, 23}, {K7_MATRIX_PROJECTION, 3}, {K7_MATRIX_TEXTURE, 3}}) {
    ASSERT_EQ(stack.MatrixMode(mode), K7_OK);
    for (int i = 0; i < pushes; ++i) EXPECT_EQ(stack.PushMatrix(), K7_OK);
    EXPECT_EQ(stack.PushMatrix(), K7_ERR_OUT_OF_RANGE);
    for (int i = 0; i < pushes; ++i) EXPECT_EQ(stack.PopMatrix(), K7_OK);
    EXPECT_EQ(stack.PopMatrix(), K7_ERR_OUT_OF_RANGE);
  }
  for (const int mode : {-1, K7_MATRIX_TEXTURE + 1})
    EXPECT_EQ(stack.MatrixMode(static_cast<K7MatrixMode>(mode)), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(stack.Scale(1, 2, 3), K7_OK);  // the texture stack is still the current one
  EXPECT_EQ(stack.MatrixMode(static_cast<K7MatrixMode>(5)), K7_OK);
  double v[] = {0, 0, 1};
  for (const int code :
       {stack.PushMatrix(), stack.PopMatrix(), stack.Identity(), stack.Translate(0, 0, 1),
        stack.Scale(1, 2, 3), stack.Rotate(1, 0, 0, 1), stack.Ortho(0, 1, 0, 1, 0, 1),
        stack.Frustum(0, 1, 0, 1, 1, 2), stack.Perspective(45, 1, 1, 2), stack.LookAt(v, v, v)})
    EXPECT_EQ(code, K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(stack.Translate(0, 0, 0), K7_OK);
}

TEST(MatrixStack, CombinesProjectionAndModelView) {
  K7MatrixStackK7 stack;
  K7Matrix4x4 model, projection, both;
  stack.Translate(1, 2, 3);
  stack.PushMatrix();
  stack.Rotate(30, 1, 1, 0);
  double eye[] = {1, 2, 3}, centre[] = {0, 0, 0}, up[] = {0, 1, 0};
  EXPECT_EQ(stack.LookAt(eye, centre, up), K7_OK);
  for (const int code : {stack.LookAt(nullptr, centre, up), stack.LookAt(eye, nullptr, up),
                         stack.LookAt(eye, centre, nullptr)})
    EXPECT_EQ(code, K7_ERR_OUT_OF_RANGE);
  stack.MatrixMode(K7_MATRIX_PROJECTION);
  stack.Ortho(-1, 3, -1, 1, 0, 5);
  stack.GetTextureMatrix(both);
  EXPECT_EQ(both, IdentityMatrix());
  stack.GetModelMatrix(model);
  const K7Vector3 from(1, 2, 3), zero, upright(0, 1, 0);
  K7Matrix4x4 expected = IdentityMatrix();
  expected.Translate(1, 2, 3);
  expected.Rotate(30, 1, 1, 0);
  expected.LookAt(&from, &zero, &upright);
  EXPECT_EQ(model, expected);
  stack.GetProjectionMatrix(projection);
  std::copy(stack.GetModelviewProjectionMatrix(), stack.GetModelviewProjectionMatrix() + 16, both.ToArray());
  EXPECT_EQ(both, projection * model);
  stack.MatrixMode(K7_MATRIX_MODELVIEW);
  stack.PopMatrix();
  stack.GetModelMatrix(model);
  ExpectNear(Image(model, {0, 0, 0}), {1, 2, 3});

  K7Matrix4x4 none = IdentityMatrix();
  none.SetValue(0, 0, NAN);
  EXPECT_EQ(none.Translate(0, 0, 0), K7_OK);
  EXPECT_EQ(none[3], IdentityMatrix()[3]);
}
