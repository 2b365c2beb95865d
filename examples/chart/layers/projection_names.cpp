#include "layers/projection_names.h"

#include <k7/foundation/string.h>

namespace {

constexpr NamedProjection PROJECTIONS[] = {
    {"lambert", K7_PROJ_LAMBERT},
    {"mercator", K7_PROJ_MERCATOR},
    {"orthographic", K7_PROJ_ORTHOGRAPHIC},
    {"rectangular", K7_PROJ_RECTANGULAR},
    {"miller", K7_PROJ_MILLER},
    {"albers", K7_PROJ_ALBERS},
    {"perspective", K7_PROJ_PERSPECTIVE},
    {"stereographic", K7_PROJ_STEREOGRAPHIC},
    {"gnomonic", K7_PROJ_GNOMONIC},
};

}  // namespace

std::span<const NamedProjection> Projections() { return PROJECTIONS; }

const NamedProjection* FindProjection(const std::string& name) {
  for (const NamedProjection& projection : PROJECTIONS)
    if (K7String::IComp(name.c_str(), projection.name) == 0) return &projection;
  return nullptr;
}

std::string ProjectionNames() {
  std::string names;
  for (const NamedProjection& projection : PROJECTIONS) {
    names += names.empty() ? "" : ", ";
    names += projection.name;
  }
  return names;
}

std::string UnknownProjection(const std::string& name) {
  return "unknown projection '" + name + "' (" + ProjectionNames() + ")";
}
