#include "io/read.h"

#include <k7/foundation/time.h>
#include <k7/geodesy/magvar.h>
#include <k7/io/io.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <cstring>
#include <ctime>
#include <memory>
#include <numbers>

namespace Tarsvald {
namespace {

constexpr int N = MagVarWMM::MAX_DEGREE;
constexpr double RAD = std::numbers::pi / 180.0;

// Kilometres, in the single precision of the published tables.
constexpr double A = 6378.137f;
constexpr double B = 6356.7523142f;
constexpr double REFERENCE = 6371.2f;
static_assert(A == 6378.13720703125 && B == 6356.75244140625 && REFERENCE == 6371.2001953125);

struct Geocentric {
  double r;                 // km
  double sinCo, cosCo;      // of the colatitude
  double sinTilt, cosTilt;  // of the geodetic latitude less the geocentric one
};

// Closed form on the ellipsoid: with q = sqrt(a^2 cos^2 + b^2 sin^2), the prime vertical's foot lies a^2/q
// cos and b^2/q sin from the centre, and the altitude goes on along the normal.
Geocentric ToGeocentric(double lat, double alt) {
  const double sinLat = std::sin(lat * RAD), cosLat = std::cos(lat * RAD);
  const double a2 = A * A, b2 = B * B;
  const double q = std::sqrt(a2 * cosLat * cosLat + b2 * sinLat * sinLat);
  const double out = (a2 / q + alt) * cosLat, up = (b2 / q + alt) * sinLat;
  Geocentric at;
  at.r = std::sqrt(out * out + up * up);
  at.sinCo = out / at.r;
  at.cosCo = up / at.r;
  at.cosTilt = (alt + q) / at.r;
  at.sinTilt = (a2 - b2) / (at.r * q) * sinLat * cosLat;
  if (at.sinCo == 0) at.sinCo = 1e-8;
  return at;
}

std::atomic<uint64_t> g_loads{0};

constexpr int64_t LARGEST_FILE = 1 << 20;  // the published ones have 5 KB
constexpr int HEADER_LENGTH = 255;
constexpr int NAME_LENGTH = 127;

// The words of a text as formatted input takes them, with a decimal point whatever locale the host has set.
// Of the first line only so much is looked at.
class Tokens {
 public:
  Tokens(const char* text, int firstLine) : m_next(text), m_end(text + std::strcspn(text, "\n")) {
    if (m_end - text > firstLine) m_end = text + firstLine;
  }

  // Goes on behind the first line, to the end of the text.
  void NextLine() {
    m_next = m_end;
    m_end += std::strlen(m_end);
  }
  // False for a word that is no number of the type, or not finite.
  template <class T>
  bool Number(T& value) {
    const char* const end = Find();
    const char* const start = m_next + (*m_next == '+' && m_next + 1 < end);
    m_next = end;
    const auto [stop, error] = std::from_chars(start, end, value);
    return error == std::errc() && stop == end && std::isfinite(static_cast<double>(value));
  }
  bool Word(char (&word)[NAME_LENGTH + 1]) {
    const char* const end = Find();
    const size_t length = std::min<size_t>(static_cast<size_t>(end - m_next), NAME_LENGTH);
    std::memcpy(word, m_next, length);
    word[length] = 0;
    m_next = end;
    return length > 0;
  }

 private:
  // Moves to the next word; its end.
  const char* Find() {
    while (m_next < m_end && K7String::IsSpace(*m_next)) m_next++;
    const char* end = m_next;
    while (end < m_end && !K7String::IsSpace(*end)) end++;
    return end;
  }

