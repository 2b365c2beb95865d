// K7Vector3 and K7Vector4: what matrices are made of and work on.
#pragma once

#include <k7/export.h>

#include <cmath>

/// Three numbers x, y, z, zero at first. Comparison is exact. A value: copy freely.
class K7_API K7Vector3 {
 public:
  K7Vector3() = default;
  K7Vector3(double x, double y, double z) : m_v{x, y, z} {}

  void Set(double x, double y, double z) { *this = K7Vector3(x, y, z); }
  double X() const { return m_v[0]; }
  double Y() const { return m_v[1]; }
  double Z() const { return m_v[2]; }
  /// The three numbers in place.
  double* ToArray() { return m_v; }
  const double* ToArray() const { return m_v; }

  K7Vector3 operator+(const K7Vector3& b) const { return {X() + b.X(), Y() + b.Y(), Z() + b.Z()}; }
  K7Vector3 operator-(const K7Vector3& b) const { return {X() - b.X(), Y() - b.Y(), Z() - b.Z()}; }
  /// Component by component.
  K7Vector3 operator*(const K7Vector3& b) const { return {X() * b.X(), Y() * b.Y(), Z() * b.Z()}; }
  bool operator==(const K7Vector3& b) const { return X() == b.X() && Y() == b.Y() && Z() == b.Z(); }
  bool operator!=(const K7Vector3& b) const { return !(*this == b); }

  /// out = this x b; `out` may be either.
  void CrossProduct(const K7Vector3& b, K7Vector3& out) const {
    out = K7Vector3(Y() * b.Z() - Z() * b.Y(), Z() * b.X() - X() * b.Z(), X() * b.Y() - Y() * b.X());
  }
  double DotProduct(const K7Vector3& b) const { return X() * b.X() + Y() * b.Y() + Z() * b.Z(); }
  double DotProduct() const { return DotProduct(*this); }
  double Length() const { return std::sqrt(DotProduct()); }
  double Distance(const K7Vector3& b) const { return (*this - b).Length(); }
  /// Returns the former length; a vector of length 0 stays.
  double Normalize() {
    const double length = Length();
    if (length != 0) Set(X() / length, Y() / length, Z() / length);
    return length;
  }
  /// The opposite vector.
  K7Vector3 Invert() const { return {-X(), -Y(), -Z()}; }
  K7Vector3 Midpoint(const K7Vector3& b) const {
    return {(X() + b.X()) / 2, (Y() + b.Y()) / 2, (Z() + b.Z()) / 2};
  }
  /// this + t (b - this).
  K7Vector3 LinearInterpolate(const K7Vector3& b, double t) const {
    return {X() + t * (b.X() - X()), Y() + t * (b.Y() - Y()), Z() + t * (b.Z() - Z())};
  }

 private:
  double m_v[3] = {};
};

/// Four numbers x, y, z, w, zero at first; otherwise as K7Vector3.
class K7_API K7Vector4 {
 public:
  K7Vector4() = default;
  K7Vector4(double x, double y, double z, double w) : m_v{x, y, z, w} {}

  void Set(double x, double y, double z, double w) { *this = K7Vector4(x, y, z, w); }
  double X() const { return m_v[0]; }
  double Y() const { return m_v[1]; }
  double Z() const { return m_v[2]; }
  double W() const { return m_v[3]; }
  double* ToArray() { return m_v; }
  const double* ToArray() const { return m_v; }

  K7Vector4 operator+(const K7Vector4& b) const {
    return {X() + b.X(), Y() + b.Y(), Z() + b.Z(), W() + b.W()};
  }
  K7Vector4 operator-(const K7Vector4& b) const {
    return {X() - b.X(), Y() - b.Y(), Z() - b.Z(), W() - b.W()};
  }
  K7Vector4 operator*(const K7Vector4& b) const {
    return {X() * b.X(), Y() * b.Y(), Z() * b.Z(), W() * b.W()};
  }
  bool operator==(const K7Vector4& b) const {
    return X() == b.X() && Y() == b.Y() && Z() == b.Z() && W() == b.W();
  }
  bool operator!=(const K7Vector4& b) const { return !(*this == b); }

  double DotProduct(const K7Vector4& b) const {
    return X() * b.X() + Y() * b.Y() + Z() * b.Z() + W() * b.W();
  }
  double DotProduct() const { return DotProduct(*this); }
  double Length() const { return std::sqrt(DotProduct()); }
  double Normalize() {
    const double length = Length();
    if (length != 0) Set(X() / length, Y() / length, Z() / length, W() / length);
    return length;
  }
  K7Vector4 Invert() const { return {-X(), -Y(), -Z(), -W()}; }

 private:
  double m_v[4] = {};
};

static_assert(sizeof(K7Vector3) == 3 * sizeof(double));
static_assert(sizeof(K7Vector4) == 4 * sizeof(double));
