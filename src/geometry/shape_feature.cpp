#include "geometry/shape_feature.h"

#include <iterator>

namespace k7shape {
namespace {

constexpr FeatureRow AIRPORT{"IDARPT", "Airport ICAO"};
constexpr FeatureRow STATUS{"STATUS", "Status"};
constexpr FeatureRow AIRCRAFT{"RESTACFT", "Aircraft restrictions", Form::List};
constexpr FeatureRow LENGTH{"LENGTH", "Length", Form::Metres};

constexpr FeatureRow APRON[] = {
    AIRPORT, {"IDAPRON", "Apron identification"}, {"APRONTYP", "Apron type"}, STATUS, AIRCRAFT};
constexpr FeatureRow DEICING_AREA[] = {AIRPORT, {"IDENT", "Deicing Area identification"}, STATUS, AIRCRAFT};
constexpr FeatureRow FREQUENCY_AREA[] = {
    AIRPORT, {"FRQ", "Primary Frequency"}, {"STATION", "Station"}, {"INFO", "Information"}};
constexpr FeatureRow HOTSPOT[] = {AIRPORT, {"IDHOT", "Hotspot identification"}, {"NOTES", "Notes"}};
constexpr FeatureRow PARKING_STAND[] = {
    AIRPORT,
    {"IDSTD", "Parking Stand identification", Form::List},
    STATUS,
    {"TERMREF", "Terminal Building Associated with Parking Stand", Form::List},
    AIRCRAFT,
    {"JETWAY", "Jetway"},
    {"TOWING", "Towing"},
    {"DOCKING", "Docking"},
    {"GNDPOWER", "Availability of Ground Power"},
    {"FUEL", "Fuel", Form::List},
};
constexpr FeatureRow DISPLACED_AREA[] = {
    AIRPORT, {"IDTHR", "Runway Displaced Area Threshold"}, STATUS, AIRCRAFT, LENGTH};
constexpr FeatureRow RUNWAY[] = {AIRPORT, {"IDRWY", "Runway Identification"}, STATUS, AIRCRAFT,
                                 LENGTH,  {"WIDTH", "Width", Form::Metres}};
constexpr FeatureRow EXIT_LINE[] = {
    AIRPORT, {"IDLIN", "Exit Line Identification"}, STATUS, {"DIREC", "Direction"}};
constexpr FeatureRow THRESHOLD[] = {
    AIRPORT,
    {"IDTHR", "Runway Threshold"},
    STATUS,
    {"TORA", "Take-off Run Available", Form::Metres},
    {"TODA", "Take-off Distance Available", Form::Metres},
    {"LDA", "Landing Distance Available", Form::Metres},
    {"ASDA", "Accelerate-Stop Distance Available", Form::Metres},
    {"ELEV", "Elevation"},
};
constexpr FeatureRow TAXIWAY[] = {AIRPORT, {"IDLIN", "Taxiway Identification"}, STATUS};
constexpr FeatureRow HOLDING_POSITION[] = {AIRPORT,
                                           {"IDLIN", "Taxiway Holding Position Identification"},
                                           STATUS,
                                           {"TYPE", "Taxiway Holding Position Type"}};
constexpr FeatureRow HOLDING_LINE[] = {AIRPORT, {"IDLIN", "Taxiway Holding Position Identification"}};
constexpr FeatureRow VERTICAL_STRUCTURE[] = {
    AIRPORT, {"IDENT", "Vertical Structure Identification"}, {"PLYSTTYP", "Vertical Structure Type"}};

struct Kind {
  const char* name;
  std::span<const FeatureRow> rows;
};

// By K7ShapeType.
constexpr Kind KINDS[] = {
    {"Shape", {}},
    {"Apron", APRON},
    {"Deicing Area", DEICING_AREA},
    {"Frequency Area", FREQUENCY_AREA},
    {"Hotspot", HOTSPOT},
    {"Parking Stand", PARKING_STAND},
    {"Runway Displaced Area", DISPLACED_AREA},
    {"Runway", RUNWAY},
    {"Exit Line", EXIT_LINE},
    {"Runway Threshold", THRESHOLD},
    {"Taxiway", TAXIWAY},
    {"Taxiway Holding Position", HOLDING_POSITION},
    {"Taxiway Holding Position", HOLDING_LINE},
    {"Vertical Structure", VERTICAL_STRUCTURE},
};
static_assert(std::size(KINDS) == K7_SHAPE_VERTICAL_STRUCTURE + 1);

const Kind& KindOf(K7ShapeType type) {
  const bool isKnown = type >= 0 && type < static_cast<int>(std::size(KINDS));
  return KINDS[isKnown ? type : K7_SHAPE_PLAIN];
}

}  // namespace

std::span<const FeatureRow> RowsOf(K7ShapeType type) { return KindOf(type).rows; }

}  // namespace k7shape

const char* K7Shape::TypeName(K7ShapeType type) { return k7shape::KindOf(type).name; }