  const char* m_next;
  const char* m_end;
};

}  // namespace

// Coefficients brought to a year. Each thread keeps the last ones it used: a chart asks for thousands of
// places at one date.
struct MagVarWMM::Dated {
  uint64_t load = 0;
  double year = 0;
  double g[N + 1][N + 1];
  double h[N + 1][N + 1];
};

MagVar::~MagVar() = default;

MagVarWMM::MagVarWMM(const char* path) {
  ClearWMMTable();
  if (path && *path) ReadWMMTable(path);
}

MagVarWMM::~MagVarWMM() = default;

void MagVarWMM::ClearWMMTable() {
  for (auto* table : {&m_g, &m_h, &m_gRate, &m_hRate}) std::memset(*table, 0, sizeof *table);
  m_epoch = 0;
  m_name = nullptr;
  m_loaded = false;
}

bool MagVarWMM::ReadWMMTable(const char* path) {
  ClearWMMTable();
  K7IO* const io = K7IO::Inst();
  const std::unique_ptr<K7File> file(io && path ? io->CreateFileX(path, "rb") : nullptr);
  k7read::Block text;
  if (!file || !file->IsValid() || k7read::BytesLeft(file.get()) > LARGEST_FILE) return false;
  if (text.ReadFile(file.get()) != 0) return false;
  Tokens tokens(reinterpret_cast<const char*>(text.Bytes()), HEADER_LENGTH);
  float epoch;
  char name[NAME_LENGTH + 1];
  if (!tokens.Number(epoch) || !tokens.Word(name)) return false;

  tokens.NextLine();
  int n, m, degree = 0;
  float g, h, gRate, hRate;
  while (tokens.Number(n) && tokens.Number(m) && tokens.Number(g) && tokens.Number(h) &&
         tokens.Number(gRate) && tokens.Number(hRate)) {
    if (m < 0 || m > n || n > N) continue;
    m_g[n][m] = static_cast<double>(g);
    m_h[n][m] = static_cast<double>(h);
    m_gRate[n][m] = static_cast<double>(gRate);
    m_hRate[n][m] = static_cast<double>(hRate);
    if (n > degree) degree = n;
  }
  if (degree < 1) {
    ClearWMMTable();
    return false;
  }
  FillFactors();
  m_epoch = epoch;
  m_name = name;
  m_loaded = true;
  m_load = ++g_loads;
  return true;
}

void MagVarWMM::FillFactors() {
  for (int n = 2; n <= N; n++) {
    m_diagonal[n] = std::sqrt((2.0 * n - 1) / (2.0 * n));
    for (int m = 0; m < n; m++) {
      m_former[n][m] = std::sqrt((n - 1.0) * (n - 1.0) - m * m);
      m_divisor[n][m] = 1 / std::sqrt(static_cast<double>(n * n - m * m));
    }
  }
}

const MagVarWMM::Dated& MagVarWMM::CoefficientsOf(double year) const {
  thread_local Dated dated;
  if (dated.load == m_load && dated.year == year) return dated;
  const double years = year - static_cast<double>(m_epoch);
  for (int n = 0; n <= N; n++) {
    for (int m = 0; m <= n; m++) {
      dated.g[n][m] = m_g[n][m] + m_gRate[n][m] * years;
      dated.h[n][m] = m_h[n][m] + m_hRate[n][m] * years;
    }
  }
  dated.load = m_load;
  dated.year = year;
  return dated;
}

// The sums of the report's equations 10 to 12 over degree n and order m, with P and its derivative by
// colatitude from their recursions:
//   P(n,n) = sqrt((2n-1)/2n) sin P(n-1,n-1)
//   P(n,m) = ((2n-1) cos P(n-1,m) - sqrt((n-1)^2-m^2) P(n-2,m)) / sqrt(n^2-m^2)
bool MagVarWMM::ComputeField(double lat, double lon, double alt, double year, double& x, double& y, double& z,
                             double& h, double& f, double& declination, double& inclination) const {
  if (!m_loaded) return false;
  if (!(year > 0)) year = GetYear(std::time(nullptr));
  if (!(year > 0)) return false;
  const Dated& at = CoefficientsOf(year);
  const Geocentric place = ToGeocentric(lat, alt);

  double cosM[N + 1], sinM[N + 1];
  cosM[0] = 1;
  sinM[0] = 0;
  cosM[1] = std::cos(lon * RAD);
  sinM[1] = std::sin(lon * RAD);
  for (int m = 2; m <= N; m++) {
    cosM[m] = cosM[m - 1] * cosM[1] - sinM[m - 1] * sinM[1];
    sinM[m] = sinM[m - 1] * cosM[1] + cosM[m - 1] * sinM[1];
  }

  // Three rows of each function are enough: degree n, and the two before.
  double rows[3][N + 1] = {{1}, {place.cosCo, place.sinCo}, {}};
  double slopes[3][N + 1] = {{0}, {-place.sinCo, place.cosCo}, {}};
  double north = 0, east = 0, down = 0;
  const double ratio = REFERENCE / place.r;
  double power = ratio * ratio;
  for (int n = 1; n <= N; n++) {
    double *p = rows[n % 3], *d = slopes[n % 3];
    const double *p1 = rows[(n + 2) % 3], *d1 = slopes[(n + 2) % 3];
    if (n > 1) {
      const double *p2 = rows[(n + 1) % 3], *d2 = slopes[(n + 1) % 3];
      const double scale = 2.0 * n - 1;
      for (int m = 0; m < n; m++) {
        const double former = m_former[n][m], divisor = m_divisor[n][m];
        p[m] = (scale * place.cosCo * p1[m] - former * p2[m]) * divisor;
        d[m] = (scale * (place.cosCo * d1[m] - place.sinCo * p1[m]) - former * d2[m]) * divisor;
      }
      p[n] = m_diagonal[n] * place.sinCo * p1[n - 1];
      d[n] = m_diagonal[n] * (place.sinCo * d1[n - 1] + place.cosCo * p1[n - 1]);
    }
    power *= ratio;
    double sumNorth = 0, sumEast = 0, sumDown = 0;
    for (int m = 0; m <= n; m++) {
      const double along = at.g[n][m] * cosM[m] + at.h[n][m] * sinM[m];
      const double across = at.g[n][m] * sinM[m] - at.h[n][m] * cosM[m];
      sumNorth += along * d[m];
      sumEast += m * across * p[m];
      sumDown += along * p[m];
    }
    north += power * sumNorth;
    east += power * sumEast;
    down -= (n + 1) * power * sumDown;
  }
  east /= place.sinCo;

  x = north * place.cosTilt + down * place.sinTilt;
  y = east;
  z = down * place.cosTilt - north * place.sinTilt;
  h = std::sqrt(x * x + y * y);
  f = std::sqrt(x * x + y * y + z * z);
  declination = std::atan2(y, x) / RAD;
  inclination = std::atan(z / h) / RAD;
  return true;
}

bool MagVarWMM::ComputeField(double lat, double lon, double alt, int64_t time, double& x, double& y,
                             double& z, double& h, double& f, double& declination,
                             double& inclination) const {
  const double year = GetYear(time ? time : static_cast<int64_t>(std::time(nullptr)));
  return year > 0 && ComputeField(lat, lon, alt, year, x, y, z, h, f, declination, inclination);
}

bool MagVarWMM::Position(double* variation, double lat, double lon, double alt, int64_t time) const {
  double x, y, z, h, f, declination, inclination;
  if (!ComputeField(lat, lon, alt, time, x, y, z, h, f, declination, inclination)) return false;
  if (variation) *variation = declination;
  return true;
}

double MagVarWMM::GetYear(int64_t time) {
  std::tm fields;
  if (!K7Time(time).GetTM(fields)) return 0;
  const int64_t year = int64_t{fields.tm_year} + 1900;
  const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return static_cast<double>(year) + fields.tm_yday / (isLeap ? 366.0 : 365.0);
}

double MagVarWMM::Position(double lat, double lon, double alt, int64_t time, double fallback) const {
  double variation;
  return Position(&variation, lat, lon, alt, time) ? variation : fallback;
}

}  // namespace Tarsvald
