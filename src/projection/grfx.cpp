#include <k7/projection/grfx.h>

#include <cmath>

K7Grfx::~K7Grfx() = default;

void K7Grfx::MoveTo(double, double) {}
void K7Grfx::LineTo(double, double) {}
void K7Grfx::ClosePath() {}
void K7Grfx::Fill() {}
void K7Grfx::Stroke() {}
void K7Grfx::FillColor(double, double, double, double) {}
void K7Grfx::LineColor(double, double, double, double) {}
void K7Grfx::LineStyle(double, const double*, int) {}
void K7Grfx::Triangles(const double*, int) {}
void K7Grfx::Image(const uint32_t*, int, int, double, double, double, double) {}

K7GrfxK7::K7GrfxK7(int width, int height) : m_width(width), m_height(height) {
  m_camera.Identity();
  m_volume.Identity();
  Update();
}

double K7GrfxK7::GetZoom() { return m_zoom; }

void K7GrfxK7::SetZoom(double zoom) {
  m_zoom = zoom;
  Update();
}

void K7GrfxK7::LookAt(const double eye[3], const double centre[3], const double up[3]) {
  const K7Vector3 from(eye[0], eye[1], eye[2]);
  const K7Vector3 to(centre[0], centre[1], centre[2]);
  const K7Vector3 upwards(up[0], up[1], up[2]);
  m_camera.Identity();
  m_camera.LookAt(&from, &to, &upwards);
  Update();
}

void K7GrfxK7::Ortho(double left, double right, double bottom, double top, double nearClip, double farClip) {
  m_volume.Identity();
  m_volume.Ortho(left, right, bottom, top, nearClip, farClip);
  Update();
}

void K7GrfxK7::Frustum(double left, double right, double bottom, double top, double nearClip,
                       double farClip) {
  m_volume.Identity();
  m_volume.Frustum(left, right, bottom, top, nearClip, farClip);
  Update();
}

void K7GrfxK7::Update() {
  // The zoom scales what the volume has put on the device, so it stands left of it.
  K7Matrix4x4 all;
  all.Identity();
  all.Scale(m_zoom, m_zoom, 1);
  all.Multiply(m_volume);
  all.Multiply(m_camera);
  m_inverse = all;
  m_invertible = m_width > 0 && m_height > 0 && m_inverse.Invert() == 0;

  // From the cube of -1 to 1 to pixels, y downwards: x' = (w + x) / 2 * width, y' = (w - y) / 2 * height.
  for (int column = 0; column < 4; ++column) {
    const double w = all.GetValue(3, column);
    m_device[column] = (w + all.GetValue(0, column)) * 0.5 * m_width;
    m_device[4 + column] = (w - all.GetValue(1, column)) * 0.5 * m_height;
    m_device[8 + column] = w;
  }
}

bool K7GrfxK7::UnProject(double dx, double dy, double depth, double& x, double& y, double& z) {
  if (!m_invertible) return false;
  const double cube[4] = {2 * dx / m_width - 1, 1 - 2 * dy / m_height, 2 * depth - 1, 1};
  double point[4];
  m_inverse.VectorMult(cube, point);
  if (point[3] == 0 || !std::isfinite(point[0] / point[3])) return false;
  x = point[0] / point[3];
  y = point[1] / point[3];
  z = point[2] / point[3];
  return true;
}
