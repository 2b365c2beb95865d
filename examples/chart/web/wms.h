// A Web Map Service: OpenGIS Web Map Service 1.3.0, OGC 06-042.
#pragma once

#include "web/http.h"

/// GetCapabilities, GetMap and GetFeatureInfo of version 1.3.0; maps also by the parameters of 1.1.1, which
/// many programs still send.
HttpAnswer AnswerWms(const HttpRequest& request, Desk& desk);
