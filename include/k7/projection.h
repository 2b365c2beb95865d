// Map projections, chart extents, and the host's graphics context and chart.
#pragma once

#include <k7/projection/azimuthal.h>
#include <k7/projection/chart.h>
#include <k7/projection/chart_rect.h>
#include <k7/projection/conic.h>
#include <k7/projection/cylindrical.h>
#include <k7/projection/grfx.h>
#include <k7/projection/map_features.h>
#include <k7/projection/map_path.h>
#include <k7/projection/map_view.h>
#include <k7/projection/projection.h>
