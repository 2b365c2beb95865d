// K7Grfx, the host's drawing surface, and K7GrfxK7, the library's own camera.
#pragma once

#include <k7/export.h>
#include <k7/geodesy/matrix.h>

#include <cstdint>

/// A K7Grfx is the host's drawing surface: a camera, a viewing volume and the way back from the screen, and
/// behind them what is drawn with. The host implements it. Projections need the first five operations only;
/// a host that draws nothing leaves the others, which then do nothing. Hosts without a camera of their own
/// derive from `K7GrfxK7`.
///
/// Device coordinates are pixels, x to the right, y downwards from the top left corner of the window,
/// fractions allowed. Depth is 0 at the near clip distance and 1 at the far one, in between as a depth
/// buffer stores it: linear for a parallel volume, linear in 1/distance for a perspective one.
class K7_API K7Grfx {
 public:
  virtual ~K7Grfx();

  /// \name Camera
  /// @{
  /// Answers the magnification of the picture about the window's centre, relative to the viewing volume
  /// that was set; 1 shows exactly that volume. Every other operation takes it into account.
  virtual double GetZoom() = 0;
  /// Replaces the camera: it stands at `eye`, looks at `centre`, and `up`, of any length and not along the
  /// line of sight, points to the top of the window.
  virtual void LookAt(const double eye[3], const double centre[3], const double up[3]) = 0;
  /// Replaces the viewing volume by a parallel one: the edges of the window and the clip distances in front
  /// of the camera (negative: behind it), in world units.
  virtual void Ortho(double left, double right, double bottom, double top, double nearClip,
                     double farClip) = 0;
  /// Replaces the viewing volume by a perspective one: the edges of the window as they cut the near plane,
  /// and the clip distances. Left above right is allowed and mirrors the picture.
  virtual void Frustum(double left, double right, double bottom, double top, double nearClip,
                       double farClip) = 0;
  /// Gives the world point of a device point at a depth, which need not lie in [0, 1]. Answers false, with
  /// the point untouched, when camera and volume cannot be inverted.
  virtual bool UnProject(double dx, double dy, double depth, double& x, double& y, double& z) = 0;
  /// @}

  /// \name Drawing
  /// A path is made of lines between device points. `Fill` and `Stroke` use it up.
  /// @{
  /// Begins a new piece of the path.
  virtual void MoveTo(double dx, double dy);
  /// Goes on in a straight line.
  virtual void LineTo(double dx, double dy);
  /// Goes back to where the piece began and ends it.
  virtual void ClosePath();
  /// Fills what the path encloses an odd number of times.
  virtual void Fill();
  /// Draws along the path, with round joins, and round ends where the line has no dashes.
  virtual void Stroke();
  /// Sets the colour of `Fill` and `Triangles`: components from 0 to 1, straight alpha, 1 opaque.
  virtual void FillColor(double red, double green, double blue, double alpha);
  /// Sets the colour of `Stroke`.
  virtual void LineColor(double red, double green, double blue, double alpha);
  /// Sets the width in pixels, above 0, and the dashes: `count` lengths in pixels, in turn drawn and left
  /// out; null with 0 for a line without gaps.
  virtual void LineStyle(double width, const double* dashes, int count);
  /// Fills triangles: six numbers each, x and y of three device points.
  virtual void Triangles(const double* points, int count);
  /// Lays an image of width x height pixels over the device rectangle. `pixels`: rows from the top, each
  /// pixel 0xAARRGGBB with straight alpha; only read during the call.
  virtual void Image(const uint32_t* pixels, int width, int height, double left, double top, double right,
                     double bottom);
  /// @}

 protected:
  K7Grfx() = default;
  K7Grfx(const K7Grfx&) = default;
  K7Grfx& operator=(const K7Grfx&) = default;
};

/// A K7GrfxK7 is the camera half of a graphics context in memory: the five operations that projections
/// need, and the way from the world to the device. A host's context derives from it and adds what it draws
/// with. A value without locks: several threads may call const operations and `UnProject`.
class K7_API K7GrfxK7 : public K7Grfx {
 public:
  /// Makes a window of `width` by `height` pixels at zoom 1. Until the first volume it shows the cube of -1
  /// to 1.
  K7GrfxK7(int width, int height);

  double GetZoom() override;
  void LookAt(const double eye[3], const double centre[3], const double up[3]) override;
  void Ortho(double left, double right, double bottom, double top, double nearClip, double farClip) override;
  void Frustum(double left, double right, double bottom, double top, double nearClip,
               double farClip) override;
  bool UnProject(double dx, double dy, double depth, double& x, double& y, double& z) override;

  void SetZoom(double zoom);
  int Width() const { return m_width; }
  int Height() const { return m_height; }
  /// Gives the device point of a world point in homogeneous coordinates: it falls on (hx / hw, hy / hw),
  /// and behind the eye when hw <= 0. For parallel volumes hw is 1.
  void Project(double x, double y, double z, double& hx, double& hy, double& hw) const {
    hx = m_device[0] * x + m_device[1] * y + m_device[2] * z + m_device[3];
    hy = m_device[4] * x + m_device[5] * y + m_device[6] * z + m_device[7];
    hw = m_device[8] * x + m_device[9] * y + m_device[10] * z + m_device[11];
  }

 private:
  void Update();

  int m_width;
  int m_height;
  double m_zoom = 1;
  K7Matrix4x4 m_camera;
  K7Matrix4x4 m_volume;
  K7Matrix4x4 m_inverse;  // from the volume's cube to the world
  bool m_invertible = false;
  double m_device[12];  // rows that give hx, hy and hw
};
