// A layer over a shapefile set: what areas find, triangles, texts of other code pages.

#include <k7/foundation/error_string.h>
#include <k7/geometry.h>
#include <k7/io/io.h>
#include <k7/io/xml_elem.h>
#include <k7/projection/map_features.h>

#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

std::string Sample(const char* set) { return std::string(K7_SAMPLE_DATA) + "/" + set + ".shp"; }

template <class T>
void Put(Bytes& out, T value) {
  const auto* const raw = reinterpret_cast<const unsigned char*>(&value);
  out.insert(out.end(), raw, raw + sizeof value);
}
void PutBig(Bytes& out, int value) { Put(out, __builtin_bswap32(static_cast<unsigned>(value))); }

using Ring = std::vector<K7ShpXY>;
constexpr K7ShpRect NOWHERE{-80, -80, -80, -80};

// "a.shp" with a polygon for each element of `areas`, with a box that has nothing to do with it, whose one
// attribute `field` is `text`.
void PutPolygons(MemIO& io, const std::vector<std::vector<Ring>>& areas, const std::string& text,
                 uint8_t driver = 0, const std::string& field = "NAME") {
  Bytes main(100);
  for (const std::vector<Ring>& rings : areas) {
    int points = 0;
    for (const Ring& ring : rings) points += static_cast<int>(ring.size());
    const int parts = static_cast<int>(rings.size());
    PutBig(main, 1), PutBig(main, (44 + 4 * parts + 16 * points) / 2);
    Put(main, 5), Put(main, NOWHERE), Put(main, parts), Put(main, points);
    int start = 0;
    for (const Ring& ring : rings) Put(main, start), start += static_cast<int>(ring.size());
    for (const Ring& ring : rings)
      for (const K7ShpXY& p : ring) Put(main, p);
  }
  Bytes head;
  PutBig(head, 9994);
  head.resize(24);
  PutBig(head, static_cast<int>(main.size() / 2));
  Put(head, 1000), Put(head, 5);
  std::copy(head.begin(), head.end(), main.begin());
  io.Put("a.shp", main);
  io.Put("a.shx", Bytes(108));
  Bytes dbf = {3, 126, 8, 1};
  Put(dbf, static_cast<int>(areas.size())), Put(dbf, uint16_t{65});
  Put(dbf, static_cast<uint16_t>(text.size() + 1));
  dbf.resize(29);
  dbf.push_back(driver);
  dbf.resize(32);
  for (const char c : field) dbf.push_back(static_cast<unsigned char>(c));
  dbf.resize(43);
  dbf.push_back('C');
  dbf.resize(48);
  dbf.push_back(static_cast<unsigned char>(text.size()));
  dbf.resize(64);
  dbf.push_back(0x0D);
  for (size_t i = 0; i < areas.size(); ++i) {
    dbf.push_back(' ');
    dbf.insert(dbf.end(), text.begin(), text.end());
  }
  io.Put("a.dbf", dbf);
}
void PutPolygon(MemIO& io, const Ring& ring, const std::string& text, uint8_t driver = 0) {
  PutPolygons(io, {{ring}}, text, driver);
}

const Ring SQUARE = {{0, 0}, {0, 2}, {2, 2}, {2, 0}, {0, 0}};

double AreaOf(K7ShapeRec& record) {
  double sum = 0;
  for (int poly = 0; poly < record.GetPolyCount(); ++poly) {
    double lat0, lon0, lastLat = 0, lastLon = 0;
    EXPECT_EQ(record.GetPolyPoint(poly, 0, lat0, lon0), 0);
    for (int i = 0; i < record.GetPolySize(poly); ++i) {
      double lat, lon;
      EXPECT_EQ(record.GetPolyPoint(poly, i, lat, lon), 0);
      if (i > 0) sum += (lon - lastLon) * (lat + lastLat - 2 * lat0) / 2;
      lastLat = lat, lastLon = lon;
    }
  }
  return sum;
}

