// What the page asks to see: the view of its address, each value checked.
#pragma once

#include "layers/route_layer.h"
#include "web/desk.h"
#include "web/http.h"

#include <memory>
#include <string>
#include <vector>

struct ViewRequest {
  MapRequest map;                       ///< in pixels of the screen, of which an ordinary one has `map.scale`
  Route route{};                        ///< without fixes: none
  std::unique_ptr<RouteLayer> layer{};  ///< which is the map's top
};

/// \name Empty, or in one sentence what is wrong with the request
/// @{
std::string ReadView(const HttpRequest& request, Desk& desk, ViewRequest& view);
/// "x" and "y", ordinary pixels from the upper left corner, as pixels of the view. They may lie outside it.
std::string ReadPixel(const HttpRequest& request, const ViewRequest& view, double& x, double& y);
/// Points of "route", one or more.
std::string ReadRoute(const HttpRequest& request, Desk& desk, Route& route);
/// Every value, also such as nobody reads, is a line of text.
std::string WhyNoTexts(const HttpRequest& request);
/// A number between two bounds; `value` stays without a parameter of that name.
std::string ReadWithin(const HttpRequest& request, const char* name, double least, double most,
                       double& value);
/// @}
