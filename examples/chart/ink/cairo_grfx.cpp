#include "ink/cairo_grfx.h"

CairoGrfx::CairoGrfx(cairo_t* cairo, int width, int height)
    : m_cairo(cairo), m_width(width), m_height(height) {
  KeepMatrix();
}

void CairoGrfx::LookAt(const double eye[3], const double centre[3], const double up[3]) {
  double from[3] = {eye[0], eye[1], eye[2]};
  double to[3] = {centre[0], centre[1], centre[2]};
  double upwards[3] = {up[0], up[1], up[2]};
  m_stack.MatrixMode(K7_MATRIX_MODELVIEW);
  m_stack.Identity();
  m_stack.LookAt(from, to, upwards);
  KeepMatrix();
}

// The zoom scales what the viewing volume has put on the device, so it stands left of it.
void CairoGrfx::StartVolume() {
  m_stack.MatrixMode(K7_MATRIX_PROJECTION);
  m_stack.Identity();
  m_stack.Scale(m_zoom, m_zoom, 1);
}

void CairoGrfx::Ortho(double left, double right, double bottom, double top, double nearClip, double farClip) {
  StartVolume();
  m_stack.Ortho(left, right, bottom, top, nearClip, farClip);
  KeepMatrix();
}

void CairoGrfx::Frustum(double left, double right, double bottom, double top, double nearClip,
                        double farClip) {
  StartVolume();
  m_stack.Frustum(left, right, bottom, top, nearClip, farClip);
  KeepMatrix();
}

void CairoGrfx::KeepMatrix() {
  const double* const product = m_stack.GetModelviewProjectionMatrix();
  for (int column = 0; column < 4; ++column)
    for (int row = 0; row < 4; ++row) m_matrix.SetValue(row, column, product[4 * column + row]);
}

bool CairoGrfx::UnProject(double dx, double dy, double depth, double& x, double& y, double& z) {
  const int viewport[4] = {0, 0, m_width, m_height};
  return m_matrix.UnProject(dx, m_height - dy, depth, viewport, x, y, z) == 0;
}

DevicePoint CairoGrfx::Project(double x, double y, double z) const {
  const double* const m = m_matrix.ToArray();
  const double cx = m[0] * x + m[4] * y + m[8] * z + m[12];
  const double cy = m[1] * x + m[5] * y + m[9] * z + m[13];
  const double cw = m[3] * x + m[7] * y + m[11] * z + m[15];
  return {(cw + cx) * 0.5 * m_width, (cw - cy) * 0.5 * m_height, cw};
}
