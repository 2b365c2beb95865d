#include "store/import_rows.h"

#include "store/import_fields.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr size_t IDENT = 8;    // what a record's identifier holds
constexpr size_t AIRPORT = 6;  // and that of an airport in the records of its runways and frequencies
constexpr size_t NUMBER = 5;   // of a runway
constexpr double LONGEST = 30000;

double Bearing(double degrees) {
  const double turned = std::fmod(degrees, 360);
  return turned < 0 ? turned + 360 : turned;
}

void ReadRunwayPart(Fields& fields, NavRow& row) {
  row.ident = fields.Word("identifier", IDENT);
  row.airport = fields.Word("airport", AIRPORT);
  row.runway = fields.Word("runway", NUMBER);
  row.kind = fields.Word("kind", 20);
}

void ReadStation(Fields& fields, NavRow& row) {
  row.ident = fields.Word("identifier", IDENT);
  row.kind = fields.LastWord("kind");
  row.name = fields.Rest();
}

void ReadDme(Fields& fields, NavRow& row) {
  Fields ahead = fields;
  if (row.code == NavRow::PAIRED_DME && ahead.LastWord("kind") == "DME-ILS")
    ReadRunwayPart(fields, row);
  else
    ReadStation(fields, row);
}

}  // namespace

int RowCode(std::string_view line) {
  Fields fields(line);
  const int code = fields.Integer("code", 0, 100000);
  return fields.Problem().empty() ? code : -1;
}

std::string ReadNavRow(std::string_view line, NavRow& row) {
  Fields fields(line);
  row = {};
  row.code = fields.Integer("code", 0, 99);
  row.at = fields.Position();
  row.elev = static_cast<int>(fields.Number("elevation", -2000, 30000));
  row.freq = fields.Integer("frequency", 0, 99999);
  row.range = fields.Integer("range", 0, 1000);
  switch (row.code) {
    case NavRow::NDB:
      row.freq *= 10;
      fields.Number("number", -1e6, 1e6);
      ReadStation(fields, row);
      break;
    case NavRow::VOR:
      row.declination = std::remainder(fields.Number("variation", -360, 360), 360);
      ReadStation(fields, row);
      break;
    case NavRow::GLIDESLOPE: {
      const double packed = fields.Number("angle and bearing", 0, 9000000);
      row.angle = std::floor(packed / 1000) / 100;
      row.bearing = Bearing(std::fmod(packed, 1000));
      ReadRunwayPart(fields, row);
      break;
    }
    case NavRow::ILS_LOCALIZER:
    case NavRow::LOCALIZER:
    case NavRow::OUTER_MARKER:
    case NavRow::MIDDLE_MARKER:
    case NavRow::INNER_MARKER:
      row.bearing = Bearing(fields.Number("bearing", -720, 720));
      ReadRunwayPart(fields, row);
      if (row.code >= NavRow::OUTER_MARKER) row.ident = {};
      break;
    case NavRow::PAIRED_DME:
    case NavRow::DME:
      fields.Number("bias", -1000, 1000);
      ReadDme(fields, row);
      break;
    default:
      fields.Fail("there are no rows of code " + std::to_string(row.code));
  }
  return fields.Problem();
}

std::string ReadFixRow(std::string_view line, FixRow& row) {
  Fields fields(line);
  row.at = fields.Position();
  row.ident = fields.Word("identifier", IDENT);
  if (!fields.AtEnd()) fields.Fail("there is more behind the identifier");
  return fields.Problem();
}

std::string ReadAirwayRow(std::string_view line, AirwayRow& row) {
  Fields fields(line);
  for (AirwayRow::End* end : {&row.from, &row.to}) {
    end->ident = fields.Word("identifier", IDENT);
    end->at = fields.Position();
  }
  row.high = fields.Integer("layer", 1, 2) == 2;
  row.base = fields.Integer("base", 0, 999);
  row.top = fields.Integer("top", 0, 999);
  row.names = fields.Rest();
  if (row.names.empty()) fields.Fail("there is no name");
  if (row.from.at.Distance(row.to.at) < 0.001) fields.Fail("both ends are at the same place");
  return fields.Problem();
}

std::string ReadAirportRow(std::string_view line, AirportRow& row) {
  Fields fields(line);
  row.code = fields.Integer("code", 0, 99);
  row.elev = static_cast<int>(fields.Number("elevation", -2000, 30000));
  row.tower = fields.Integer("tower", 0, 1) == 1;
  fields.Word("unused field", IDENT);
  row.ident = fields.Word("identifier", AIRPORT);
  row.name = fields.Rest();
  return fields.Problem();
}

std::string ReadRunwayRow(std::string_view line, RunwayRow& row) {
  Fields fields(line);
  row = {};
  const bool water = fields.Integer("code", 0, 999) == RunwayRow::WATER;
  row.width = fields.Number("width", 0, LONGEST);
  row.surface = water ? 13 : fields.Integer("surface", 0, 99);
  if (water) {
    fields.Integer("buoys", -1, 99);
  } else {
    fields.Integer("shoulder", 0, 99);
    fields.Number("smoothness", 0, 99);
    row.centerLights = fields.Integer("centre lights", 0, 99) > 0;
    row.edgeLights = fields.Integer("edge lights", 0, 99) > 0;
    fields.Integer("distance signs", 0, 99);
  }
  for (RunwayRow::End& end : row.ends) {
    end.number = fields.Word("runway number", NUMBER);
    end.at = fields.Position();
    if (water) continue;
    end.displaced = std::max(fields.Number("displaced threshold", -LONGEST, LONGEST), 0.0);
    end.overrun = fields.Number("overrun", 0, LONGEST);
    fields.Integer("markings", 0, 99);
    end.approachLights = fields.Integer("approach lights", 0, 99) > 0;
    end.touchdownLights = fields.Integer("touch-down zone lights", 0, 99) > 0;
    end.identifierLights = fields.Integer("end identifier lights", 0, 99) > 0;
  }
  if (fields.Problem().empty() && row.ends[0].at.Distance(row.ends[1].at) < 0.001)
    fields.Fail("both ends are at the same place");
  return fields.Problem();
}

std::string ReadHelipadRow(std::string_view line, HelipadRow& row) {
  Fields fields(line);
  fields.Integer("code", 0, 999);
  row.name = fields.Word("name", NUMBER);
  row.at = fields.Position();
  row.heading = Bearing(fields.Number("heading", -720, 720));
  row.length = fields.Number("length", 0, LONGEST);
  row.width = fields.Number("width", 0, LONGEST);
  row.surface = fields.Integer("surface", 0, 99);
  return fields.Problem();
}

std::string ReadCommRow(std::string_view line, CommRow& row) {
  Fields fields(line);
  row.code = fields.Integer("code", CommRow::WEATHER, CommRow::DEPARTURE);
  const int hundredths = fields.Integer("frequency", 1, 99999);
  row.name = fields.Rest();
  // Channels lie 25 kHz apart; their third decimal, always a 5, does not fit in the file.
  const int last = hundredths % 10;
  row.freq = hundredths * 10 + (last == 2 || last == 7 ? 5 : 0);
  return fields.Problem();
}
