// K7Grfx: the host's drawing surface, as far as projections need it.
#pragma once

#include <k7/export.h>

/// Abstract graphics context, implemented by the host: a camera, a viewing volume and the way back from the
/// screen. Projections set it up and pick through it; `K7MatrixStackK7` carries out all that a software
/// implementation needs.
///
/// Device coordinates are pixels, x to the right, y downwards from the top left corner of the window,
/// fractions allowed. Depth is 0 at the near clip distance and 1 at the far one, in between as a depth buffer
/// stores it: linear for a parallel volume, linear in 1/distance for a perspective one.
class K7_API K7Grfx {
 public:
  virtual ~K7Grfx();
  /// Magnification of the picture about the window's centre, relative to the viewing volume that was set; 1
  /// shows exactly that volume. Every other operation takes it into account.
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
  /// World point of a device point at a depth, which need not lie in [0, 1]. False, with the point untouched,
  /// when camera and volume cannot be inverted.
  virtual bool UnProject(double dx, double dy, double depth, double& x, double& y, double& z) = 0;

 protected:
  K7Grfx() = default;
  K7Grfx(const K7Grfx&) = default;
  K7Grfx& operator=(const K7Grfx&) = default;
};
