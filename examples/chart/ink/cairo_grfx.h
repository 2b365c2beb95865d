// The graphics context of k7chart: the library's camera, ink by Cairo.
#pragma once

#include <k7/projection/grfx.h>

#include <cairo.h>

/// One window on a Cairo surface. Device coordinates are the window's own pixels: whoever draws has moved
/// the surface's origin to the window's top left corner.
class CairoGrfx : public K7GrfxK7 {
 public:
  CairoGrfx(cairo_t* cairo, int width, int height) : K7GrfxK7(width, height), m_cairo(cairo) {}

  void MoveTo(double dx, double dy) override;
  void LineTo(double dx, double dy) override;
  void ClosePath() override;
  void Fill() override;
  void Stroke() override;
  void FillColor(double red, double green, double blue, double alpha) override;
  void LineColor(double red, double green, double blue, double alpha) override;
  void LineStyle(double width, const double* dashes, int count) override;
  void Triangles(const double* points, int count) override;
  void Image(const uint32_t* pixels, int width, int height, double left, double top, double right,
             double bottom) override;

 private:
  struct Rgba {
    double red = 0, green = 0, blue = 0, alpha = 1;
  };
  void Use(const Rgba& color);

  cairo_t* m_cairo;
  Rgba m_fill, m_line;
};
