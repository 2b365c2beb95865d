// The first pages of a trip sheet: what trip it is, and its legs as a table.
#pragma once

#include "sheet/trip.h"
#include "sheet/trip_pages.h"

/// How many pages the table takes on that paper, and the height that it leaves free on the last one.
struct TableLayout {
  int pages = 1;
  double left = 0;
};
TableLayout LayOutTable(cairo_t* cairo, const Paper& paper, const Trip& trip);

/// Draws it onto the page that is there and as many more as it takes.
void DrawTable(TripPages& pages, const Trip& trip);