double AreaOfTriangles(K7ShapeRec& record) {
  const K7STessGroup* groups = nullptr;
  const int count = record.GetTessGroups(groups);
  EXPECT_EQ(count, record.GetTessGroupCount());
  double sum = 0;
  for (int g = 0; g < count; ++g) {
    const K7ShpXY* const v = record.GetTriVerts() + groups[g].firstVertex;
    const uint16_t* const index = record.GetTriVertIndices() + groups[g].firstIndex;
    EXPECT_LE(groups[g].firstVertex + groups[g].vertexCount, record.GetTriVertCount());
    for (int i = 0; i < groups[g].indexCount; i += 3) {
      const K7ShpXY a = v[index[i]], b = v[index[i + 1]], c = v[index[i + 2]];
      EXPECT_LT(std::max({index[i], index[i + 1], index[i + 2]}), groups[g].vertexCount);
      sum += ((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y)) / 2;
    }
  }
  return sum;
}

std::set<K7ShapeRec*> All(K7ShapeQuery* made) {
  const std::unique_ptr<K7ShapeQuery> query(made);
  std::set<K7ShapeRec*> found;
  while (K7ShapeRec* const record = query->Next()) found.insert(record);
  EXPECT_EQ(static_cast<size_t>(query->Count()), found.size());
  query->Rewind();
  EXPECT_EQ(query->Next(), query->GetRecord(0));
  EXPECT_EQ(query->GetRecord(query->Count()), nullptr);
  return found;
}

TEST(ShpLayer, AreasFindWhatTheyMeet) {
  for (const char* const set : {"ne_110m_land", "ne_50m_rivers_lake_centerlines", "ne_50m_land"}) {
    K7ShpLayer layer;
    ASSERT_EQ(layer.Read(Sample(set).c_str(), K7IO::Inst()), 0);
    EXPECT_STREQ(layer.Name(), set);
    K7ShapeTable& table = *layer.Table();
    std::minstd_rand random(7);
    std::uniform_real_distribution<double> lats(-90, 90), lons(-180, 180), sizes(0, 25);
    for (int round = 0; round < 300; ++round) {
      const double lat = lats(random), lon = lons(random), size = sizes(random);
      const double east = std::remainder(lon + size, 360);  // below `lon` across 180
      const K7ChartRect area(std::min(lat + size, 90.0), lat, east, lon);
      std::set<K7ShapeRec*> expected;
      for (int i = 0; i < table.RecordCount(); ++i) {
        K7ChartRect box;
        ASSERT_EQ(table.GetRecord(i)->GetBounds(box), 0);
        if (box.AreaIn(area)) expected.insert(table.GetRecord(i));
      }
      EXPECT_EQ(All(table.AreaQuery(area)), expected) << round;
    }
    EXPECT_EQ(All(table.AreaQuery({90, -90, 180, -180})).size(), static_cast<size_t>(table.RecordCount()));
    EXPECT_TRUE(All(table.AreaQuery(K7ChartRect())).empty());
    double least = 60;
    const auto isNorth = [](void* context, double, double south, double, double) -> unsigned char {
      return south >= *static_cast<double*>(context) ? 2 : 0;
    };
    for (K7ShapeRec* const record : All(table.InclusionQuery(isNorth, &least))) {
      K7ChartRect box;
      ASSERT_EQ(record->GetBounds(box), 0);
      EXPECT_GE(box.South(), 60);
    }
  }
}

