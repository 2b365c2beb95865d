// K7Projection: the interface of the map projections and their factory.
#pragma once

#include <k7/export.h>

class K7Grfx;

/// Names the kinds of projection. Hosts store the numbers in settings and files: never renumber.
enum K7ProjType : int {
  K7_PROJ_LAMBERT = 0,
  K7_PROJ_MERCATOR = 1,
  K7_PROJ_ORTHOGRAPHIC = 2,
  K7_PROJ_RECTANGULAR = 3,
  K7_PROJ_MILLER = 4,
  K7_PROJ_ALBERS = 5,
  K7_PROJ_PERSPECTIVE = 6,
  K7_PROJ_STEREOGRAPHIC = 7,
  K7_PROJ_GNOMONIC = 8,
};

/// The radius, in metres, of the sphere on which projections lay positions out.
inline constexpr double K7_EARTH_RADIUS_M = 6378137.0;

/// Turns positions into "world" coordinates and back, and sets up a graphics context so that the world lands
/// on the device. The cylindrical and conic families keep the world flat (z = 0; metres and earth radii
/// respectively); the azimuthal family works on a unit globe and leaves the projecting to the context's
/// camera.
///
/// Latitudes and longitudes are degrees, north and east positive. Typical use:
///     K7Projection* projection = K7Projection::Create(K7_PROJ_LAMBERT, &err);  // the caller deletes it
///     projection->SetupMatrix(grfx, width / 2, height / 2, width, height);
///     projection->CenterOn(grfx, 47.5, -122.3);
///     projection->LatLon2World(lat, lon, x, y, z);  // for everything that is drawn
///     projection->Device2LatLon(mouseX, mouseY, grfx, width, height, lat, lon);
///
/// A value without locks: several threads may call const operations, each with a context of its own.
class K7_API K7Projection {
 public:
  virtual ~K7Projection();
  /// Copy kind and clip distances, of which a leaf's own copy is a part. `Clone` copies a whole projection.
  K7Projection(const K7Projection&) = default;
  K7Projection& operator=(const K7Projection&) = default;

  /// Makes a new copy, which the caller deletes. Answers null, with *error (optional) K7_ERR_MEMORY, when
  /// memory runs out.
  virtual K7Projection* Clone(int* error) const = 0;
  /// Answers the kind's name in English, a static text.
  virtual const char* Name() const = 0;

  /// \name Parameters
  /// Numbers with a name, which a user may set. Here there are none: a write does nothing, a read is 0.
  /// @{
  virtual int ParamCount() const;
  /// Answers a static text, or null for an index without a parameter.
  virtual const char* ParamName(int index) const;
  virtual void ParamValue(int index, double value);
  virtual double ParamValue(int index) const;
  /// @}

  /// \name Positions
  /// @{
  /// Answers the world point under a device point: for the flat families what lies there at depth 0, for
  /// the azimuthal ones the visible surface of the globe, within the limits that those state. False off the
  /// globe and for a null context. Hosts that pick positions use `Device2LatLon`.
  virtual bool Device2World(double dx, double dy, K7Grfx* g, int width, int height, double& x, double& y,
                            double& z) const;
  /// Turns a position into its world point. False for a position outside the projection's domain; the
  /// coordinates are written all the same.
  virtual bool LatLon2World(double lat, double lon, double& x, double& y, double& z) const = 0;
  /// Turns a world point into its position. False for a result outside the inverse's domain, which may be
  /// narrower than the forward one.
  virtual bool World2LatLon(double x, double y, double z, double& lat, double& lon) const = 0;
  /// @}

  /// \name Camera
  /// @{
  /// Gives `g` the viewing volume for a window of `width` by `height` pixels. (x, y) is where the camera's
  /// axis, and so the position of `CenterOn`, meets the window, in pixels from its lower left corner: half
  /// the size for the middle. The conic, stereographic, gnomonic and general perspective projections have it
  /// in the middle always. False, with `g` left alone, for a null `g` and where the numbers give no finite
  /// volume (a width or height of 0).
  virtual bool SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const = 0;
  /// Places the camera of `g` over a position. False, with `g` left alone, for a null `g` and for a position
  /// outside the projection's domain.
  virtual bool CenterOn(K7Grfx* g, double lat, double lon) const = 0;
  /// @}

  /// \name Families
  /// Each kind of the library is of exactly one.
  /// @{
  virtual bool IsCylindrical() const;
  virtual bool IsConic() const;
  virtual bool IsAzimuthal() const;
  /// @}
  /// Answers the local scale as a factor, by which hosts correct a scale bar; 1 where a kind has no rule of
  /// its own.
  virtual double ScaleError(double lat, double lon) const;

  /// Does `LatLon2World` for `count` positions at once, several times as fast. All arrays hold `count`
  /// numbers, degrees in and world units out, and no output overlaps another array; a `count` below 1 does
  /// nothing. A null `z` is left out: the flat families lose nothing by it.
  ///
  /// Each coordinate is within 1e-12 of the single call's, relative to: 1 for the azimuthal family; for the
  /// flat ones, the largest of the coordinate itself, one earth radius in world units and, for cones, the
  /// point's distance from the apex. What the single call writes outside the domain, for infinities and for
  /// what is not a number is written here too; there is no verdict. A position gives the same bits wherever
  /// it stands in the arrays, but not those of the single call, nor the same in every build of the library.
  /// A class that overrides `LatLon2World` overrides this as well; K7Projection's own is the plain loop.
  virtual void LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                             double* z) const;

  /// Answers the position under a device point, exact for every projection and camera: the ray through the
  /// pixel, taken from `g` alone, is met with the globe or with the flat world. `width` and `height` are
  /// those of the window, in pixels. The longitude lies within [-180, 180].
  ///
  /// False, with `lat` and `lon` untouched, for a pixel off the map (beyond the limb or horizon, in a
  /// cone's gap, beyond the poles, more than 180 degrees of longitude from the centre of a cylindrical
  /// map), for a null `g`, a window without area and a context that cannot be inverted.
  bool Device2LatLon(double dx, double dy, K7Grfx* g, int width, int height, double& lat, double& lon) const;

  K7ProjType Type() const { return m_type; }
  /// Answer the clip distances in front of the camera, in world units.
  double NearClip() const { return m_near; }
  double FarClip() const { return m_far; }

  /// Makes an object of a kind with its defaults, which the caller deletes. The conics have standard
  /// parallels 45 and 30, meridian -90 and origin 0; the general perspective has magnification 4; the
  /// rectangular has standard parallel 0. Answers null for any other number, with *error untouched, and
  /// without memory, with *error (optional) K7_ERR_MEMORY.
  static K7Projection* Create(K7ProjType type, int* error);

 protected:
  K7Projection(K7ProjType type, double nearClip, double farClip)
      : m_type(type), m_near(nearClip), m_far(farClip) {}

 private:
  K7ProjType m_type;

 protected:
  double m_near;
  double m_far;
};
