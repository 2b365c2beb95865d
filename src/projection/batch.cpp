// The forward direction for arrays of positions: each formula as the single call has it, over functions that
// vectorise. Where those end, or the single call's own rounding is large (at poles), a position is left to
// that call.
#include <k7/projection/azimuthal.h>
#include <k7/projection/conic.h>
#include <k7/projection/cylindrical.h>

#include <k7/geodesy/constants.h>

#include "projection/batch_math.h"

#include <algorithm>
#include <cmath>

using batch::Beyond;

namespace {

constexpr double R = K7_EARTH_RADIUS_M;
constexpr double ANGLE_LIMIT = 1e6;  // degrees; larger ones are reduced by the single call

// The formulas, first what depends on the latitude and then the longitude's part, which finds the former in
// y: two short loops keep a processor busier than a long one. Each answers 0 where it holds, else 1: the
// single call is made then.
struct Cylinder {
  static constexpr bool HAS_LIMITS = false;
  K7_INLINE std::uint64_t Longitude(double lon, double& x, double&) const {
    x = lon * K7_DEG_TO_RAD * R;
    return 0;
  }
};

struct Mercator : Cylinder {
  K7_INLINE std::uint64_t Latitude(double lat, double& y, double& z) const {
    y = batch::LogTan(std::clamp(lat, -89.99, 89.99) * K7_DEG_TO_RAD / 2) * R;
    z = 0.0;
    return 0;
  }
};

struct Miller : Cylinder {
  static constexpr bool HAS_LIMITS = true;
  K7_INLINE std::uint64_t Latitude(double lat, double& y, double& z) const {
    y = batch::LogTan(0.4 * (lat * K7_DEG_TO_RAD)) / 0.8 * R;
    z = 0.0;
    return Beyond(lat, 100.0);
  }
};

struct Rectangular : Cylinder {
  double stretch;

  K7_INLINE std::uint64_t Latitude(double lat, double& y, double& z) const {
    y = lat * K7_DEG_TO_RAD * stretch * R;
    z = 0.0;
    return 0;
  }
};

struct Globe {
  static constexpr bool HAS_LIMITS = true;
  K7_INLINE std::uint64_t Latitude(double lat, double& y, double& z) const {
    batch::SinCos(lat * K7_DEG_TO_RAD, z, y);
    return Beyond(lat, ANGLE_LIMIT);
  }
  K7_INLINE std::uint64_t Longitude(double lon, double& x, double& y) const {
    const double cosPhi = y;
    double sine, cosine;
    batch::SinCos(lon * K7_DEG_TO_RAD, sine, cosine);
    x = cosPhi * cosine;
    y = cosPhi * sine;
    return Beyond(lon, ANGLE_LIMIT);
  }
};

struct Cone {
  static constexpr bool HAS_LIMITS = true;
  double n;
  double scale;
  double rho0;
  double lambda0;

  K7_INLINE std::uint64_t Longitude(double lon, double& x, double& y) const {
    const double rho = y;
    const double lambda = lon * K7_DEG_TO_RAD - lambda0;
    const double turn = lambda > K7_PI ? 2 * K7_PI : lambda < -K7_PI ? -2 * K7_PI : 0.0;
    double sine, cosine;
    batch::SinCos(n * (lambda - turn), sine, cosine);
    x = rho * sine;
    y = rho0 - rho * cosine;
    return Beyond(lon, ANGLE_LIMIT);
  }
};

// rho = scale t^n with log t = e atanh(e sin phi) - log tan(pi / 4 + phi / 2): the logarithm of Snyder's
// equation 15-9.
struct Lambert : Cone {
  double e;  // eccentricity, 0 on the sphere

