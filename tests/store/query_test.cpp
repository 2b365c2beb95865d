#include "store/scene.h"

namespace {

void AddFix(Scene& scene, const char* ident, double lat, double lon) {
  scene.writer.Add(*MakeFix<K7Waypoint>(K7NAV_ENROUTE_FIX, ident, lat, lon));
}

}  // namespace

TEST(Store, FindsByIdentifierAndName) {
  Scene scene;
  for (const char* ident : {"JAWBN", "LAKEY", "JAWBM", "KOMO", "JAWBN", "AJWBN", "XAWBN", "JAW"})
    AddFix(scene, ident, 47, -122);
  const char* names[] = {"Z\xDCRICH", "Geneva", "z\xFCrichberg"};
  for (const char* name : names) {
    const auto airport = MakeFix<K7Airport>(K7NAV_AIRPORT, name, 47, 8);
    airport->name = name;
    airport->elev = static_cast<int16_t>(name[0]);
    std::memcpy(airport->icao, "LS", 2);
    scene.writer.Add(*airport);
  }
  scene.Open();
  K7NavData& store = scene.store;
  using List = std::vector<int>;
  EXPECT_EQ(Indexes(store.IdentQuery(K7NAV_ENROUTE_FIX, "jawbn")), (List{0, 4}));
  EXPECT_EQ(Indexes(store.IdentQuery(K7NAV_ENROUTE_FIX, "J")), List{});
  EXPECT_EQ(Indexes(store.IdentQuery(K7NAV_AIRPORT_COMM, "J")), List{});
  EXPECT_EQ(Indexes(store.IdentQuery(K7NAV_VOR, "J")), List{});
  EXPECT_EQ(Indexes(store.IdentQuery(static_cast<K7NavType>(500), "J")), List{});
  EXPECT_EQ(store.IdentQuery(K7NAV_VOR, nullptr), nullptr);
  EXPECT_EQ(Indexes(store.IdentPrefixQuery(K7NAV_ENROUTE_FIX, "jaw")), (List{7, 2, 0, 4}));
  // One letter changed, then one exchange; both before two left out.
  EXPECT_EQ(Indexes(store.SimilarIdentQuery(K7NAV_ENROUTE_FIX, "JAWBN", 10)), (List{0, 4, 5, 2, 6, 7}));
  EXPECT_EQ(Indexes(store.SimilarIdentQuery(K7NAV_ENROUTE_FIX, "jawbx", 2)), (List{2, 0}));
  EXPECT_EQ(Indexes(store.SimilarIdentQuery(K7NAV_ENROUTE_FIX, "QQQQQ", 5)), List{});
  EXPECT_EQ(Indexes(store.NameQuery(K7NAV_AIRPORT, "Z\xFCrich")), (List{0, 2}));
  EXPECT_EQ(Indexes(store.RegionQuery(K7NAV_AIRPORT, "ls")), (List{0, 1, 2}));
  EXPECT_EQ(Indexes(store.AllQuery(K7NAV_AIRPORT)), (List{0, 1, 2}));
  EXPECT_EQ(store.GetCount(K7NAV_AIRPORT), 3);
  const char* fields[] = {"Name", "Elev", nullptr};
  EXPECT_EQ(Indexes(store.AllQuery(K7NAV_AIRPORT, "GEN", fields, K7NavData::SEARCH_PREFIX)), List{1});
  EXPECT_EQ(Indexes(store.AllQuery(K7NAV_AIRPORT, "90", fields, K7NavData::SEARCH_WHOLE)), List{0});
  EXPECT_EQ(Indexes(store.AllQuery(K7NAV_AIRPORT, "RICH", fields, K7NavData::SEARCH_ANYWHERE)), (List{0, 2}));
  const char* none[] = {"No such field", nullptr};
  EXPECT_EQ(store.AllQuery(K7NAV_AIRPORT, "x", none, K7NavData::SEARCH_WHOLE), nullptr);
}

