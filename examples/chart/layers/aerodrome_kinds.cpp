#include "layers/aerodrome_kinds.h"

namespace {

using enum AerodromeMark;
using enum ThemeItem;

constexpr AerodromeKind KINDS[] = {
    {K7_SHAPE_APRON, "apron", Aprons, Area, "apron", {"IDAPRON"}, 0.72},
    {K7_SHAPE_DEICING_AREA, "deicing_area", Aprons, DashedArea, "deicing area", {"IDENT"}, 0.68},
    {K7_SHAPE_TAXIWAY, "taxiway", Taxiways, Area, "taxiway", {"IDLIN"}, 0.8},
    {K7_SHAPE_RUNWAY, "runway", Runways, Area, "runway"},
    {K7_SHAPE_DISPLACED_AREA, "displaced_area", Taxiways, Area, "displaced threshold area"},
    {K7_SHAPE_VERTICAL_STRUCTURE, "vertical_structure", Buildings, Area, "building", {"IDENT"}, 0.7, true},
    {K7_SHAPE_EXIT_LINE, "exit_line", AerodromeLines, Line, "exit line"},
    {K7_SHAPE_FREQUENCY_AREA,
     "frequency_area",
     AerodromeLines,
     Dashes,
     "frequency area",
     {"STATION", "FRQ"},
     0.7,
     false,
     AerodromeLines},
    {K7_SHAPE_HOLDING_LINE, "holding_line", AerodromeLines, DoubleLine, "holding position"},
    {K7_SHAPE_HOLDING_POSITION, "holding_position", AerodromeLines, DoubleLine, "holding position"},
    {K7_SHAPE_THRESHOLD, "threshold", Runways, Nothing, nullptr},
    {K7_SHAPE_PARKING_STAND, "parking_stand", Aprons, Dot, "stand", {"IDSTD"}, 0.56, true},
    {K7_SHAPE_HOTSPOT, "hotspot", Hotspots, Ring, "hotspot", {"IDHOT"}, 0.76, true, Hotspots},
};

}  // namespace

std::span<const AerodromeKind> AerodromeKinds() { return KINDS; }