TEST(ShpLayer, TrianglesFillTheAreaAndAreFreed) {
  K7ShpLayer layer;
  ASSERT_EQ(layer.Read(Sample("ne_50m_land").c_str(), K7IO::Inst()), 0);
  K7ShapeTable& table = *layer.Table();
  const auto touch = [&] {
    for (int i = 0; i < table.RecordCount(); ++i) {
      K7ShapeRec& record = *table.GetRecord(i);
      K7String text;
      double lat, lon;
      record.GetTriVertCount();
      ASSERT_EQ(record.GetPos(lat, lon) + layer.ToXML(&record, K7XML_FULL, text), 0);
      EXPECT_EQ(layer.Features()->Count(), table.RecordCount());
      EXPECT_EQ(All(table.AreaQuery({lat, lat, lon, lon})).count(&record), 1u);
    }
  };
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) threads.emplace_back(touch);
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < table.RecordCount(); ++i) {
    K7ShapeRec& record = *table.GetRecord(i);
    const double area = AreaOf(record);
    EXPECT_NEAR(AreaOfTriangles(record), area, 1e-9 * area) << i;
    double lat, lon;
    ASSERT_EQ(record.GetPos(lat, lon), 0);
    EXPECT_TRUE(layer.Features()->Contains(i, lat, lon)) << i;
  }
  EXPECT_GT(layer.FreeMemCache(), 1'000'000);
  EXPECT_EQ(layer.FreeMemCache(), 0);
  EXPECT_GT(table.GetRecord(0)->GetTriVertCount(), 0);
}

TEST(ShpLayer, LargeAreasComeInGroups) {
  // A comb: its 140,000 corners are more than 16 bits count, and its area is known.
  constexpr int TEETH = 35000;
  std::vector<K7ShpXY> ring = {{0, -1}};
  for (int i = 0; i < TEETH; ++i)
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {0.25, 1.0}, {0.5, 1.0}, {0.75, 0.0}})
      ring.push_back({(i + x) / 512, y});
  ring.push_back({(TEETH - 0.25) / 512, -1});
  ring.push_back(ring.front());
  MemIO io;
  PutPolygon(io, ring, "comb");
  K7ShpLayer layer;
  ASSERT_EQ(layer.Read("a.shp", &io), 0);
  K7ShapeRec& comb = *layer.Table()->GetRecord(0);
  EXPECT_GE(comb.GetTessGroupCount(), 3);
  EXPECT_NEAR(AreaOfTriangles(comb), (TEETH * 0.5 + (TEETH - 0.25)) / 512, 1e-6);
}

TEST(ShpLayer, AreasAcross180AreWhole) {
  constexpr double NOT = std::numeric_limits<double>::quiet_NaN();
  const auto box = [](double west, double east, double south, double north) {
    return Ring{{west, south}, {west, north}, {east, north}, {east, south}};
  };
  // Areas of the first three: 4 x 2 degrees less a hole of 1 x 1, however they are written.
  MemIO io;
  PutPolygons(io,
              {{box(178, -178, 0, 2), box(-180, -179, 0.5, 1.5)},
               {box(178, 182, 0, 2), {}, box(180, 181, 0.5, 1.5)},
               {{{-180, 0.5}, {-180, 1.5}, {-179, 1.5}, {-179, 0.5}}, box(178, -178, 0, 2)},
               {{{1, 1}, {NOT, 3}, {1, 3}, {INFINITY, -INFINITY}, {3, 3}, {3, 1}}},
               {{{5, 5}}, {{6, 6}, {7, 7}}},
               {{{NOT, NOT}, {5e6, 5e6}}},
               {}},
              "x");
  K7ShpLayer layer;
  ASSERT_EQ(layer.Read("a.shp", &io), 0);
  const K7ShapeTable& table = *layer.Table();
  double lat, lon;
  K7ChartRect bounds;
  for (int i = 0; i < 3; ++i) {
    K7ShapeRec& record = *table.GetRecord(i);
    ASSERT_EQ(record.GetBounds(bounds), 0);
    EXPECT_EQ(bounds, K7ChartRect(2, 0, -178, 178));
    EXPECT_NEAR(AreaOfTriangles(record), 7, 1e-12);
    ASSERT_EQ(record.GetPos(lat, lon), 0);
    EXPECT_TRUE(layer.Features()->Contains(i, lat, lon)) << lon;
  }
  EXPECT_EQ(AreaOfTriangles(*table.GetRecord(3)), 4);
  EXPECT_EQ(AreaOfTriangles(*table.GetRecord(4)), 0);
  EXPECT_EQ(table.GetRecord(4)->GetPos(lat, lon), 0);
  for (const int i : {5, 6}) {
    EXPECT_EQ(table.GetRecord(i)->GetBounds(bounds), K7_ERR_NOT_FOUND);
    EXPECT_EQ(table.GetRecord(i)->GetPos(lat, lon), K7_ERR_NOT_FOUND);
    EXPECT_EQ(table.GetRecord(i)->GetTriVertCount(), 0);
  }
  const struct {
    K7ChartRect area;
    size_t found;
  } AREAS[] = {{{1, 1, -178, -178.5}, 3}, {{1, 1, 178, 170}, 3},      {{1, 1, -177, -177.9}, 0},
               {{1, 1, -178, 178}, 3},    {{1, 1, -179.9, 179.9}, 3}, {{1, 1, 180, -180}, 4},
               {{1, 1, 2, 177.9}, 4},     {{0, -9, 180, 180}, 3},     {{9, 2.5, 180, -180}, 2}};
  for (const auto& area : AREAS)
    EXPECT_EQ(All(layer.Table()->AreaQuery(area.area)).size(), area.found) << area.area.West();
}

