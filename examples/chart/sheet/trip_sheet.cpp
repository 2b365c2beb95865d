#include "sheet/trip_sheet.h"

#include "sheet/profile_panel.h"
#include "sheet/trip_table.h"

#include <algorithm>

namespace {

constexpr double LEAST_PROFILE = 300, MOST_PROFILE = 460;
constexpr double TEXT = 10.5;

// From `room` pixels above the foot of the page on.
void DrawGround(TripPages& pages, const Trip& trip, double room) {
  PixelBox box = pages.Room();
  box.top = box.bottom - room;
  box.bottom = box.top + std::min(room, MOST_PROFILE);
  DrawProfile(pages.Cairo(), box, TEXT, trip.profile, pages.Look());
}

}  // namespace

std::string DrawTripSheet(cairo_t* cairo, const Paper& paper, const Theme& theme, const Trip& trip,
                          const StripPages& strips, Chart& chart) {
  const TableLayout table = LayOutTable(cairo, paper, trip);
  const bool hasGround = !trip.profile.points.empty(), hasRoom = table.left >= LEAST_PROFILE;
  const int count = table.pages + (hasGround && !hasRoom ? 1 : 0) + static_cast<int>(strips.strips.size());
  TripPages pages(cairo, paper, theme, EndsText(trip.route), count);
  DrawTable(pages, trip);
  if (hasGround && !hasRoom) pages.Next();
  if (hasGround) DrawGround(pages, trip, hasRoom ? table.left : pages.Room().bottom - pages.Room().top);
  for (size_t i = 0; i < strips.strips.size(); ++i) {
    pages.Next();
    if (std::string problem = DrawStrip(pages, strips, i, chart); !problem.empty()) return problem;
  }
  return {};
}
