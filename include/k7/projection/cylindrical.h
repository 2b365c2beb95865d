// The cylindrical projections: Mercator, Miller, rectangular.
#pragma once

#include <k7/projection/projection.h>

/// World units are metres on the sphere of radius 6378137. The x is the longitude in radians times that
/// radius, so that a longitude beyond 180 continues the map. At unit zoom the window is two radii wide.
class K7_API K7CylindricalProjection : public K7Projection {
 public:
  /// \name Camera
  /// @{
  bool SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const override;
  bool CenterOn(K7Grfx* g, double lat, double lon) const override;
  /// @}

  bool IsCylindrical() const override;

 protected:
  explicit K7CylindricalProjection(K7ProjType type) : K7Projection(type, -1.0, 1.0) {}
};

/// The Mercator projection is conformal and draws rhumb lines straight. (J. P. Snyder, Map Projections: A
/// Working Manual, USGS Professional Paper 1395, equations 7-1, 7-2 and 7-4.)
class K7_API K7MercatorProjection : public K7CylindricalProjection {
 public:
  K7MercatorProjection() : K7CylindricalProjection(K7_PROJ_MERCATOR) {}
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;

  /// \name Positions
  /// @{
  /// Answers true for -90 < lat < 90. Beyond 89.99 degrees it writes the point of 89.99, so that poles draw
  /// at a finite edge.
  bool LatLon2World(double lat, double lon, double& x, double& y, double& z) const override;
  /// Answers true up to 89 degrees north and south. That is narrower than the forward direction, which
  /// draws on to 89.99.
  bool World2LatLon(double x, double y, double z, double& lat, double& lon) const override;
  /// @}

  /// Answers cos(lat).
  double ScaleError(double lat, double lon) const override;
  void LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                     double* z) const override;
};

/// The Miller projection is Mercator of 0.8 of the latitude, divided by 0.8: the poles are on the map.
/// (Snyder, chapter 11.)
class K7_API K7MillerProjection : public K7CylindricalProjection {
 public:
  K7MillerProjection() : K7CylindricalProjection(K7_PROJ_MILLER) {}
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;

  /// \name Positions
  /// @{
  /// Answers true for -90 <= lat <= 90.
  bool LatLon2World(double lat, double lon, double& x, double& y, double& z) const override;
  /// Answers true up to 89 degrees north and south.
  bool World2LatLon(double x, double y, double z, double& lat, double& lon) const override;
  void LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                     double* z) const override;
  /// @}
};

/// The rectangular projection takes latitude and longitude as plane coordinates. The standard parallel
/// stretches the latitudes by 1 / cos(parallel), which makes both scales agree there, and leaves longitudes
/// alone. Charts and stored extents depend on that. (Snyder, chapter 12, both coordinates divided by
/// cos(parallel).)
class K7_API K7RectangularProjection : public K7CylindricalProjection {
 public:
  /// Takes degrees.
  explicit K7RectangularProjection(double standardParallel = 0.0);
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;

  /// \name Parameters
  /// There is one, "Standard Parallel", in degrees. Every index means it.
  /// @{
  int ParamCount() const override;
  const char* ParamName(int index) const override;
  void ParamValue(int index, double value) override;
  double ParamValue(int index) const override;
  /// @}

  /// \name Positions
  /// @{
  /// Answers true always.
  bool LatLon2World(double lat, double lon, double& x, double& y, double& z) const override;
  /// Answers true always, also above and below the poles.
  bool World2LatLon(double x, double y, double z, double& lat, double& lon) const override;
  void LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                     double* z) const override;
  /// @}

 private:
  double m_standardParallel;
  double m_stretch;
};
