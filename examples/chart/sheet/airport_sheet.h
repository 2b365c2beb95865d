// An airport diagram on a sheet: what the airport is above the chart, its scales and symbols below.
#pragma once

#include "sheet/chart_sheet.h"

#include <optional>

/// What a diagram says in words; texts are UTF-8.
struct AirportFacts {
  std::string ident, name;
  K7LatLon place;
  std::optional<int> elev;               ///< feet
  std::optional<double> variation;       ///< degrees, east positive
  std::vector<std::string> frequencies;  ///< "Tower 119.900"
  std::string source;                    ///< what it is drawn from
};

/// The chart's place on a sheet of so many pixels.
ChartBox AirportBox(int width, int height);
/// Has a request show the whole of an extent, with room for the lettering about it; no less than an airfield.
void FitRequest(const K7ChartRect& extent, const ChartBox& box, ChartRequest& request);
/// Empty, or what went wrong.
std::string DrawAirportSheet(cairo_t* cairo, const ChartBox& box, const AirportFacts& facts,
                             const ChartRequest& request, const Theme& theme, Chart& chart);
