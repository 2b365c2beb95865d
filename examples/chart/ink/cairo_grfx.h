// The graphics context of k7chart: cameras and viewing volumes on the library's matrix stack, ink by Cairo.
#pragma once

#include <k7/geodesy/matrix_stack.h>
#include <k7/projection/grfx.h>

#include <cairo.h>

/// A point in homogeneous pixels: (x / w, y / w) on the device, behind the eye when w <= 0.
struct DevicePoint {
  double x, y, w;
};

/// One window on a Cairo surface. Device coordinates are the window's own pixels, y downwards from its top
/// left corner. The zoom scales the picture about the window's centre.
class CairoGrfx : public K7Grfx {
 public:
  CairoGrfx(cairo_t* cairo, int width, int height);

  double GetZoom() override { return m_zoom; }
  void LookAt(const double eye[3], const double centre[3], const double up[3]) override;
  void Ortho(double left, double right, double bottom, double top, double nearClip, double farClip) override;
  void Frustum(double left, double right, double bottom, double top, double nearClip,
               double farClip) override;
  bool UnProject(double dx, double dy, double depth, double& x, double& y, double& z) override;

  /// Takes effect with the next viewing volume.
  void SetZoom(double zoom) { m_zoom = zoom; }
  DevicePoint Project(double x, double y, double z) const;

  cairo_t* Cairo() const { return m_cairo; }
  int Width() const { return m_width; }
  int Height() const { return m_height; }

 private:
  void StartVolume();
  void KeepMatrix();

  cairo_t* m_cairo;
  int m_width;
  int m_height;
  double m_zoom = 1;
  K7MatrixStackK7 m_stack;
  K7Matrix4x4 m_matrix;  // projection x model-view
};
