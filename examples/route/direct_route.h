// A route from point to point, as it is drawn by hand: no airway says how it goes.
#pragma once

#include "route/route.h"

/// The route over places that `FindPlaces` finds, by great circles. One point alone is a route without legs.
/// Empty, or what is wrong. The store need be open only for what `MayBeIdent`.
std::string DirectRoute(NavStore& store, const std::vector<std::string>& points, Route& route);
