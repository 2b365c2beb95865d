// What the importers of one run share: where records go, what is known of places and airports so far.
#pragma once

#include "store/import_lines.h"
#include "store/import_log.h"
#include "store/import_places.h"

#include <k7/geodesy/magvar.h>
#include <k7/navdata.h>

#include <cmath>

/// Takes records.
class NavSink {
 public:
  virtual ~NavSink() = default;
  /// As `NavWriter::Add`: gives the record the next index of the type that its key names.
  virtual K7NavKey Add(K7NavRec& rec) = 0;
  virtual uint32_t Count(K7NavType type) const = 0;

 protected:
  NavSink() = default;
  NavSink(const NavSink&) = default;
  NavSink& operator=(const NavSink&) = default;
};

/// Magnetic variation on the day of the import.
class Variation {
 public:
  /// `model` may be null, and must outlive this. `time` in seconds since 1970.
  Variation(const Tarsvald::MagVar* model, int64_t time) : m_model(model), m_time(time) {}
  /// False when it is not known.
  bool At(const K7LatLon& at, double& degrees) const {
    return m_model && m_model->Position(&degrees, at.Lat(), at.Lon(), 0, m_time);
  }
  /// Tenths of a degree, or that it is unknown.
  int16_t Tenths(const K7LatLon& at) const;

 private:
  const Tarsvald::MagVar* m_model;
  int64_t m_time;
};

struct ImportRun {
  NavSink& sink;
  ImportLog& log;
  Variation variation;
  ImportProgress progress;
  PlaceIndex places;      // fixes and navaids
  AirportIndex airports;  // with their runways
  std::string source;     // what the first file says of itself
};

/// The rows of a file that begins as all of the family do: a line that says little, one with the version, and
/// "99" at the end. Hands them to `take`, which answers what is wrong with one. Empty, or why the file is
/// refused.
std::string ReadRows(ByteSource& source, const std::string& name, int version, ImportRun& run,
                     const std::function<std::string(std::string_view)>& take);

/// The importers. `name` is what messages call the file. Empty, or why it is refused. Airports come before
/// the navaids that belong to them, both and the fixes before airways.
std::string ImportAirports(ByteSource& source, const std::string& name, ImportRun& run);
std::string ImportNavaids(ByteSource& source, const std::string& name, ImportRun& run);
std::string ImportFixes(ByteSource& source, const std::string& name, ImportRun& run);
std::string ImportAirways(ByteSource& source, const std::string& name, ImportRun& run);
std::string ImportAirspaces(ByteSource& source, const std::string& name, ImportRun& run);

/// @name Filling records
/// @{
template <size_t N>
void CopyText(char (&to)[N], std::string_view text) {
  const size_t count = text.copy(to, N);
  if (count < N) to[count] = 0;
}
/// Limited to what a record holds.
int16_t Short(double value);
/// [0, 3600) tenths of a degree.
int16_t TenthsOf(double degrees);
/// Position, identifier, elevation in feet and variation.
void SetPlace(K7NavFix& fix, K7NavType type, const K7LatLon& at, std::string_view ident, double elev,
              const Variation& variation);
inline K7LatLon PlaceOf(const K7NavFix& fix) {
  return {K7NavData::FixPt2DecDeg(fix.lat), K7NavData::FixPt2DecDeg(fix.lon)};
}
/// @}
