// The pages of a trip sheet: their size, the room on them and the line at their foot.
#pragma once

#include "ink/pixel_box.h"
#include "ink/theme.h"

#include <cairo.h>

#include <string>

/// Printer's paper, upright, in pixels of 1/96 inch.
struct Paper {
  const char* name;
  int width, height;
};
inline constexpr Paper PAPERS[] = {{"a4", 794, 1123}, {"letter", 816, 1056}};

/// Goes from page to page of a surface that has several; the first is there from the start.
class TripPages {
 public:
  static constexpr double MARGIN = 45, FOOT = 30;

  /// `title` stands at the foot of every page with its number.
  TripPages(cairo_t* cairo, const Paper& paper, const Theme& theme, std::string title, int count);

  cairo_t* Cairo() const { return m_cairo; }
  const Theme& Look() const { return m_theme; }
  /// What is written on; lines of figures reach across it.
  PixelBox Room() const;
  const Paper& Sheet() const { return m_paper; }
  double Width() const { return m_paper.width; }
  double Height() const { return m_paper.height; }
  void Next();

 private:
  void Begin();

  cairo_t* m_cairo;
  const Paper& m_paper;
  const Theme& m_theme;
  std::string m_title;
  int m_page = 1, m_count;
};
