// Files through the importers into a list of records.
#include "store/import_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

namespace {

class ListSink : public NavSink {
 public:
  K7NavKey Add(K7NavRec& rec) override {
    const K7NavType type = rec.key.NavType();
    rec.key = K7NavKey(counts[type]++, type);
    switch (type) {
      case K7NAV_VOR:
        vors.push_back(static_cast<K7VHFNavaid&>(rec));
        break;
      case K7NAV_TERMINAL_NDB:
      case K7NAV_ENROUTE_NDB:
        ndbs.push_back(static_cast<K7NDB&>(rec));
        break;
      case K7NAV_AIRPORT:
        airports.push_back(static_cast<K7Airport&>(rec));
        break;
      case K7NAV_RUNWAY:
        runways.push_back(static_cast<K7Runway&>(rec));
        break;
      case K7NAV_LOCALIZER:
        localizers.push_back(static_cast<K7LocalizerGlideslope&>(rec));
        break;
      case K7NAV_AIRWAY_HEADER:
        headers.push_back(static_cast<K7AirwayHeader&>(rec));
        break;
      case K7NAV_HIGH_AIRWAY:
      case K7NAV_LOW_AIRWAY:
        segments.push_back(static_cast<K7AirwaySeg&>(rec));
        break;
      case K7NAV_CTRL_AIRSPACE:
        areas.push_back(static_cast<K7NavArea&>(rec));
        classes += static_cast<K7CtrlAirspace&>(rec).airspaceClass;
        break;
      case K7NAV_SPECIAL_USE_AIRSPACE:
        areas.push_back(static_cast<K7NavArea&>(rec));
        floors.push_back(static_cast<K7SUAirspace&>(rec).floor);
        break;
      case K7NAV_AIRSPACE_SEG:
        pieces.push_back(static_cast<K7AirspaceSeg&>(rec));
        break;
      default:
        break;
    }
    return rec.key;
  }
  uint32_t Count(K7NavType type) const override { return counts[type]; }

  uint32_t counts[K7NAV_TYPE_COUNT] = {};
  std::vector<K7VHFNavaid> vors;
  std::vector<K7NDB> ndbs;
  std::vector<K7Airport> airports;
  std::vector<K7Runway> runways;
  std::vector<K7LocalizerGlideslope> localizers;
  std::vector<K7AirwayHeader> headers;
  std::vector<K7AirwaySeg> segments;
  std::vector<K7NavArea> areas;
  std::string classes;
  std::vector<K7Alt> floors;
  std::vector<K7AirspaceSeg> pieces;
};

class NavImport : public testing::Test {
 protected:
  std::string Import(decltype(&ImportFixes) importer, const std::string& text) {
    MemorySource source(text);
    return importer(source, "input", m_run);
  }
  ListSink m_sink;
  ImportLog m_log;
  ImportRun m_run{m_sink, m_log, Variation(nullptr, 0), [](const std::string&, double) {}, {}, {}, {}};
};

double Degrees(int32_t fixed) { return K7NavData::FixPt2DecDeg(fixed); }

}  // namespace

TEST_F(NavImport, ReportsMalformedLinesAndRefusesOtherFiles) {
  EXPECT_EQ(
      Import(ImportFixes, "I\n600 Version - x\n\n48 -123 JAWBN\n48 -523 JAWBN\r\n\n48.5 -123\n99\nafter\n"),
      "");
  EXPECT_EQ(m_sink.Count(K7NAV_ENROUTE_FIX), 1u);
  const std::vector<std::string> lines = m_log.Lines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].substr(0, 8), "input:5:");
  EXPECT_EQ(lines[1].substr(0, 8), "input:7:");
  for (const char* other : {"", "I\n", "I\n810 Version - x\n99\n", "I\n600 Versions\n99\n", "AC R\nAN x\n"})
    EXPECT_NE(Import(ImportFixes, other), "") << other;
  EXPECT_NE(Import(ImportAirspaces, "I\n600 Version\n"), "");
  std::string many = "I\n600 Version\n";
  for (int i = 0; i < 30; ++i) many += "bad\n";
  Import(ImportFixes, many);
  EXPECT_EQ(m_log.Lines().back(), "input: 11 more of this kind");  // the missing last line is one
}

