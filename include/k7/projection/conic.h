// The conic projections: Lambert conformal and Albers equal-area.
#pragma once

#include <k7/projection/projection.h>

/// World units are earth radii. The position at central meridian and origin latitude is (0, 0), and its
/// meridian runs along +y. The leaves supply the cone constant and the radius of a latitude on the
/// developed cone. (J. P. Snyder, Map Projections: A Working Manual, USGS Professional Paper 1395, chapters
/// 14 and 15.)
class K7_API K7ConicProjection : public K7Projection {
 public:
  /// \name Parameters
  /// There are two, in degrees: "Standard Parallel 1" (index 0) and "Standard Parallel 2" (any other
  /// index). A write recomputes the cone at once.
  /// @{
  int ParamCount() const override;
  /// Answers null for an index other than 0 and 1.
  const char* ParamName(int index) const override;
  void ParamValue(int index, double value) override = 0;
  double ParamValue(int index) const override;
  /// @}

  /// \name Positions
  /// @{
  /// Answers true always. The pole opposite the cone's apex is at infinity.
  bool LatLon2World(double lat, double lon, double& x, double& y, double& z) const override;
  /// Answers true always, also in the gap of the developed cone. The latitude is not a number where an
  /// equal-area cone has none.
  bool World2LatLon(double x, double y, double z, double& lat, double& lon) const override;
  /// @}

  /// \name Camera
  /// @{
  /// Sets a window that is two earth radii wide at unit zoom.
  bool SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const override;
  /// Runs the meridian through the centre straight up the screen.
  bool CenterOn(K7Grfx* g, double lat, double lon) const override;
  /// @}

  bool IsConic() const override;

  /// \name The developed cone
  /// @{
  /// Turn a latitude in radians into its radius on the developed cone, in earth radii, and back.
  virtual double Lat2Rho(double phi) const = 0;
  virtual double Rho2Lat(double rho) const = 0;
  /// Turn a longitude into its angle on the developed cone and back, in radians. Both wrap by one turn at
  /// most.
  double Lambda2Theta(double lambda) const;
  double Theta2Lambda(double theta) const;
  /// @}

 protected:
  /// Takes degrees. The leaf computes the cone.
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

/// The Lambert projection is conformal: the usual projection of aeronautical charts. It is spherical unless
/// `UseEllipEqs` was called. Equal standard parallels give a cone constant of 0/0, which is not guarded.
class K7_API K7LambertProjection : public K7ConicProjection {
 public:
  /// Takes degrees.
  K7LambertProjection(double parallel1, double parallel2, double meridian, double origin);
  /// Makes a spherical projection, whatever the equations of this object.
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;
  using K7ConicProjection::ParamValue;
  void ParamValue(int index, double value) override;
  double Lat2Rho(double phi) const override;
  double Rho2Lat(double rho) const override;
  void LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                     double* z) const override;

  /// Changes to the ellipsoid with semi-major axis `a` and semi-minor axis `b`, in one unit, for the rest
  /// of this object's life. World units are then semi-major axes. (Snyder, equations 15-7 to 15-11; the
  /// inverse is the series 3-5, carried to the eighth power of the eccentricity.)
  void UseEllipEqs(double a, double b);

 protected:
  /// Compute Snyder's m (equation 14-15) and t (15-9a) of a latitude in radians.
  double m(double phi) const;
  double t(double phi) const;

 private:
  void ComputeCone();

  bool m_ellipsoidal = false;
  double m_e = 0;           // eccentricity
  double m_series[4] = {};  // of the inverse
};

/// The Albers projection keeps areas equal. (Snyder, equations 14-1 to 14-11.)
class K7_API K7AlbersProjection : public K7ConicProjection {
 public:
  /// Takes degrees.
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
