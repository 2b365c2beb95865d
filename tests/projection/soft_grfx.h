// A graphics context without pixels: camera, volume and zoom on the library's own matrix stack.
#pragma once

#include <k7/geodesy/matrix_stack.h>
#include <k7/projection/grfx.h>

#include <algorithm>

class SoftGrfx : public K7Grfx {
 public:
  SoftGrfx(int width, int height, double zoom = 1.0) : m_viewport{0, 0, width, height}, m_zoom(zoom) {}

  double GetZoom() override { return m_zoom; }
  void LookAt(const double eye[3], const double centre[3], const double up[3]) override {
    double e[3], c[3], u[3];
    std::copy(eye, eye + 3, e);
    std::copy(centre, centre + 3, c);
    std::copy(up, up + 3, u);
    m_stack.MatrixMode(K7_MATRIX_MODELVIEW);
    m_stack.Identity();
    m_stack.LookAt(e, c, u);
  }
  void Ortho(double l, double r, double b, double t, double n, double f) override {
    StartVolume();
    m_stack.Ortho(l, r, b, t, n, f);
  }
  void Frustum(double l, double r, double b, double t, double n, double f) override {
    StartVolume();
    m_stack.Frustum(l, r, b, t, n, f);
  }
  bool UnProject(double dx, double dy, double depth, double& x, double& y, double& z) override {
    K7Matrix4x4 matrix;
    const double* const m = m_stack.GetModelviewProjectionMatrix();
    std::copy(m, m + 16, matrix.ToArray());
    return matrix.UnProject(dx, m_viewport[3] - dy, depth, m_viewport, x, y, z) == 0;
  }

  /// Where a world point is drawn; false behind a perspective camera.
  bool Project(double x, double y, double z, double& dx, double& dy) {
    K7Matrix4x4 model, projection;
    m_stack.GetModelMatrix(model);
    m_stack.GetProjectionMatrix(projection);
    double depth;
    if (model.Project(x, y, z, m_viewport, &projection, dx, dy, depth) != 0) return false;
    dy = m_viewport[3] - dy;
    return depth <= 1.0 || projection.GetValue(3, 3) != 0.0;
  }

 private:
  void StartVolume() {
    m_stack.MatrixMode(K7_MATRIX_PROJECTION);
    m_stack.Identity();
    m_stack.Scale(m_zoom, m_zoom, 1.0);
  }

  K7MatrixStackK7 m_stack;
  int m_viewport[4];
  double m_zoom;
};
