#include <k7/navdata/comm.h>

#include <algorithm>

namespace {

struct Code {
  int code;
  const char* text;
};

// Of airports and of enroute stations.
constexpr Code ENROUTE[] = {{1, "ACC"},   {9, "AWOS"},      {17, "FLIGHTWATCH"}, {19, "FSS"},
                            {24, "INFO"}, {26, "MULTICOM"}, {29, "RADIO"},       {31, "FSS"},
                            {38, "TWEB"}, {42, "VOLMET"}};
// Of airports alone.
constexpr Code AIRPORT[] = {{K7AirportComm::APPROACH, "Approach"},   {K7AirportComm::ATIS, "ATIS"},
                            {K7AirportComm::CLEARANCE, "Clearance"}, {K7AirportComm::DEPARTURE, "Departure"},
                            {K7AirportComm::GROUND, "Ground"},       {K7AirportComm::TOWER, "Tower"},
                            {K7AirportComm::UNICOM, "Unicom"}};

struct Service {
  uint32_t bit;
  const char* text;
};

constexpr Service SERVICES[] = {{K7EnrouteComm::AEIS, "AEIS, "},
                                {K7EnrouteComm::EFAS, "EFAS, "},
                                {K7EnrouteComm::FIS, "FIS, "},
                                {K7EnrouteComm::MANDATORY_FREQ, "MF, "},
                                {K7EnrouteComm::SECONDARY, "Secondary, "},
                                {K7EnrouteComm::AIR_GROUND, "A/G, "},
                                {K7EnrouteComm::VDF, "VDF, "},
                                {K7EnrouteComm::AIR_AIR, "A/A, "},
                                {K7EnrouteComm::DISCRETE, "Discrete, "},
                                {K7EnrouteComm::MILITARY, "MIL, "}};

constexpr uint32_t RECEIVES_ELSEWHERE = 0x100;

template <size_t N>
const char* Find(const Code (&codes)[N], int code) {
  for (const Code& row : codes) {
    if (row.code == code) return row.text;
  }
  return nullptr;
}

}  // namespace

const char* K7AirportComm::TypeString(int code) {
  const char* text = Find(AIRPORT, code);
  return text ? text : K7EnrouteComm::CommTypeString(code);
}

const char* K7EnrouteComm::CommTypeString(int code) {
  const char* text = Find(ENROUTE, code);
  return text ? text : "Unknown";
}

int K7EnrouteComm::ServiceIndicatorString(uint32_t serviceFlags, K7String& out) {
  out.Clear();
  for (const Service& service : SERVICES) {
    if (!(serviceFlags & service.bit)) continue;
    if (const int err = out += service.text) return err;
  }
  return 0;
}

int K7EnrouteComm::FormatCommFrequency(int freq, int units, int flags, K7String& out, bool withUnits) {
  if (units < 0 || units > 9) return 0;
  const char* unit = !withUnits ? "" : units <= 2 ? " MHz" : " kHz";
  int length = 0;
  if (units == 0) {
    length = out.Format(freq % 100 ? "%0.2f%s" : "%0.1f%s", (freq - freq % 10) / 1000.0, unit);
  } else if (units == 1) {
    length = out.Format(freq % 10 ? "%0.2f%s" : "%0.1f%s", freq / 100.0, unit);
  } else if (units == 2) {
    length = out.Format("%0.3f%s", freq / 1000.0, unit);
  } else if (freq % 100 == 0) {
    length = out.Format("%i%s", freq / 100, unit);
  } else {
    length = out.Format("%0.1f%s", freq / 100.0, unit);
  }
  if (length <= 0) return length;
  return static_cast<uint32_t>(flags) & RECEIVES_ELSEWHERE ? out += " (R)" : 0;
}
