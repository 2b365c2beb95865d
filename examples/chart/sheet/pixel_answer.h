// What there is to say about a pixel of a chart, in lines and as XML.
#pragma once

#include "layers/chart.h"

#include <k7/geodesy/latlon.h>
#include <k7/terrain/ter_tile.h>
#include <k7/terrain/terrain.h>

#include <string>
#include <vector>

class K7XmlElem;

struct PixelAnswer {
  double x = 0, y = 0;
  std::string nothing{};  ///< why there is no place under it; all below is then unsaid
  K7LatLon place{};
  int feet = K7_NO_ELEV;
  double variation = 0;  ///< degrees east
  std::vector<Picked> found{};
};

/// What a chart shows at a device point. Without terrain nothing is known of the ground.
PixelAnswer AskPixel(Chart& chart, double dx, double dy, K7Terrain* terrain);

/// "variation 15.4° E"
std::string VariationAt(double degrees);
/// One line, and below it one a thing, UTF-8.
std::string TextOf(const PixelAnswer& answer);
/// Adds a "Pixel" to `parent`, with a "Record" for each record and for each thing that is none. Texts are
/// windows-1252.
void AddXML(const PixelAnswer& answer, K7XmlOutputType_t type, K7XmlElem& parent);
