// Positions as people type them and as programs print them.
#pragma once

#include <k7/geodesy/latlon.h>

#include <string>

/// Reads "N48 30.0 W123 30.0", "48.5, -123.5" and other usual ways of writing a position. Empty, or what is
/// wrong with the text, with `place` as it was.
std::string ReadPosition(const std::string& text, K7LatLon& place);
/// "N48 30.000 W123 30.000": degrees, and minutes with 1 to 9 decimals.
std::string PositionText(const K7LatLon& place, int decimals = 3);
