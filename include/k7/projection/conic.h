// The conic projections: Lambert conformal and Albers equal-area.
#pragma once

#include <k7/projection/projection.h>

/// World units are earth radii; the position at central meridian and origin latitude is (0, 0), its meridian
/// runs along +y. The leaves supply the cone constant and the radius of a latitude on the developed cone. (J.
/// P. Snyder, Map Projections: A Working Manual, USGS Professional Paper 1395, pages 98 to 109.)
class K7_API K7ConicProjection : public K7Projection {
 public:
  /// Two parameters in degrees, "Standard Parallel 1" (index 0) and "Standard Parallel 2" (any other index).
  /// A write recomputes the cone at once.
  int ParamCount() const override;
  /// Null for an index other than 0 and 1.
  const char* ParamName(int index) const override;
  void ParamValue(int index, double value) override = 0;
  double ParamValue(int index) const override;
  /// Always true. The pole opposite the cone's apex is at infinity.
  bool LatLon2World(double lat, double lon, double& x, double& y, double& z) const override;
  /// Always true, also in the gap of the developed cone; not a number where an equal-area cone has no
  /// latitude.
  bool World2LatLon(double x, double y, double z, double& lat, double& lon) const override;
  /// At unit zoom the window is two earth radii wide.
  bool SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const override;
  /// The meridian through the centre runs straight up the screen.
  bool CenterOn(K7Grfx* g, double lat, double lon) const override;
  bool IsConic() const override;

  /// Radius of a latitude on the developed cone and back. Radians, earth radii.
  virtual double Lat2Rho(double phi) const = 0;
  virtual double Rho2Lat(double rho) const = 0;
  /// Angle on the developed cone of a longitude and back. Radians; both wrap by one turn at most.
  double Lambda2Theta(double lambda) const;
  double Theta2Lambda(double theta) const;

 protected:
  /// Degrees. The leaf computes the cone.
  K7ConicProjection(K7ProjType type, double parallel1, double parallel2, double meridian, double origin);
  void SetParallel(int index, double degrees);

  double m_lambda0;   // central meridian; all angles in radians
  double m_rho0 = 0;  // radius of the origin latitude
  double m_n = 0;     // cone constant
  double m_phi0;      // origin latitude
  double m_phi1;      // standard parallels
  double m_phi2;
  double m_scale = 0;  // F of Lambert, C of Albers
};

/// Conformal: the usual projection of aeronautical charts. Spherical unless `UseEllipEqs` was called. Equal
/// standard parallels give a cone constant of 0/0: not guarded.
class K7_API K7LambertProjection : public K7ConicProjection {
 public:
  /// Degrees.
  K7LambertProjection(double parallel1, double parallel2, double meridian, double origin);
  /// Spherical again, whatever the equations of this object.
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;
  using K7ConicProjection::ParamValue;
  void ParamValue(int index, double value) override;
  double Lat2Rho(double phi) const override;
  double Rho2Lat(double rho) const override;
  void LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                     double* z) const override;

  /// Changes to the ellipsoid with semi-major axis `a` and semi-minor axis `b`, in one unit, for the rest of
  /// this object's life. World units are then semi-major axes. (Snyder, equations 15-7 to 15-11; the inverse
  /// by the series 3-5, carried to the eighth power of the eccentricity.)
  void UseEllipEqs(double a, double b);

 protected:
  /// Snyder's equations 14-15 and 15-9a.
  double m(double phi) const;
  double t(double phi) const;

 private:
  void ComputeCone();

  bool m_ellipsoidal = false;
  double m_e = 0;           // eccentricity
  double m_series[4] = {};  // of the inverse
};

/// Equal-area. (Snyder, equations 14-1 to 14-11.)
class K7_API K7AlbersProjection : public K7ConicProjection {
 public:
  /// Degrees.
  K7AlbersProjection(double parallel1, double parallel2, double meridian, double origin);
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;
  using K7ConicProjection::ParamValue;
  void ParamValue(int index, double value) override;
  double Lat2Rho(double phi) const override;
  double Rho2Lat(double rho) const override;
  void LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                     double* z) const override;

 private:
  void ComputeCone();
};
