#include <k7/geodesy/matrix.h>

#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// A matrix as one writes it down, row by row.
K7Matrix4x4 FromRows(const double (&rows)[4][4]) {
  K7Matrix4x4 m;
  for (int c = 0; c < 4; ++c) m[c].Set(rows[0][c], rows[1][c], rows[2][c], rows[3][c]);
  return m;
}

// Gauss-Jordan elimination of one matrix with its inverse beside it. `m_error` follows each element's
// possible error, in units of the rounding of one operation: a pivot within its error is nothing but
// rounding, whatever the scale of its row and column.
class Elimination {
 public:
  explicit Elimination(const K7Matrix4x4& m) {
    for (int r = 0; r < 4; ++r) {
      for (int c = 0; c < 4; ++c) {
        m_a[r][c] = m.GetValue(r, c);
        m_error[r][c] = std::fabs(m_a[r][c]);
      }
      m_a[r][4 + r] = 1;
    }
  }

  // False for a singular matrix.
  bool Run() {
    for (int c = 0; c < 4; ++c) {
      const int pivot = FindPivot(c);
      if (pivot < 0) return false;
      std::swap(m_a[c], m_a[pivot]);
      std::swap(m_error[c], m_error[pivot]);
      Divide(c);
      for (int r = 0; r < 4; ++r) {
        if (r != c) Subtract(r, c);
      }
    }
    return true;
  }

  K7Matrix4x4 Inverse() const {
    K7Matrix4x4 m;
    for (int c = 0; c < 4; ++c) m[c].Set(m_a[0][4 + c], m_a[1][4 + c], m_a[2][4 + c], m_a[3][4 + c]);
    return m;
  }

 private:
  int FindPivot(int c) const {
    int best = -1;
    for (int r = c; r < 4; ++r) {
      const double size = std::fabs(m_a[r][c]);
      const bool significant = size > 4 * std::numeric_limits<double>::epsilon() * m_error[r][c];
      if (significant && std::isfinite(size) && (best < 0 || size > std::fabs(m_a[best][c]))) best = r;
    }
    return best;
  }

  // Divides row c by its pivot.
  void Divide(int c) {
    const double pivot = m_a[c][c];
    const double pivotError = m_error[c][c];
    for (int k = 0; k < 8; ++k) m_a[c][k] /= pivot;
    for (int k = 0; k < 4; ++k)
      m_error[c][k] = (m_error[c][k] + std::fabs(m_a[c][k]) * pivotError) / std::fabs(pivot);
  }

  // Takes row c from row r so often that column c of it becomes 0.
  void Subtract(int r, int c) {
    const double factor = m_a[r][c];
    const double factorError = m_error[r][c];
    for (int k = 0; k < 8; ++k) m_a[r][k] -= factor * m_a[c][k];
    for (int k = 0; k < 4; ++k)
      m_error[r][k] += std::fabs(factor) * m_error[c][k] + factorError * std::fabs(m_a[c][k]);
  }

  double m_a[4][8] = {};
  double m_error[4][4] = {};
};

}  // namespace

int K7Matrix4x4::Identity() {
  for (int c = 0; c < 4; ++c) m_columns[c].Set(c == 0, c == 1, c == 2, c == 3);
  return K7_OK;
}

int K7Matrix4x4::Set(const K7Vector4* columns) {
  if (!columns) return K7_ERR_OUT_OF_RANGE;
  std::copy(columns, columns + 4, m_columns);
  return K7_OK;
}

double K7Matrix4x4::GetValue(int row, int col) const {
  if (row < 0 || row > 3 || col < 0 || col > 3) return 0;
  return m_columns[col].ToArray()[row];
}

int K7Matrix4x4::SetValue(int row, int col, double value) {
  if (row < 0 || row > 3 || col < 0 || col > 3) return K7_ERR_OUT_OF_RANGE;
  m_columns[col].ToArray()[row] = value;
  return K7_OK;
}

int K7Matrix4x4::Multiply(const K7Matrix4x4& m) {
  *this = *this * m;
  return K7_OK;
}

K7Matrix4x4 K7Matrix4x4::operator*(const K7Matrix4x4& m) const {
  K7Matrix4x4 product;
  for (int c = 0; c < 4; ++c) VectorMult(m[c].ToArray(), product[c].ToArray());
  return product;
}

bool K7Matrix4x4::operator==(const K7Matrix4x4& m) const {
  return std::equal(m_columns, m_columns + 4, m.m_columns);
}

int K7Matrix4x4::Translate(double x, double y, double z) {
  if (x == 0 && y == 0 && z == 0) return K7_OK;
  const double by[4] = {x, y, z, 1};
  return VectorMult(by, m_columns[3].ToArray());
}

int K7Matrix4x4::Scale(double x, double y, double z) {
  m_columns[0] = m_columns[0] * K7Vector4(x, x, x, x);
  m_columns[1] = m_columns[1] * K7Vector4(y, y, y, y);
  m_columns[2] = m_columns[2] * K7Vector4(z, z, z, z);
  return K7_OK;
}

int K7Matrix4x4::Rotate(double angle, double x, double y, double z) {
  K7Vector3 axis(x, y, z);
  if (!(axis.Normalize() > 0)) return K7_ERR_OUT_OF_RANGE;
  x = axis.X();
  y = axis.Y();
  z = axis.Z();
  const double c = std::cos(angle * K7_DEG_TO_RAD);
  const double s = std::sin(angle * K7_DEG_TO_RAD);
  const double d = 1 - c;
  return Multiply(FromRows({{x * x * d + c, x * y * d - z * s, x * z * d + y * s, 0},
                            {y * x * d + z * s, y * y * d + c, y * z * d - x * s, 0},
                            {z * x * d - y * s, z * y * d + x * s, z * z * d + c, 0},
                            {0, 0, 0, 1}}));
}

