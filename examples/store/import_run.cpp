#include "store/import_run.h"

#include "store/import_fields.h"
#include "store/import_rows.h"

#include <algorithm>

int16_t Variation::Tenths(const K7LatLon& at) const {
  double degrees;
  return At(at, degrees) ? Short(std::round(degrees * 10)) : K7NavFix::UNKNOWN_VARIATION;
}

int16_t Short(double value) { return static_cast<int16_t>(std::clamp(value, -32768.0, 32767.0)); }

int16_t TenthsOf(double degrees) {
  const int tenths = static_cast<int>(std::lround(degrees * 10)) % 3600;
  return static_cast<int16_t>(tenths < 0 ? tenths + 3600 : tenths);
}

void SetPlace(K7NavFix& fix, K7NavType type, const K7LatLon& at, std::string_view ident, double elev,
              const Variation& variation) {
  fix.key = K7NavKey(0, type);
  fix.lat = K7NavData::DecDeg2FixPt(at.Lat());
  fix.lon = K7NavData::DecDeg2FixPt(at.Lon());
  CopyText(fix.ident, ident.substr(0, sizeof fix.ident - 1));
  fix.elev = Short(std::round(elev));
  fix.magVar = variation.Tenths(at);
}

namespace {

constexpr int END_CODE = 99;

// "810 Version - data cycle ..." in the second line.
bool HasVersion(LineReader& reader, int version, std::string& source) {
  static constexpr size_t LONGEST_SOURCE = 200;
  std::string_view line;
  if (!reader.Next(line) || !reader.Next(line) || reader.Problem()) return false;
  Fields fields(line);
  if (fields.Integer("version", version, version) != version || fields.Word("word", 7) != "Version" ||
      !fields.Problem().empty())
    return false;
  std::string_view rest = fields.Rest();
  rest.remove_prefix(std::min(rest.find_first_not_of("- "), rest.size()));
  if (source.empty()) source = rest.substr(0, LONGEST_SOURCE);
  return true;
}

}  // namespace

std::string ReadRows(ByteSource& source, const std::string& name, int version, ImportRun& run,
                     const std::function<std::string(std::string_view)>& take) {
  LineReader reader(source);
  if (!HasVersion(reader, version, run.source))
    return name + " is no file of the kind that is wanted: its second line is not '" +
           std::to_string(version) + " Version'";
  run.log.Begin(name);
  bool ended = false;
  for (std::string_view line; !ended && reader.Next(line);) {
    if (reader.Number() % 256 == 0) run.progress("reading " + name, reader.Share());
    std::string problem;
    if (reader.Problem())
      problem = reader.Problem();
    else if (Trimmed(line) == std::to_string(END_CODE))
      ended = true;
    else if (!Trimmed(line).empty())
      problem = take(line);
    if (!problem.empty()) run.log.Problem(reader.Number(), problem);
  }
  if (reader.Damaged()) return name + " is damaged or cut off";
  if (!ended) run.log.Problem(reader.Number(), "the file ends without its last line, 99: it may be cut off");
  return {};
}