// A reader that turns metres into degrees, and refuses those in the west.
struct MetreReader : K7ShpFile {
  bool XY2LatLon(const K7ShpXY* xy, double& lat, double& lon) override {
    lat = xy->y / 60 / 1852;
    lon = xy->x / 60 / 1852;
    return lon >= 0;
  }
};

TEST(ShpLayer, AReaderTurnsPointsIntoDegreesOrRefusesThem) {
  constexpr double DEGREE = 60 * 1852;
  MemIO io;
  PutPolygons(io, {{{{0, 0}, {0, DEGREE}, {DEGREE, 0}}}, {{{-1, 0}, {0, DEGREE}, {DEGREE, 0}}}}, "a.shp");
  K7ShpLayer layer;
  ASSERT_EQ(layer.Read("a.shp", &io, new MetreReader), 0);
  K7ShapeTable& table = *layer.Table();
  EXPECT_EQ(table.GetBounds(), K7ChartRect(1, 0, 1, 0));
  EXPECT_NEAR(AreaOfTriangles(*table.GetRecord(0)), 0.5, 1e-12);
  double lat, lon;
  EXPECT_EQ(table.GetRecord(1)->GetPos(lat, lon), K7_ERR_NOT_FOUND);
  EXPECT_EQ(layer.Features()->PointCount(1) + table.GetRecord(1)->GetTriVertCount(), 0);
  // Once more, by a path that is the layer's own.
  K7ShapeAttrib path;
  ASSERT_EQ(table.GetAttrib(*table.GetRecord(0), 0, path), 0);
  ASSERT_EQ(layer.Read(path, &io), 0);
  EXPECT_EQ(layer.Table()->GetBounds(), K7ChartRect(0, 0, 0, -1));
}

