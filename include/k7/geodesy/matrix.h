// K7Matrix4x4: the transformations of a fixed-function pipeline.
#pragma once

#include <k7/export.h>
#include <k7/geodesy/vector.h>

/// Sixteen numbers in column-major order: element (row r, column c) at position 4c + r. All zero at first.
/// Every builder multiplies its matrix onto this one from the right, so that what is built last meets a
/// vector first. The builders follow the fixed-function pipeline's definition of matrices (OpenGL 2.1,
/// section 2.11.2, and its utility library).
///
/// Operations that return an int give 0, or K7_ERR_OUT_OF_RANGE with everything unchanged. A value: copy
/// freely.
class K7_API K7Matrix4x4 {
 public:
  K7Matrix4x4() = default;

  int Identity();
  /// \name Elements
  /// @{
  /// Takes four columns. Null is K7_ERR_OUT_OF_RANGE.
  int Set(const K7Vector4* columns);
  /// Answers 0 for an index outside 0 to 3.
  double GetValue(int row, int col) const;
  int SetValue(int row, int col, double value);
  /// Hands out the sixteen numbers in place.
  double* ToArray() { return m_columns[0].ToArray(); }
  const double* ToArray() const { return m_columns[0].ToArray(); }
  /// A column, 0 to 3: not checked.
  K7Vector4& operator[](int col) { return m_columns[col]; }
  const K7Vector4& operator[](int col) const { return m_columns[col]; }
  /// @}

  /// \name Builders
  /// Each multiplies its matrix onto this one.
  /// @{
  /// this = this x m.
  int Multiply(const K7Matrix4x4& m);
  K7Matrix4x4 operator*(const K7Matrix4x4& m) const;
  /// Exact.
  bool operator==(const K7Matrix4x4& m) const;
  bool operator!=(const K7Matrix4x4& m) const { return !(*this == m); }

  /// Moves what the matrix is given. A move by exactly nothing leaves even a matrix that holds no numbers as
  /// it is.
  int Translate(double x, double y, double z);
  int Scale(double x, double y, double z);
  /// `angle` in degrees about the axis, counter-clockwise as seen from its tip. A zero axis is
  /// K7_ERR_OUT_OF_RANGE.
  int Rotate(double angle, double x, double y, double z);
  /// An extent of exactly 0 is K7_ERR_OUT_OF_RANGE; a negative one mirrors. Near is looked at from z = 0 down
  /// -z.
  int Ortho(double left, double right, double bottom, double top, double zNear, double zFar);
  int Frustum(double left, double right, double bottom, double top, double zNear, double zFar);
  /// `fovy`: vertical field of view in degrees. `aspect`: width by height. K7_ERR_OUT_OF_RANGE when the field
  /// of view has no tangent other than 0, the aspect is 0, or near is far.
  int Perspective(double fovy, double aspect, double zNear, double zFar);
  /// K7_ERR_OUT_OF_RANGE for a null pointer, an eye at the centre, or an up along the line of sight.
  int LookAt(const K7Vector3* eye, const K7Vector3* centre, const K7Vector3* up);
  /// @}

  /// K7_ERR_OUT_OF_RANGE for a matrix that is singular to the precision of its numbers. Scaling rows or
  /// columns, however far, makes no matrix singular.
  int Invert();
  /// out = this x in, four numbers each; `out` may be `in`. Null is K7_ERR_OUT_OF_RANGE.
  int VectorMult(const double* in, double* out) const;

  /// This is the model-view matrix: takes a point of the model to window coordinates and a depth within [0,
  /// 1]. `viewport`: x, y, width, height. K7_ERR_OUT_OF_RANGE for null or a point in the plane of the eye.
  int Project(double x, double y, double z, const int viewport[4], K7Matrix4x4* projection, double& wx,
              double& wy, double& wz) const;
  /// This is projection x model-view: takes window coordinates and depth back to the point.
  /// K7_ERR_OUT_OF_RANGE for null, a viewport without area, a singular matrix, or a point at infinity.
  int UnProject(double wx, double wy, double wz, const int viewport[4], double& x, double& y,
                double& z) const;

 private:
  K7Vector4 m_columns[4];
};

static_assert(sizeof(K7Matrix4x4) == 16 * sizeof(double));
