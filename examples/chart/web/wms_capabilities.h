// What a Web Map Service says of itself.
#pragma once

#include "web/desk.h"
#include "web/http.h"

/// The document of the standard's schema. With `problem` in words when the layers cannot be read.
std::string WmsCapabilities(const HttpRequest& request, Desk& desk, std::string& problem);