// Places have the model's variation, and courses are magnetic by it.
TEST_F(NavImport, VariationIsTheModels) {
  struct Constant : Tarsvald::MagVar {
    bool Position(double* variation, double, double, double, int64_t) const override {
      *variation = 12.5;
      return true;
    }
    double Position(double, double, double, int64_t, double) const override { return 12.5; }
  } model;
  m_run.variation = Variation(&model, 0);
  ASSERT_EQ(Import(ImportNavaids, "I\n810 Version\n2 48 -123 0 396 25 0 PA RITTS NDB\n99\n"), "");
  EXPECT_EQ(m_sink.ndbs[0].magVar, 125);
  ASSERT_EQ(Import(ImportAirways, "I\n640 Version\nAAA 0 10 BBB 0 11 1 30 180 V1\n99\n"), "");
  EXPECT_EQ(m_sink.segments[0].course.Word(), K7Course(775, K7Course::MAGNETIC).Word());
}

TEST_F(NavImport, PutsNavaidsTogether) {
  ASSERT_EQ(
      Import(ImportAirports,
             "I\n1000 Version\n1 606 1 0 KPAE Paine\n"
             "100 46 1 0 0 1 2 0 16R 47.92 -122.285 0 0 0 2 1 1 34L 47.895 -122.285 100 0 0 0 0 1\n99\n"),
      "");
  ASSERT_EQ(Import(ImportNavaids,
                   "I\n810 Version\n"
                   "12 47.4355 -122.3097 354 11680 130 0 SEA SEATTLE VORTAC\n"
                   "12 40 -100 354 11680 130 0 SEA FAR AWAY VOR-DME\n"
                   "3 47.4354 -122.3096 0 11680 130 19 SEA SEATTLE VORTAC\n"
                   "3 47.9 -122.2 670 11060 40 20 PAE PAINE VOR-DME\n"
                   "13 48.3 -122.6 51 11380 130 0 NUW WHIDBEY TACAN\n"
                   "6 47.918 -122.287 577 10930 10 320179.13 IPAE KPAE 16R GS\n"
                   "12 47.918 -122.287 577 10930 18 0 IPAE KPAE 16R DME-ILS\n"
                   "4 47.89275 -122.28522 565 10930 18 179.13 IPAE KPAE 16R ILS-cat-I\n"
                   "2 48.053 -122.289 0 396 25 0 PA RITTS NDB\n"
                   "2 48.2 -122.289 0 397 25 0 PB OTHER NDB\n"
                   "7 48.0528 -122.2887 0 0 0 179.1 ---- KPAE 16R OM\n99\n"),
            "");
  std::vector<std::string> kinds;
  for (const K7VHFNavaid& vor : m_sink.vors)
    kinds.push_back(std::string(vor.ident) + " " + std::to_string(vor.flags));
  std::sort(kinds.begin(), kinds.end());
  // VOR 1, DME 2, TACAN 0x100.
  EXPECT_EQ(kinds, (std::vector<std::string>{"NUW 256", "PAE 3", "SEA 2", "SEA 257"}));
  ASSERT_EQ(m_sink.localizers.size(), 1u);
  const K7LocalizerGlideslope& localizer = m_sink.localizers[0];
  EXPECT_EQ(localizer.flags, K7LocalizerGlideslope::GLIDESLOPE | K7LocalizerGlideslope::DME);
  EXPECT_EQ(localizer.gsAngle, 320);
  EXPECT_EQ(localizer.airport, m_sink.airports[0].key);
  EXPECT_EQ(localizer.runway, m_sink.runways[0].key);
  EXPECT_EQ(m_sink.Count(K7NAV_TERMINAL_NDB), 1u);  // the one at the marker
  EXPECT_EQ(m_sink.Count(K7NAV_ENROUTE_NDB), 1u);
}

