#include "app/trip_options.h"

#include <k7/foundation/string.h>

namespace {

constexpr double LEAST_KNOTS = 10, MOST_KNOTS = 5000;
constexpr double LARGEST = 5e4, SMALLEST = 5e7;  // scales

std::string SetOneChart(const char*, TripOptions& trip) {
  trip.oneChart = true;
  return {};
}

std::string SetSpeed(const char* text, TripOptions& trip) {
  trip.given = "--speed";
  double knots = 0;
  if (!ReadNumber(text, knots) || !(knots >= LEAST_KNOTS && knots <= MOST_KNOTS))
    return "a ground speed is 10 to 5000 knots, not " + Quoted(text);
  trip.knots = knots;
  return {};
}

std::string SetPaper(const char* text, TripOptions& trip) {
  trip.given = "--paper";
  for (const Paper& paper : PAPERS) {
    if (K7String::IComp(text, paper.name) != 0) continue;
    trip.paper = &paper;
    return {};
  }
  return "the paper is a4 or letter, not " + Quoted(text);
}

std::string SetScale(const char* text, TripOptions& trip) {
  trip.given = "--strip-scale";
  const std::string scale = text;
  double denominator = 0;
  if (!ReadNumber(scale.starts_with("1:") ? text + 2 : text, denominator) ||
      !(denominator >= LARGEST && denominator <= SMALLEST))
    return "a scale is 1:50000 to 1:50000000, as 1:500000, not " + Quoted(text);
  trip.scale = denominator;
  return {};
}

std::string SetTrackUp(const char*, TripOptions& trip) {
  trip.given = "--track-up";
  trip.trackUp = true;
  return {};
}

constexpr OptionRow<TripOptions> OPTIONS[] = {
    {"--one-chart", nullptr,
     "draws one chart of the whole way also as a PDF, which otherwise is a trip sheet to print: the legs as "
     "a "
     "table, the ground under them, and strips of chart along the way, lambert or stereographic, on pages of "
     "the size of '--paper'",
     SetOneChart},
    {"--speed", "KNOTS", "the ground speed that a trip sheet's times are for, 10 to 5000 (default 120)",
     SetSpeed},
    {"--paper", "PAPER", "what a trip sheet is printed on: a4 (default) or letter, upright", SetPaper},
    {"--strip-scale", "SCALE",
     "of a trip sheet's strips, 1:50000 to 1:50000000 (default 1:500000, or smaller where that takes "
     "more than "
     "12)",
     SetScale},
    {"--track-up", nullptr,
     "turns the strips of a trip sheet so that the way runs up the page; else north is up", SetTrackUp},
};

}  // namespace

void AddTripOptions(OptionTable& table, TripOptions& trip) { table.Add(OPTIONS, trip); }
