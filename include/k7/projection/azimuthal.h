// The azimuthal projections: orthographic, stereographic, gnomonic, general perspective.
#pragma once

#include <k7/projection/projection.h>

/// World points are unit vectors from the earth's centre: x points towards latitude 0, longitude 0, and z
/// towards the north pole. The context's camera projects them. The four kinds differ in where the camera
/// stands on the line through the centre point, in the viewing volume, and in the depth at which
/// `Device2World` picks.
class K7_API K7AzimuthalProjection : public K7Projection {
 public:
  /// Answers true always.
  bool LatLon2World(double lat, double lon, double& x, double& y, double& z) const override;
  /// Takes any point, however far out. Answers false for the earth's centre alone.
  bool World2LatLon(double x, double y, double z, double& lat, double& lon) const override;
  /// Puts the camera at the eye distance times the centre's unit vector. It looks at the centre point,
  /// north up.
  bool CenterOn(K7Grfx* g, double lat, double lon) const override;
  bool IsAzimuthal() const override;
  void LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                     double* z) const override;

 protected:
  K7AzimuthalProjection(K7ProjType type, double eyeDistance, double nearClip, double farClip)
      : K7Projection(type, nearClip, farClip), m_eyeDistance(eyeDistance) {}
  /// Sets the viewing volume of a camera that sees the globe from within. Left and right change places, so
  /// that the inside view is not mirrored.
  bool SetupInsideView(K7Grfx* g, int width, int height) const;

  double m_eyeDistance;  // of the camera from the earth's centre, earth radii along the centre's unit vector
};

/// Shows the globe from infinitely far. At unit zoom the window is one globe wide.
class K7_API K7OrthographicProjection : public K7AzimuthalProjection {
 public:
  K7OrthographicProjection() : K7AzimuthalProjection(K7_PROJ_ORTHOGRAPHIC, 2.0, 0.0, 2.0) {}
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;
  /// Answers false outside the globe's disc.
  bool Device2World(double dx, double dy, K7Grfx* g, int width, int height, double& x, double& y,
                    double& z) const override;
  bool SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const override;
};

/// Shows the globe from the antipode of the centre. It is conformal.
class K7_API K7StereographicProjection : public K7AzimuthalProjection {
 public:
  K7StereographicProjection() : K7AzimuthalProjection(K7_PROJ_STEREOGRAPHIC, -1.0, 1.0, 2.0) {}
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;
  bool Device2World(double dx, double dy, K7Grfx* g, int width, int height, double& x, double& y,
                    double& z) const override;
  bool SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const override;
};

/// Shows the globe from its own centre: great circles are straight. Less than half the globe fits.
class K7_API K7GnomonicProjection : public K7AzimuthalProjection {
 public:
  K7GnomonicProjection() : K7AzimuthalProjection(K7_PROJ_GNOMONIC, 0.0, 0.25, 1.1) {}
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;
  /// Picks a point on the right ray, but away from the centre somewhat within the globe. Stored picks
  /// depend on it.
  bool Device2World(double dx, double dy, K7Grfx* g, int width, int height, double& x, double& y,
                    double& z) const override;
  bool SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const override;
};

/// Shows the globe as an eye at some altitude sees it, with heading, bank, pitch and field of view.
class K7_API K7PerspectiveProjection : public K7AzimuthalProjection {
 public:
  /// Takes the eye's distance from the earth's centre in earth radii, which must be above 1 (not checked).
  /// Heading and bank are 0, the pitch is -90 (straight down), the field of view is 45 degrees.
  explicit K7PerspectiveProjection(double magnification);
  K7Projection* Clone(int* error) const override;
  const char* Name() const override;

  /// \name Parameters
  /// There are five: 0 "Altitude (ft)", 1 "Heading", 2 "Bank", 3 "Pitch", 4 "Field of View Y (degs)".
  /// Angles are degrees. Setting the altitude recomputes the clip distances; setting the pitch leaves them
  /// until `SetClipPlanes`. Any other index has no name, takes nothing and gives 0.
  /// @{
  int ParamCount() const override;
  const char* ParamName(int index) const override;
  void ParamValue(int index, double value) override;
  double ParamValue(int index) const override;
  /// @}

  /// Picks exactly at the middle of a camera that looks straight down. Elsewhere the depth, and the horizon
  /// beyond which the answer is false, fit one aspect and field of view only. Stored picks depend on it.
  bool Device2World(double dx, double dy, K7Grfx* g, int width, int height, double& x, double& y,
                    double& z) const override;
  /// Sets a volume that reaches as far up and down from its axis as the tangent of the whole field of view,
  /// not of its half. Stored views depend on it.
  bool SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const override;
  /// Straight down (a pitch of exactly -90) north is up, and heading and bank have no effect. Any other
  /// pitch, above -90 and below 80, is the angle of the line of sight above the horizontal: the heading
  /// points up the screen, and a positive bank lowers the right wing, which turns the horizon
  /// counter-clockwise.
  bool CenterOn(K7Grfx* g, double lat, double lon) const override;
  /// Answers (3 / (magnification - 1)) squared.
  double ScaleError(double lat, double lon) const override;

  /// \name The eye
  /// @{
  /// Computes the clip distances from magnification and pitch: the ground below the eye and the horizon
  /// ahead. At pitch 0 the near distance is all but 0 and depths lose their meaning: a level view keeps
  /// those of a steeper pitch.
  void SetClipPlanes();
  /// Turn an altitude, in feet above the sphere of radius 6378137 m, into a magnification and back.
  static double Alt2Mag(double feet);
  static double Mag2Alt(double magnification);
  /// @}

 private:
  double m_heading = 0.0;
  double m_bank = 0.0;
  double m_pitch = -90.0;
  double m_fieldOfView = 45.0;
};