TEST_F(NavImport, RunwaysFromTheirEnds) {
  ASSERT_EQ(Import(ImportAirports,
                   "I\n1000 Version\n100 46 1 0 0 0 0 0 9 0 0 0 0 0 0 0 0 27 0 0.02 0 0 0 0 0 0\n"
                   "1 100 1 0 XEQU [X] On the equator [MIL]\n"
                   "100 45.72 3 0 0 1 2 0 9 0 179.99 30.48 60.96 0 1 1 1 27 0 -179.99 0 0 0 0 0 0\n"
                   "1 5 0 0 XNOW Nowhere\n17 20 0 0 XPAD [H] Pad\n102 H1 10 20 90 15 30 2\n99\n"),
            "");
  ASSERT_EQ(m_sink.airports.size(), 2u);
  EXPECT_EQ(m_log.Count(), 2);  // a runway of no airport, an airport without a place
  const K7Airport& airport = m_sink.airports[0];
  EXPECT_EQ(airport.flags, K7Airport::TOWER | K7Airport::MILITARY);
  EXPECT_NEAR(std::fabs(Degrees(airport.lon)), 180, 1e-5);
  // 0.02 degrees of the WGS 84 equator are 6378137 x 0.02 x pi / 180 = 2226.39 m = 7304 ft.
  EXPECT_EQ(airport.longestRunway, 73);
  const K7Runway& east = m_sink.runways[0];
  EXPECT_STREQ(east.ident, "09");
  EXPECT_STREQ(east.airportIdent, "XEQU");
  EXPECT_EQ(east.length, 7304);
  EXPECT_EQ(east.width, 150);
  EXPECT_EQ(east.trueBrg, 900);
  EXPECT_EQ(m_sink.runways[1].trueBrg, 2700);
  EXPECT_EQ(east.displacedThreshold, 100);
  EXPECT_EQ(east.stopway, 200);
  EXPECT_EQ(east.surface, 16);  // turf
  EXPECT_EQ(m_sink.airports[1].flags, K7Airport::HELIPORT);
  EXPECT_EQ(m_sink.runways[2].trueBrg, 900);
}

// A chain A-B-C-D with a branch C-E, and a ring P-Q-R of the same name: whatever the order of the rows.
TEST_F(NavImport, AirwaysComeInOrder) {
  const std::string fixes =
      "I\n600 Version\n0 0 A\n0 1 B\n0 2 C\n0 3 D\n-1 2 E\n10 0 P\n11 1 Q\n10 2 R\n40 0 B\n99\n";
  std::vector<std::string> rows = {
      "A 0 0 B 0 1 1 20 180 V1",   "C 0 2 B 0 1 1 170 180 X2-V1", "C 0 2 D 0 3 1 20 180 V1",
      "E -1 2 C 0 2 1 20 180 V1",  "P 10 0 Q 11 1 1 20 180 V1",   "R 10 2 Q 11 1 1 20 180 V1",
      "R 10 2 P 10 0 1 20 180 V1", "B 0 1 A 0 0 1 10 100 V1",     "A 0 0 B 0 1 2 180 460 V1"};
  std::mt19937 random(8);
  std::vector<std::string> first;
  for (int round = 0; round < 20; ++round) {
    m_sink = ListSink();
    m_run.places = {};
    ASSERT_EQ(Import(ImportFixes, fixes), "");
    std::string text = "I\n640 Version\n";
    for (const std::string& row : rows) text += row + "\n";
    ASSERT_EQ(Import(ImportAirways, text + "99\n"), "");
    std::vector<std::string> chains;
    for (const K7AirwayHeader& header : m_sink.headers) {
      std::string chain = std::string(header.ident) + ":";
      uint32_t sequence = 0;
      for (const K7AirwaySeg& segment : m_sink.segments) {
        if (segment.header != header.key) continue;
        EXPECT_EQ(segment.sequence, sequence);
        if (sequence++ == 0) {
          chain += " " + std::string(segment.fromIdent);
          EXPECT_EQ(segment.key.Idx(), header.firstSeg);
          EXPECT_EQ(segment.fromKey, header.fromKey);
        }
        chain += " " + std::string(segment.toIdent);
      }
      EXPECT_EQ(sequence, header.segCount);
      chains.push_back(chain);
    }
    EXPECT_EQ(chains,
              (std::vector<std::string>{"V1: A B C D", "V1: E C", "V1: P Q R P", "X2: B C", "V1: A B"}));
    std::shuffle(rows.begin(), rows.end(), random);
  }
  const auto ab =
      std::find_if(m_sink.segments.begin(), m_sink.segments.end(), [](const K7AirwaySeg& segment) {
        return segment.key.NavType() == K7NAV_LOW_AIRWAY && segment.fromIdent[0] == 'A';
      });
  ASSERT_NE(ab, m_sink.segments.end());
  EXPECT_EQ(ab->mea.Word(), K7Alt(1000).Word());  // of two rows for parts of its height
  EXPECT_EQ(ab->maa.Word(), K7Alt(18000, K7Alt::FLIGHT_LEVEL).Word());
  EXPECT_EQ(ab->distance, 6000u);
  EXPECT_EQ(ab->course.Word(), K7Course(900, K7Course::TRUE_NORTH).Word());
  EXPECT_EQ(ab->courseOpposite.Tenths(), 2700u);
  EXPECT_EQ(ab->toKey.Idx(), 1u);  // the B of the equator, not that of 40 north
  EXPECT_EQ(m_log.Count(), 0);
}

