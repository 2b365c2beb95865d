#include <k7/projection/projection.h>

#include <k7/projection/azimuthal.h>
#include <k7/projection/conic.h>
#include <k7/projection/cylindrical.h>
#include <k7/projection/grfx.h>

#include "projection/owned.h"

#include <new>

K7Projection::~K7Projection() = default;

int K7Projection::ParamCount() const { return 0; }
const char* K7Projection::ParamName(int) const { return nullptr; }
void K7Projection::ParamValue(int, double) {}
double K7Projection::ParamValue(int) const { return 0.0; }

bool K7Projection::Device2World(double dx, double dy, K7Grfx* g, int, int, double& x, double& y,
                                double& z) const {
  return g && g->UnProject(dx, dy, 0.0, x, y, z);
}

bool K7Projection::IsCylindrical() const { return false; }
bool K7Projection::IsConic() const { return false; }
bool K7Projection::IsAzimuthal() const { return false; }
double K7Projection::ScaleError(double, double) const { return 1.0; }

K7Projection* K7Projection::Create(K7ProjType type, int* error) {
  switch (type) {
    case K7_PROJ_LAMBERT:
      return OwnedOrError(new (std::nothrow) K7LambertProjection(45.0, 30.0, -90.0, 0.0), error);
    case K7_PROJ_MERCATOR:
      return OwnedOrError(new (std::nothrow) K7MercatorProjection, error);
    case K7_PROJ_ORTHOGRAPHIC:
      return OwnedOrError(new (std::nothrow) K7OrthographicProjection, error);
    case K7_PROJ_RECTANGULAR:
      return OwnedOrError(new (std::nothrow) K7RectangularProjection, error);
    case K7_PROJ_MILLER:
      return OwnedOrError(new (std::nothrow) K7MillerProjection, error);
    case K7_PROJ_ALBERS:
      return OwnedOrError(new (std::nothrow) K7AlbersProjection(45.0, 30.0, -90.0, 0.0), error);
    case K7_PROJ_PERSPECTIVE:
      return OwnedOrError(new (std::nothrow) K7PerspectiveProjection(4.0), error);
    case K7_PROJ_STEREOGRAPHIC:
      return OwnedOrError(new (std::nothrow) K7StereographicProjection, error);
    case K7_PROJ_GNOMONIC:
      return OwnedOrError(new (std::nothrow) K7GnomonicProjection, error);
  }
  return nullptr;
}