int K7Matrix4x4::Ortho(double left, double right, double bottom, double top, double zNear, double zFar) {
  const double width = right - left;
  const double height = top - bottom;
  const double depth = zFar - zNear;
  if (width == 0 || height == 0 || depth == 0) return K7_ERR_OUT_OF_RANGE;
  return Multiply(FromRows({{2 / width, 0, 0, -(right + left) / width},
                            {0, 2 / height, 0, -(top + bottom) / height},
                            {0, 0, -2 / depth, -(zFar + zNear) / depth},
                            {0, 0, 0, 1}}));
}

int K7Matrix4x4::Frustum(double left, double right, double bottom, double top, double zNear, double zFar) {
  const double width = right - left;
  const double height = top - bottom;
  const double depth = zFar - zNear;
  if (width == 0 || height == 0 || depth == 0) return K7_ERR_OUT_OF_RANGE;
  return Multiply(FromRows({{2 * zNear / width, 0, (right + left) / width, 0},
                            {0, 2 * zNear / height, (top + bottom) / height, 0},
                            {0, 0, -(zFar + zNear) / depth, -2 * zFar * zNear / depth},
                            {0, 0, -1, 0}}));
}

int K7Matrix4x4::Perspective(double fovy, double aspect, double zNear, double zFar) {
  const double half = fovy / 2 * K7_DEG_TO_RAD;
  const double sine = std::sin(half);
  const double depth = zFar - zNear;
  if (sine == 0 || aspect == 0 || depth == 0) return K7_ERR_OUT_OF_RANGE;
  const double cotangent = std::cos(half) / sine;
  return Multiply(FromRows({{cotangent / aspect, 0, 0, 0},
                            {0, cotangent, 0, 0},
                            {0, 0, -(zFar + zNear) / depth, -2 * zFar * zNear / depth},
                            {0, 0, -1, 0}}));
}

int K7Matrix4x4::LookAt(const K7Vector3* eye, const K7Vector3* centre, const K7Vector3* up) {
  if (!eye || !centre || !up) return K7_ERR_OUT_OF_RANGE;
  K7Vector3 forward = *centre - *eye;
  if (!(forward.Normalize() > 0)) return K7_ERR_OUT_OF_RANGE;
  K7Vector3 side;
  forward.CrossProduct(*up, side);
  if (!(side.Normalize() > 0)) return K7_ERR_OUT_OF_RANGE;
  K7Vector3 upright;
  side.CrossProduct(forward, upright);
  Multiply(FromRows({{side.X(), side.Y(), side.Z(), 0},
                     {upright.X(), upright.Y(), upright.Z(), 0},
                     {-forward.X(), -forward.Y(), -forward.Z(), 0},
                     {0, 0, 0, 1}}));
  return Translate(-eye->X(), -eye->Y(), -eye->Z());
}

int K7Matrix4x4::Invert() {
  Elimination elimination(*this);
  if (!elimination.Run()) return K7_ERR_OUT_OF_RANGE;
  *this = elimination.Inverse();
  return K7_OK;
}

int K7Matrix4x4::VectorMult(const double* in, double* out) const {
  if (!in || !out) return K7_ERR_OUT_OF_RANGE;
  double product[4];
  for (int r = 0; r < 4; ++r)
    product[r] = m_columns[0].ToArray()[r] * in[0] + m_columns[1].ToArray()[r] * in[1] +
                 m_columns[2].ToArray()[r] * in[2] + m_columns[3].ToArray()[r] * in[3];
  std::copy(product, product + 4, out);
  return K7_OK;
}

int K7Matrix4x4::Project(double x, double y, double z, const int viewport[4], K7Matrix4x4* projection,
                         double& wx, double& wy, double& wz) const {
  if (!viewport || !projection) return K7_ERR_OUT_OF_RANGE;
  double v[4] = {x, y, z, 1};
  VectorMult(v, v);
  projection->VectorMult(v, v);
  if (v[3] == 0) return K7_ERR_OUT_OF_RANGE;
  wx = viewport[0] + (v[0] / v[3] * 0.5 + 0.5) * viewport[2];
  wy = viewport[1] + (v[1] / v[3] * 0.5 + 0.5) * viewport[3];
  wz = v[2] / v[3] * 0.5 + 0.5;
  return K7_OK;
}

int K7Matrix4x4::UnProject(double wx, double wy, double wz, const int viewport[4], double& x, double& y,
                           double& z) const {
  if (!viewport || viewport[2] == 0 || viewport[3] == 0) return K7_ERR_OUT_OF_RANGE;
  K7Matrix4x4 inverse = *this;
  if (const int err = inverse.Invert()) return err;
  double v[4] = {(wx - viewport[0]) / viewport[2] * 2 - 1, (wy - viewport[1]) / viewport[3] * 2 - 1,
                 wz * 2 - 1, 1};
  inverse.VectorMult(v, v);
  if (v[3] == 0) return K7_ERR_OUT_OF_RANGE;
  x = v[0] / v[3];
  y = v[1] / v[3];
  z = v[2] / v[3];
  return K7_OK;
}
