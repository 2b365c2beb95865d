// Records and features of the chart's data as GeoJSON (RFC 7946).
#pragma once

#include "web/http.h"

/// bbox=WEST,SOUTH,EAST,NORTH; types=vor,airport... or layers=airports,land... of the chart; limit=1000.
HttpAnswer AnswerGeoJson(const HttpRequest& request, Desk& desk);
