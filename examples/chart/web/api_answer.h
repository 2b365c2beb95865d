// What the page's endpoints answer with.
#pragma once

#include "web/http.h"
#include "web/json.h"

#include <k7/geodesy/latlon.h>

HttpAnswer JsonAnswer(JsonWriter&& json);
/// {"problem": why}
HttpAnswer Problem(int status, const std::string& why);
/// Members "lat", "lon" and "text" of a position.
void WritePlace(JsonWriter& json, const K7LatLon& place);
