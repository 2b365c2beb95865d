#include "sheet/trip_pages.h"

#include "ink/pen.h"
#include "ink/text.h"

#include <utility>

TripPages::TripPages(cairo_t* cairo, const Paper& paper, const Theme& theme, std::string title, int count)
    : m_cairo(cairo), m_paper(paper), m_theme(theme), m_title(std::move(title)), m_count(count) {
  Begin();
}

PixelBox TripPages::Room() const { return {MARGIN, MARGIN, Width() - MARGIN, Height() - MARGIN - FOOT}; }

void TripPages::Next() {
  cairo_show_page(m_cairo);
  ++m_page;
  Begin();
}

void TripPages::Begin() {
  SetColor(m_cairo, m_theme[ThemeItem::Paper].fill);
  cairo_paint(m_cairo);
  const double y = Height() - MARGIN;
  WriteText(m_cairo, m_theme, m_title, MARGIN, y, {.size = 10});
  WriteText(m_cairo, m_theme, "page " + std::to_string(m_page) + " of " + std::to_string(m_count),
            Width() - MARGIN, y, {.size = 10, .align = Align::Right});
}