TEST(Store, LinesAlongALineComeInOrder) {
  Scene scene;
  const double ends[][4] = {{-1, 5, 1, 5}, {0.5, 7, 0.5, 9}, {0.2, 1, 3, 2}, {-5, 5, -2, 5}, {0, -2, 0, 30}};
  for (const auto& [fromLat, fromLon, toLat, toLon] : ends) {
    const auto seg = Make<K7AirwaySeg>(K7NAV_LOW_AIRWAY);
    seg->fromLat = K7NavData::DecDeg2FixPt(fromLat);
    seg->fromLon = K7NavData::DecDeg2FixPt(fromLon);
    seg->toLat = K7NavData::DecDeg2FixPt(toLat);
    seg->toLon = K7NavData::DecDeg2FixPt(toLon);
    scene.writer.Add(*seg);
  }
  scene.Open();
  NavStore& store = scene.store;
  using List = std::vector<int>;
  const K7LatLon from(0, 0), to(0, 10);
  EXPECT_EQ(Indexes(store.LineQuery(K7NAV_LOW_AIRWAY, from, to, 20)), (List{4, 2, 0}));
  EXPECT_EQ(Indexes(store.LineQuery(K7NAV_LOW_AIRWAY, from, to, 31)), (List{4, 2, 0, 1}));

  K7NavKeyArray keys;
  for (const uint32_t idx : {3u, 9u, 1u}) keys += K7NavKey(idx, K7NAV_LOW_AIRWAY);
  const std::unique_ptr<K7NavQueryResult> result(store.KeyQuery(keys));
  const auto added = Make<K7AirwaySeg>(K7NAV_LOW_AIRWAY);
  result->AddRec(added.get());
  for (int round = 0; round < 2; round++) {
    for (const uint32_t idx : {3u, 1u}) EXPECT_EQ(result->Next()->key.Idx(), idx);
    EXPECT_EQ(result->Next(), added.get());
    EXPECT_EQ(result->Next(), nullptr);
    EXPECT_TRUE(result->Rewind());
  }
}

