// Parameters of projections as a user sets them: by name, in any order, refused where they give no picture.
#pragma once

#include <k7/projection/projection.h>

#include <string>
#include <utility>
#include <vector>

/// By the names that the projection gives them, regardless of case.
using ProjectionParams = std::vector<std::pair<std::string, double>>;

/// Sets them, in the projection's own order: a perspective's clip distances follow from its altitude and from
/// the pitch that it has by then. Empty, or what is wrong, and then the projection may have some of them.
std::string SetParams(K7Projection& projection, const ProjectionParams& params);

/// The values that give a picture, as "from 1 to 10".
std::string ParamRange(const K7Projection& projection, int index);
