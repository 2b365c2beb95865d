// Elementary functions without branches or tables, which compilers turn into vector instructions where a loop
// calls them. Every operation is an IEEE one in written order, so that a position gives the same bits in a
// vector of any width and in the remainder of an array.
#pragma once

#include <bit>
#include <cstdint>

#if defined(__GNUC__)
#define K7_INLINE [[gnu::always_inline]] inline
#else
#define K7_INLINE inline
#endif
// A second body of the loops for processors with AVX2, chosen while the program runs; 0 from the build leaves
// it out. Not on Windows, where GCC puts vectors of 32 bytes on a stack that is aligned to 16.
#ifndef K7_BATCH_AVX2
#if defined(__GNUC__) && defined(__x86_64__) && !defined(_WIN32)
#define K7_BATCH_AVX2 1
#else
#define K7_BATCH_AVX2 0
#endif
#endif

namespace batch {

inline constexpr double LN_2 = 0.6931471805599453;
// Added to a number below 2^51, leaves it as the nearest integer in the low bits.
inline constexpr double ROUNDER = 6755399441055744.0;

K7_INLINE std::uint64_t Bits(double value) { return std::bit_cast<std::uint64_t>(value); }
K7_INLINE double FromBits(std::uint64_t bits) { return std::bit_cast<double>(bits); }

// 1 where a number is below a limit, and where it is not below it in size, else 0. From the sign of the
// difference: GCC does not vectorise comparisons that become integers with SSE2 alone.
K7_INLINE std::uint64_t Below(double value, double limit) { return Bits(value - limit) >> 63; }
K7_INLINE std::uint64_t Beyond(double value, double limit) {
  return 1 - Below(FromBits(Bits(value) & ~(1ULL << 63)), limit);
}

// Sine and cosine of an angle up to pi / 4. (Coefficients: FreeBSD msun, k_sin.c and k_cos.c, Sun
// Microsystems 1993.)
K7_INLINE void SinCosNear0(double a, double& sine, double& cosine) {
  const double z = a * a;
  const double zz = z * z;
  sine = a + a * z *
                 (-1.66666666666666324348e-01 +
                  zz * (-1.98412698298579493134e-04 - zz * 2.50507602534068634195e-08) +
                  z * (8.33333333332248946124e-03 +
                       zz * (2.75573137070700676789e-06 + zz * 1.58969099521155010221e-10)));
  cosine =
      1 - z / 2 +
      zz * (4.16666666666666019037e-02 + zz * (2.48015872894767294178e-05 + zz * 2.08757232129817482790e-09) -
            z * (1.38888888888741095749e-03 +
                 zz * (2.75573143513906633035e-07 + zz * 1.13596475577881948265e-11)));
}

// Of any angle up to a million radians, to a few units of the last place of 1: quarter turns are taken off in
// two parts (the same library, e_rem_pio2.c), of which the product with the first is exact.
K7_INLINE void SinCos(double a, double& sine, double& cosine) {
  const double rounded = a * 0.63661977236758134 + ROUNDER;
  const double quarters = rounded - ROUNDER;
  const std::uint64_t quadrant = Bits(rounded);
  double s, c;
  SinCosNear0((a - quarters * 1.57079632673412561417) - quarters * 6.07710050650619224932e-11, s, c);
  const std::uint64_t odd = 0 - (quadrant & 1);
  const std::uint64_t change = (Bits(s) ^ Bits(c)) & odd;
  sine = FromBits(Bits(s) ^ change ^ (quadrant & 2) << 62);
  cosine = FromBits(Bits(c) ^ change ^ ((quadrant + 1) & 2) << 62);
}

// Inverse hyperbolic tangent up to 0.21, by its series, the even and odd powers apart: two short chains.
K7_INLINE double AtanhNear0(double f) {
  const double z = f * f;
  const double zz = z * z;
  const double odd = 1.0 / 3 + zz * (1.0 / 7 + zz * (1.0 / 11 + zz * (1.0 / 15)));
  const double even = 1.0 / 5 + zz * (1.0 / 9 + zz * (1.0 / 13 + zz * (1.0 / 17)));
  return f + f * z * (odd + z * even);
}

// log(a / b) of positive numbers: 2^k b is brought within 1.51 times a, then
// log(a / b) = k log 2 + 2 atanh((a - 2^k b) / (a + 2^k b)). The difference of two bit patterns is the
// logarithm of the ratio to 0.09, in units of 2^52. Not a number when a is none.
K7_INLINE double LogRatio(double a, double b) {
  constexpr std::uint64_t BIAS = 1024;
  const std::uint64_t k = (Bits(a) - Bits(b) + (BIAS << 52) + (1ULL << 51)) >> 52;
  const double scaled = FromBits(Bits(b) + ((k - BIAS) << 52));
  const double twos = FromBits(k | Bits(4503599627370496.0)) - (4503599627370496.0 + BIAS);
  return twos * LN_2 + 2 * AtanhNear0((a - scaled) / (a + scaled));
}

// log(tan(pi / 4 + a)) for a below pi / 4 in size: tan(pi / 4 + a) = (cos a + sin a) / (cos a - sin a).
K7_INLINE double LogTan(double a) {
  double s, c;
  SinCosNear0(a, s, c);
  return LogRatio(c + s, c - s);
}

// Exponential up to 500, by its series behind the powers of 2.
K7_INLINE double Exp(double x) {
  const double rounded = x * (1 / LN_2) + ROUNDER;
  const double r = x - (rounded - ROUNDER) * LN_2;
  const double rr = r * r;
  const double even =
      1 + rr * (1.0 / 2 + rr * (1.0 / 24 + rr * (1.0 / 720 + rr * (1.0 / 40320 + rr * (1.0 / 3628800)))));
  const double odd =
      1 + rr * (1.0 / 6 + rr * (1.0 / 120 + rr * (1.0 / 5040 + rr * (1.0 / 362880 + rr * (1.0 / 39916800)))));
  return FromBits(Bits(even + r * odd) + (Bits(rounded) << 52));
}

}  // namespace batch