  K7_INLINE std::uint64_t Latitude(double lat, double& y, double& z) const {
    double sine, cosine;  // of phi / 2
    batch::SinCosNear0(lat * K7_DEG_TO_RAD / 2, sine, cosine);
    const double logT =
        e * batch::AtanhNear0(e * (2 * sine * cosine)) - batch::LogRatio(cosine + sine, cosine - sine);
    y = n * logT;
    z = 0.0;
    return Beyond(lat, 89.0);
  }
  K7_INLINE std::uint64_t Longitude(double lon, double& x, double& y) const {
    y = scale * batch::Exp(y);
    return Cone::Longitude(lon, x, y);
  }
};

struct Albers : Cone {
  K7_INLINE std::uint64_t Latitude(double lat, double& y, double& z) const {
    constexpr double LEAST = 1e-3;  // below it the root magnifies what rounding leaves of the sine
    double sine, cosine;            // of phi / 2
    batch::SinCosNear0(lat * K7_DEG_TO_RAD / 2, sine, cosine);
    const double square = scale - 2 * n * (2 * sine * cosine);
    y = std::sqrt(square > LEAST ? square : LEAST) / n;
    z = 0.0;
    return Beyond(lat, 90.1) | batch::Below(square, LEAST);
  }
};

struct Arrays {
  const double* lat;
  const double* lon;
  int count;
  double* x;
  double* y;
  double* z;
};

template <class Formula>
K7_INLINE void ForBlocks(const K7Projection& single, const Formula& formula, const Arrays& all) {
  constexpr int BLOCK = 64;
  double noZ[BLOCK];
  std::uint64_t left[BLOCK];
  for (std::int64_t start = 0; start < all.count; start += BLOCK) {
    const int count = static_cast<int>(std::min<std::int64_t>(BLOCK, all.count - start));
    const double* const lat = all.lat + start;
    const double* const lon = all.lon + start;
    double* const x = all.x + start;
    double* const y = all.y + start;
    double* const z = all.z ? all.z + start : noZ;
    std::uint64_t anyLeft = 0;
#pragma omp simd
    for (int i = 0; i < count; ++i) {
      const std::uint64_t out = formula.Latitude(lat[i], y[i], z[i]);
      if constexpr (Formula::HAS_LIMITS) left[i] = out;
    }
#pragma omp simd reduction(| : anyLeft)
    for (int i = 0; i < count; ++i) {
      const std::uint64_t out = formula.Longitude(lon[i], x[i], y[i]);
      if constexpr (Formula::HAS_LIMITS) anyLeft |= left[i] |= out;
    }
    if constexpr (Formula::HAS_LIMITS) {
      for (int i = 0; anyLeft && i < count; ++i)
        if (left[i]) single.LatLon2World(lat[i], lon[i], x[i], y[i], z[i]);
    }
  }
}

#if K7_BATCH_AVX2
template <class Formula>
[[gnu::target("avx2")]] void ForBlocksAvx2(const K7Projection& single, const Formula& formula,
                                           const Arrays& all) {
  ForBlocks(single, formula, all);
}
#endif

template <class Formula>
void ForAll(const K7Projection& single, const Formula& formula, const Arrays& all) {
#if K7_BATCH_AVX2
  if (__builtin_cpu_supports("avx2")) return ForBlocksAvx2(single, formula, all);
#endif
  ForBlocks(single, formula, all);
}

}  // namespace

void K7Projection::LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                                 double* z) const {
  double noZ;
  for (int i = 0; i < count; ++i) LatLon2World(lat[i], lon[i], x[i], y[i], z ? z[i] : noZ);
}

void K7MercatorProjection::LatLons2World(const double* lat, const double* lon, int count, double* x,
                                         double* y, double* z) const {
  ForAll(*this, Mercator{}, {lat, lon, count, x, y, z});
}

void K7MillerProjection::LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                                       double* z) const {
  ForAll(*this, Miller{}, {lat, lon, count, x, y, z});
}

void K7RectangularProjection::LatLons2World(const double* lat, const double* lon, int count, double* x,
                                            double* y, double* z) const {
  ForAll(*this, Rectangular{{}, m_stretch}, {lat, lon, count, x, y, z});
}

void K7AzimuthalProjection::LatLons2World(const double* lat, const double* lon, int count, double* x,
                                          double* y, double* z) const {
  ForAll(*this, Globe{}, {lat, lon, count, x, y, z});
}

void K7LambertProjection::LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                                        double* z) const {
  // Bodies too flat for the series, and parallels that make no cone.
  if (!(m_e < 0.2 && std::fabs(m_n) < 1.1)) return K7Projection::LatLons2World(lat, lon, count, x, y, z);
  ForAll(*this, Lambert{{m_n, m_scale, m_rho0, m_lambda0}, m_e}, {lat, lon, count, x, y, z});
}

void K7AlbersProjection::LatLons2World(const double* lat, const double* lon, int count, double* x, double* y,
                                       double* z) const {
  ForAll(*this, Albers{{m_n, m_scale, m_rho0, m_lambda0}}, {lat, lon, count, x, y, z});
}