TEST_F(NavImport, LimitsOfAirspaces) {
  const struct {
    const char* text;
    K7Alt limit;
  } cases[] = {{"FL95", K7Alt(9500, K7Alt::FLIGHT_LEVEL)},
               {"fl 100", K7Alt(10000, K7Alt::FLIGHT_LEVEL)},
               {"4500ft MSL", K7Alt(4500)},
               {"1500ft AGL", K7Alt(1500, K7Alt::ABOVE_GROUND)},
               {"300 ASFC", K7Alt(300, K7Alt::ABOVE_GROUND)},
               {"SFC", K7Alt(K7Alt::GROUND)},
               {"GND", K7Alt(K7Alt::GROUND)},
               {"UNL", K7Alt(K7Alt::UNLIMITED)},
               {"1500M AMSL", K7Alt(1500, K7Alt::METRIC)},
               {"2500", K7Alt(2500)}};
  // The bare text "" and words are no limits.
  for (const auto& c : cases)
    EXPECT_EQ(
        Import(ImportAirspaces, std::string("AC R\nAL ") + c.text + "\nV X=10:00:00 N 010:00:00 E\nDC 5\n"),
        "");
  ASSERT_EQ(m_sink.floors.size(), std::size(cases));
  for (size_t i = 0; i < std::size(cases); ++i)
    EXPECT_EQ(m_sink.floors[i].Word(), cases[i].limit.Word()) << cases[i].text;
  EXPECT_EQ(m_log.Count(), 0);
  for (const char* bad : {"", "FL", "12 parsecs", "-5", "FL-3", "1e3", "ASK"})
    Import(ImportAirspaces, std::string("AC R\nAL ") + bad + "\n");
  EXPECT_EQ(m_log.Count(), 14);  // each limit, and each airspace without a boundary
  EXPECT_EQ(Import(ImportAirspaces, "AC R\nV Q=1\nV D=-\nV X=10:00:00 N 010:00:00 E\nDC 5\n"), "");
  EXPECT_EQ(m_log.Count(), 15) << "no such variable";
}

namespace {

// A place on a small circle by vectors: the centre turned towards the bearing.
void PlaceOn(double lat0, double lon0, double nm, double bearing, double& lat, double& lon) {
  const double rad = M_PI / 180, d = nm / 3437.74677, b = bearing * rad;
  const double sl = std::sin(lat0 * rad), cl = std::cos(lat0 * rad);
  const double up = std::cos(d), north = std::sin(d) * std::cos(b), east = std::sin(d) * std::sin(b);
  lat = std::asin(sl * up + cl * north) / rad;
  lon = lon0 + std::atan2(east, cl * up - sl * north) / rad;
}

}  // namespace