TEST(Store, FindsWhatBelongsTogether) {
  Scene scene;
  const auto airport = MakeFix<K7Airport>(K7NAV_AIRPORT, "KSEA", 47.45, -122.31);
  airport->city = "Seattle";
  airport->longestRunway = 119;
  const K7NavKey ksea = scene.writer.Add(*airport);
  const K7NavKey strip = scene.writer.Add(*MakeFix<K7Airport>(K7NAV_AIRPORT, "WA00", 47.0, -122.0));
  for (const char* ident : {"16L", "34R", "16R", "34L", "09", "N", "S"}) {
    const auto runway = MakeFix<K7Runway>(K7NAV_RUNWAY, ident, 47.45, -122.31);
    runway->airport = ident[0] == '0' ? strip : ksea;
    scene.writer.Add(*runway);
  }
  const auto localizer = MakeFix<K7LocalizerGlideslope>(K7NAV_LOCALIZER, "ISEA", 47.46, -122.31);
  localizer->airport = ksea;
  localizer->runway = K7NavKey(1, K7NAV_RUNWAY);
  scene.writer.Add(*localizer);
  for (const uint32_t sequence : {2, 0, 1}) {
    const auto leg = Make<K7ProcedureLeg>(K7NAV_SID);
    leg->airport = ksea;
    std::memcpy(leg->procedureIdent, sequence == 1 ? "ALPHA1" : "SUMMA2", 6);
    leg->sequence = static_cast<uint16_t>(sequence);
    scene.writer.Add(*leg);
    const auto seg = Make<K7AirwaySeg>(sequence ? K7NAV_LOW_AIRWAY : K7NAV_HIGH_AIRWAY);
    seg->header = K7NavKey(0, K7NAV_AIRWAY_HEADER);
    seg->sequence = sequence;
    seg->fromKey = K7NavKey(sequence, K7NAV_VOR);
    seg->toKey = K7NavKey(sequence + 1, K7NAV_VOR);
    scene.writer.Add(*seg);
  }
  for (const uint32_t note : {1, 0, 1}) {
    const auto link = Make<K7SmartNoteLink>(K7NAV_SMART_NOTE_LINK);
    link->navData = ksea;
    link->smartNote = K7NavKey(note, K7NAV_SMART_NOTE);
    scene.writer.Add(*link);
  }
  for (int i = 0; i < 2; i++) scene.writer.Add(*Make<K7SmartNotes>(K7NAV_SMART_NOTE));
  const auto index = Make<K7NoteIndex>(K7NAV_NOTE_INDEX);
  index->uri = "notes/k1";
  index->value = "K1";
  scene.writer.Add(*index);
  const auto regional = Make<K7RegionalNote>(K7NAV_REGIONAL_NOTE);
  regional->uri = "notes/k1";
  scene.writer.Add(*regional);
  for (const int elev : {500, 1400, 900}) {
    const auto obstacle = Make<K7Obstacle>(elev == 900 ? K7NAV_OBSTACLE : K7NAV_OBSTACLE_55);
    obstacle->lat = airport->lat;
    obstacle->lon = airport->lon + elev * 1000;
    obstacle->elev = static_cast<int16_t>(elev);
    scene.writer.Add(*obstacle);
  }
  for (const auto& [lat, lon] : {std::pair<int16_t, int16_t>{-90, -180}, {89, 179}, {47, -123}}) {
    const auto mora = Make<K7Mora>(K7NAV_MORA);
    mora->lat = lat;
    mora->lon = lon;
    scene.writer.Add(*mora);
  }
  // A key to a record that comes later.
  airport->fir = K7NavKey(3, K7NAV_FIR);
  EXPECT_TRUE(scene.writer.Update(*airport));
  airport->key = K7NavKey(2, K7NAV_AIRPORT);
  EXPECT_FALSE(scene.writer.Update(*airport));
  scene.writer.SetSource("Survey \xA9 2025", 2513, 2, 20000, 20028);
  scene.Open();

  NavStore& store = scene.store;
  using List = std::vector<int>;
  EXPECT_EQ(Indexes(store.AirportRunways(ksea)), (List{0, 1, 2, 3, 5, 6}));
  EXPECT_EQ(Indexes(store.AirportLocalizers(ksea)), List{0});
  EXPECT_EQ(Indexes(store.AirportComms(ksea)), List{});
  EXPECT_EQ(Indexes(store.AirportProcedures(ksea, K7NAV_SID)), (List{2, 1, 0}));
  EXPECT_EQ(Indexes(store.AirwaySegments(K7NavKey(0, K7NAV_AIRWAY_HEADER))), (List{0, 1, 0}));
  EXPECT_EQ(Indexes(store.FixAirways(K7NavKey(2, K7NAV_VOR))), (List{0, 1}));
  EXPECT_EQ(Indexes(store.RecordNotes(ksea)), (List{1, 0}));
  EXPECT_EQ(Indexes(store.NoteLinks(K7NavKey(1, K7NAV_SMART_NOTE))), (List{0, 2}));
  EXPECT_EQ(Indexes(store.RegionalNotes("k1")), List{0});
  const auto runway = [](uint32_t idx) { return K7NavKey(idx, K7NAV_RUNWAY); };
  for (const auto& [end, other] : {std::pair(0u, 1u), {1u, 0u}, {2u, 3u}, {5u, 6u}}) {
    ASSERT_TRUE(store.OppositeRunway(runway(end))) << end;
    EXPECT_EQ(store.OppositeRunway(runway(end))->key, runway(other));
  }
  EXPECT_EQ(store.OppositeRunway(runway(4)), nullptr);
  EXPECT_EQ(store.RunwayLocalizer(runway(1)), store.GetRec(K7NavKey(0, K7NAV_LOCALIZER)));
  EXPECT_EQ(store.RunwayLocalizer(runway(0)), nullptr);

  const K7ChartRect around(48, 46, -120, -123);
  EXPECT_EQ(Indexes(store.AirportsByRunway(around, 11900)), List{0});
  EXPECT_EQ(Indexes(store.AirportsByRunway(around, 11901)), List{});
  ASSERT_TRUE(store.HighestObstacle(around));
  EXPECT_EQ(store.HighestObstacle(around)->key, K7NavKey(1, K7NAV_OBSTACLE_55));
  EXPECT_EQ(store.HighestObstacle(K7ChartRect(1, 0, 1, 0)), nullptr);
  const auto mora = [&](double lat, double lon) {
    const K7NavRec* rec = store.MoraAt(K7LatLon(lat, lon));
    return rec ? static_cast<int>(rec->key.Idx()) : -1;
  };
  EXPECT_EQ(mora(47, -123), 2);
  EXPECT_EQ(mora(47.999, -122.001), 2);
  EXPECT_EQ(mora(48, -122.5), -1);
  EXPECT_EQ(mora(90, 179.5), 1);
  EXPECT_EQ(mora(-90, 180), 0);

  const K7NavRec* rec = store.GetRec(ksea);
  ASSERT_TRUE(rec);
  EXPECT_EQ(rec, store.GetRec(ksea));
  EXPECT_EQ(static_cast<const K7Airport*>(rec)->fir, K7NavKey(3, K7NAV_FIR));
  K7String text;
  EXPECT_EQ(store.GetLocation(*localizer, text), 0);
  EXPECT_STREQ(text, "1 NM N of Seattle");
  EXPECT_EQ(store.GetSource(text), 0);
  EXPECT_STREQ(text, "Survey \xA9 2025");
  int cycle, revision;
  unsigned from, until;
  EXPECT_EQ(store.GetDataCycle(K7NavData::STORE_NAVDATA, 0, &cycle, &revision), 0);
  EXPECT_EQ(store.GetEffectivity(K7NavData::STORE_NAVDATA, 0, &from, &until, nullptr), 0);
  EXPECT_EQ(cycle * 10 + revision, 25132);
  EXPECT_EQ(until - from, 28u);
  EXPECT_TRUE(store.GetExtent().PtIn(47.45, -122.31));

  const std::unique_ptr<K7NavRec> copy(store.CopyRec(const_cast<K7NavRec*>(rec)));
  store.FreeRecs();
  store.GetRec(strip);
  EXPECT_STREQ(static_cast<const K7Airport*>(copy.get())->city, "Seattle");
}
