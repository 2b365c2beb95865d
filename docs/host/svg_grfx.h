// A graphics context that writes what it is told as SVG: the camera is K7GrfxK7's, the rest is text.
#pragma once

#include <k7/core.h>

#include <cstdio>
#include <string>

class SvgGrfx : public K7GrfxK7 {
 public:
  SvgGrfx(int width, int height) : K7GrfxK7(width, height) {}

  void MoveTo(double dx, double dy) override { Add('M', dx, dy); }
  void LineTo(double dx, double dy) override { Add('L', dx, dy); }
  void ClosePath() override { m_path += 'Z'; }
  void Fill() override { Use("fill='" + m_fill + "' fill-rule='evenodd'"); }
  void Stroke() override { Use("fill='none' stroke-linejoin='round' stroke='" + m_line + "' " + m_style); }
  void FillColor(double red, double green, double blue, double alpha) override {
    m_fill = Color(red, green, blue, alpha);
  }
  void LineColor(double red, double green, double blue, double alpha) override {
    m_line = Color(red, green, blue, alpha);
  }
  void LineStyle(double width, const double* dashes, int count) override {
    m_style = "stroke-width='" + Number(width) + "'";
    if (count > 0) m_style += " stroke-dasharray='";
    for (int i = 0; i < count; ++i) m_style += Number(dashes[i]) + (i + 1 < count ? "," : "'");
  }

  /// Adds a word whose left edge stands at a place.
  void Text(double dx, double dy, const char* text) {
    m_body += "<text x='" + Number(dx) + "' y='" + Number(dy) + "'>" + text + "</text>\n";
  }

  bool Write(const char* path) const {
    std::FILE* const file = std::fopen(path, "w");
    if (!file) return false;
    const bool written =
        std::fprintf(file, "<svg xmlns='http://www.w3.org/2000/svg' width='%d' height='%d'>\n%s</svg>\n",
                     Width(), Height(), m_body.c_str()) > 0;
    return std::fclose(file) == 0 && written;
  }

 private:
  static std::string Number(double value) { return static_cast<const char*>(K7FmtString("%.2f", value)); }
  static std::string Color(double red, double green, double blue, double alpha) {
    return static_cast<const char*>(
        K7FmtString("rgba(%.0f,%.0f,%.0f,%.3f)", 255 * red, 255 * green, 255 * blue, alpha));
  }
  void Add(char what, double dx, double dy) { m_path += what + Number(dx) + ' ' + Number(dy); }
  void Use(const std::string& how) {
    m_body += "<path " + how + " d='" + m_path + "'/>\n";
    m_path.clear();
  }

  std::string m_body, m_path;
  std::string m_fill = "black", m_line = "black", m_style;
};
