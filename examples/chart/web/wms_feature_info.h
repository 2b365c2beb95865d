// What lies under a pixel of a Web Map Service's picture.
#pragma once

#include "web/wms_request.h"

/// What is drawn there, the uppermost first, with its records.
MaybeWmsProblem WmsFeatureInfo(const HttpRequest& request, Desk& desk, HttpAnswer& answer);