TEST_F(NavImport, BoundsHoldTheBulgesOfArcs) {
  std::mt19937 random(27);
  const auto pick = [&](double low, double high) {
    return std::uniform_real_distribution<>(low, high)(random);
  };
  for (int round = 0; round < 300; ++round) {
    const double lat = std::round(pick(-80, 80) * 3600) / 3600,
                 lon = std::round(pick(-180, 180) * 3600) / 3600;
    const double radius = pick(1, 400), from = std::floor(pick(0, 360)),
                 to = std::fmod(from + std::floor(pick(10, 350)), 360);
    const bool counter = round % 2 != 0, circle = round % 5 == 0;
    char text[400];
    std::snprintf(text, sizeof text, "AC D\nAN X\nV X=%.8f %c %.8f %c\nV D=%c\n%s %.4f%s\n", std::fabs(lat),
                  lat < 0 ? 'S' : 'N', std::fabs(lon), lon < 0 ? 'W' : 'E', counter ? '-' : '+',
                  circle ? "DC" : "DA", radius,
                  circle ? "" : ("," + std::to_string(from) + "," + std::to_string(to)).c_str());
    m_sink = ListSink();
    ASSERT_EQ(Import(ImportAirspaces, text), "");
    ASSERT_EQ(m_sink.areas.size(), 1u) << text;
    double sweep = counter ? from - to : to - from;
    if (sweep < 0) sweep += 360;
    if (circle) sweep = 360;
    double north = -90, south = 90, east = -1e9, west = 1e9;
    for (int i = 0; i <= 3600; ++i) {
      double y, x;
      PlaceOn(lat, lon, radius, (circle ? 0 : from) + (counter ? -1 : 1) * sweep * i / 3600, y, x);
      north = std::max(north, y);
      south = std::min(south, y);
      east = std::max(east, x);
      west = std::min(west, x);
    }
    const K7NavArea& area = m_sink.areas[0];
    EXPECT_GE(Degrees(area.north), north - 1e-9) << text;
    EXPECT_LE(Degrees(area.south), south + 1e-9) << text;
    EXPECT_GE(std::remainder(Degrees(area.east) - east, 360), -1e-9) << text;
    EXPECT_LE(std::remainder(Degrees(area.west) - west, 360), 1e-9) << text;
    if (circle) {
      EXPECT_LT(Degrees(area.north) - north, 1e-4) << text;
      EXPECT_LT(std::remainder(Degrees(area.east) - east, 360), 1e-4) << text;
    }
  }
}

TEST_F(NavImport, PiecesOfBoundariesJoin) {
  ASSERT_EQ(
      Import(
          ImportAirspaces,
          "* ring\nAC D\nAN SHELF\nV X=48:00:00 N 122:00:00 W\nDA 10,350,90\nV D=-\nDA 5,90,350\n"
          "AC R\nAN R6714 YAKIMA\nV X=48:00:00 N 122:00:00 W\nDB 48:10:00 N 122:00:00 W, 48:00:00 N "
          "121:45:03 W\n"
          "DP 48:00:00 N 122:00:00 W\nDP 48:10:00 N 122:00:00 W\n"
          "AC P\nAN BROKEN\nDP 48:00:00 N 122:00:00 W\nDP 48:99:00 N 122:00:00 W\nDP 49:00:00 N 122:00:00 W\n"
          "AC Q\nAN TWO POINTS\nDP 48:00:00 N 122:00:00 W\nDP 49:00:00 N 122:00:00 W\n"),
      "");
  ASSERT_EQ(m_sink.areas.size(), 2u);
  EXPECT_EQ(m_log.Count(), 2);
  std::string vias;
  for (const K7AirspaceSeg& piece : m_sink.pieces) vias += piece.via;
  // The direction turns back at each airspace.
  EXPECT_EQ(vias, "RGLGRGG");
  EXPECT_EQ(m_sink.classes, "D");
  EXPECT_EQ(m_sink.areas[0].type, K7CtrlAirspace::CONTROL_AREA);
  EXPECT_EQ(m_sink.areas[1].firstSeg, 4u);
  EXPECT_EQ(m_sink.areas[1].segCount, 3u);
  EXPECT_EQ(m_sink.areas[1].type, K7SUAirspace::RESTRICTED);
  EXPECT_NEAR(m_sink.pieces[4].radius, 10, 0.001);
  EXPECT_NEAR(m_sink.pieces[4].endBrg, 89.9, 0.2);
  for (const K7NavArea& area : m_sink.areas)
    for (uint32_t i = 0; i < area.segCount; ++i) {
      const K7AirspaceSeg& piece = m_sink.pieces[area.firstSeg + i];
      const K7AirspaceSeg& next = m_sink.pieces[area.firstSeg + (i + 1) % area.segCount];
      EXPECT_EQ(piece.airspace, area.key);
      EXPECT_NEAR(Degrees(piece.endLat), Degrees(next.lat), 1e-6);
      EXPECT_NEAR(Degrees(piece.endLon), Degrees(next.lon), 1e-6);
    }
}