TEST(ShpLayer, APlaceIsOnePoint) {
  MemIO io;
  PutPolygons(io, {{}}, "x");
  Bytes main(100);
  PutBig(main, 1), PutBig(main, 10);
  Put(main, int{K7_SHP_POINT}), Put(main, K7ShpXY{190, 3});
  io.Put("a.shp", main);
  K7ShpLayer layer;
  ASSERT_EQ(layer.Read("a.shp", &io), 0);
  EXPECT_EQ(layer.Features()->PointCount(0), 1);
  K7ShapeRec& place = *layer.Table()->GetRecord(0);
  double lat, lon;
  ASSERT_EQ(place.GetPos(lat, lon), 0);
  EXPECT_TRUE(lat == 3 && lon == -170);
  EXPECT_EQ(place.GetPolySize(0), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(All(layer.Table()->AreaQuery({3, 3, -170, -170})).size(), 1u);
}

TEST(ShpLayer, TextsAreWindows1252) {
  const struct {
    const char *page, *text, *expected;
    uint8_t driver;
  } TEXTS[] = {{"UTF-8",
                "Z\xC3\xBCrich \xC5\x81\xC3\xB3"
                "d\xC5\xBA \xE2\x82\xAC \xE5\x8C\x97 \xE2\x80\x93",
                "Z\xFCrich L\xF3"
                "dz \x80 ? \x96",
                0},
               {"65001\r\n", "\xC3\xA9\xFF\xC3", "\xE9??", 0x57},
               {"utf8\r\n", "\xC3\xA9", "\xE9", 0x57},
               {"UTF-8", "\xC0\xBC\xED\xA0\x80", "??", 0},
               {nullptr, "\x81", "\xFC", 1},
               {"ISO 8859-15", "\xA4", "\x80", 0},
               {"ANSI 1250",
                "\xA3\xF3"
                "d\x9F",
                "L\xF3"
                "dz",
                0},
               {nullptr, "a\tb\x1F<&", "a b <&", 0},
               {"KOI8-R", "\xE9\x8F", "\xE9?", 0},
               {"\xEF\xBB\xBFUTF-8", "\xC8\x98\xCC\x81", "S?", 0}};
  for (const auto& text : TEXTS) {
    MemIO io;
    PutPolygon(io, SQUARE, text.text, text.driver);
    if (text.page) io.Put("a.cpg", std::string(text.page));
    K7ShpLayer layer(K7_SHAPE_PLAIN, 4);
    ASSERT_EQ(layer.Read("a.shp", &io), 0);
    K7ShapeTable& table = *layer.Table();
    K7ShapeAttrib value;
    ASSERT_EQ(table.GetAttrib(*table.GetRecord(0), table.FindAttrib("name"), value), 0);
    EXPECT_STREQ(value, text.expected) << text.text;
    K7String xml;
    ASSERT_EQ(layer.ToXML(table.GetRecord(0), K7XML_FULL, xml), 0);
    K7XmlElem root;
    ASSERT_NE(root.Parse(xml), nullptr);
    EXPECT_STREQ(root.ChildText("NAME"), text.expected);
    EXPECT_STREQ(root.ChildText("Key"), "1");
  }
}

TEST(ShpLayer, WhatIsNotThereIsSaid) {
  MemIO io;
  PutPolygon(io, SQUARE, "x");
  K7ShpLayer layer, other;
  EXPECT_EQ(layer.Table()->RecordCount(), 0);
  EXPECT_EQ(layer.Read("b.shp", &io), K7_ERR_FILE_IO);
  EXPECT_EQ(layer.Read(nullptr, &io), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(layer.File(), nullptr);
  ASSERT_EQ(layer.Read("a.shp", &io), 0);
  ASSERT_EQ(other.Read("a.shp", &io), 0);
  K7ShapeTable& table = *layer.Table();
  K7ShapeRec* const record = table.FindRecord(1);
  ASSERT_NE(record, nullptr);
  EXPECT_TRUE(!table.FindRecord(0) && !table.FindRecord(2) && !table.GetRecord(-1));
  K7ShapeAttrib value;
  EXPECT_EQ(table.FindRecord(INT32_MIN), nullptr);
  EXPECT_EQ(table.GetAttrib(*record, 1, value), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(table.GetAttrib(*other.Table()->GetRecord(0), 0, value), K7_ERR_NOT_FOUND);
  EXPECT_EQ(layer.GetTable(other.Table()->GetRecord(0)), nullptr);
  EXPECT_STREQ(table.AttribName(0), "NAME");
  EXPECT_TRUE(!table.AttribName(1) && table.FindAttrib("other") == -1);
  PutPolygons(io, {{SQUARE}}, "x", 1, "\x81\x01<ELEVENS>");  // no terminator
  ASSERT_EQ(other.Read("a.shp", &io), 0);
  EXPECT_STREQ(other.Table()->AttribName(0), "\xFC <ELEVENS>");
  EXPECT_EQ(other.Table()->FindAttrib(other.Table()->AttribName(0)), 0);
  double lat, lon;
  EXPECT_EQ(record->GetPolyPoint(0, 5, lat, lon), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(record->GetPolySize(1), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(record->GetPos(lat, lon), 0);
  EXPECT_TRUE(lat == 1 && lon == 1);
  EXPECT_EQ(table.GetBounds(), K7ChartRect(2, 0, 2, 0));
}

}  // namespace
