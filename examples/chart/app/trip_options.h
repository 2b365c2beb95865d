// What a trip sheet is to be like.
#pragma once

#include "app_common/option_table.h"
#include "sheet/trip_pages.h"

struct TripOptions {
  bool oneChart = false;  // also as a PDF
  bool trackUp = false;
  double knots = 120;
  double scale = 0;  // denominator of the strips; 0: the first of some usual ones that takes few enough
  const Paper* paper = &PAPERS[0];
  const char* given = nullptr;  // an option that only trip sheets have
};

/// --one-chart, --speed, --paper, --strip-scale, --track-up
void AddTripOptions(OptionTable& table, TripOptions& trip);
