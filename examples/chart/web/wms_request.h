// What a Web Map Service is asked for: OpenGIS Web Map Service 1.3.0, OGC 06-042.
#pragma once

#include "web/desk.h"
#include "web/http.h"
#include "web/map_window.h"

#include <optional>
#include <string>
#include <vector>

/// The layer that stands for all of the chart, as its style has them on.
inline constexpr const char* WMS_CHART = "chart";

/// Why there is no answer. The code is one of the standard's tables 2, 9 and E.1, or empty.
struct WmsProblem {
  std::string code, text;
};
using MaybeWmsProblem = std::optional<WmsProblem>;

enum class WmsOnProblem { Xml, InImage, Blank };

/// What GetMap and GetFeatureInfo have in common.
struct WmsMap {
  std::vector<std::string> layers;  ///< from the ground up, as the chart spells them, each once
  bool wholeChart = false;          ///< beside what the style has on, those of `layers`
  std::string theme;
  MapBox box;
  bool transparent = false;
  Color background = {255, 255, 255, 255};
  WmsOnProblem onProblem = WmsOnProblem::Xml;
};

/// Whether it is written in the parameters of version 1.1.1 or before: SRS, X and Y, longitude always first.
bool IsOldWms(const HttpRequest& request);
/// Fills in what can be read even where something is wrong, so that a problem may be told in a picture.
MaybeWmsProblem ReadWmsMap(const HttpRequest& request, Desk& desk, WmsMap& map);
/// A whole number of that range. The problem's code is `code`.
MaybeWmsProblem ReadWmsNumber(const HttpRequest& request, const char* name, int least, int most,
                              const char* code, int& value);
/// The names of a list, spelled as the chart does.
MaybeWmsProblem ReadWmsLayers(const HttpRequest& request, const char* name, Desk& desk,
                              std::vector<std::string>& layers);
/// The chart's layers by their names, from the ground up.
std::vector<std::string> WmsLayers(Desk& desk, std::string& problem);

/// Shows what there is of it; the painter's chart is then that of `window`. Empty, or what went wrong.
std::string ShowWmsMap(const WmsMap& map, const MapWindow& window, Desk& desk);
