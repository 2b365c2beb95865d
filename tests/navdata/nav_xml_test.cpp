#include "support/small_store.h"

#include <k7/foundation/error_string.h>
#include <k7/io/xml_elem.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <list>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr char DECLARATION[] = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n";
constexpr K7XmlOutputType_t OUTPUTS[] = {K7XML_PLAIN, K7XML_FULL, K7XML_DISPLAY, K7XML_DOCUMENT};
/// Types whose documents have the shared elements only.
const std::set<unsigned> SHARED_ONLY = {19, 31, 32, 33, 34, 35, 36, 38, 40, 43, 47, 58, 59,
                                        60, 61, 62, 63, 64, 65, 66, 67, 69, 70, 71, 72, 73};

std::unique_ptr<K7NavRec> Make(unsigned type) {
  std::unique_ptr<K7NavRec> rec(K7NavData::CreateRecord(static_cast<K7NavType>(type)));
  if (rec) rec->key = K7NavKey(7, static_cast<K7NavType>(type));
  return rec;
}

// `f` with the number, kind and name of each field of a type.
template <class F>
void EachField(K7NavType type, F f) {
  K7NavFieldDataType kind;
  const char *name, *note;
  for (int i = 0; K7NavData::GetFieldInfo(type, i, kind, name, note); i++) f(i, kind, name);
}

// A value for a field of any kind.
K7NavField Value(K7NavFieldDataType kind, double number, const char* text, K7NavKey key = {}) {
  K7NavField value;
  if (kind == K7FIELD_STRING) value.str = text;
  if (kind == K7FIELD_CHAR) value.c = 'H';
  if (kind == K7FIELD_INTEGER || kind == K7FIELD_UNSIGNED) value.i = static_cast<int>(number);
  if (kind == K7FIELD_REAL) value.d = number;
  if (kind == K7FIELD_KEY) value.key = key;
  return value;
}

// Each field a value of its own: numbers from 11 on, texts that begin with a letter of the field's number.
void Fill(K7NavRec& rec, std::vector<std::string>& texts) {
  texts.reserve(static_cast<size_t>(K7NavData::GetFieldCount(rec.Type())));
  EachField(rec.Type(), [&](int i, K7NavFieldDataType kind, const char*) {
    texts.push_back(std::string(1, static_cast<char>('a' + i)) + "<&-text-longer-than-the-room-of-most>");
    const K7NavKey key = rec.key;  // of smart notes it is a field, too
    K7NavData::SetField(&rec, i, Value(kind, 11 + i, texts.back().c_str(), {11, K7NAV_ENROUTE_FIX}));
    rec.key = key;
  });
}

// Sets what "Ident=KSEA;Elev=432" names.
void Set(K7NavRec& rec, const std::string& fields) {
  static std::list<std::string> texts;  // that records point to
  std::istringstream in(fields);
  for (std::string name, text; std::getline(in, name, '=') && std::getline(in, text, ';');) {
    texts.push_back(text);
    const char* const kept = texts.back().c_str();
    if (name == "notes") rec.notes = kept;
    EachField(rec.Type(), [&](int i, K7NavFieldDataType kind, const char* field) {
      if (field == name) K7NavData::SetField(&rec, i, Value(kind, std::atof(kept), kept));
    });
  }
}

// Texts that were not overwritten: some fields lie over others.
void ExpectTexts(const K7NavRec& rec, const std::vector<std::string>& texts, const K7XmlElem& root) {
  std::string found;
  for (const K7XmlElem* child = root.FirstChild(); child; child = child->NextSibling())
    found += child->Text();
  EachField(rec.Type(), [&](int i, K7NavFieldDataType kind, const char* name) {
    K7NavField value;
    if (kind != K7FIELD_STRING || !K7NavData::GetField(&rec, i, &value) || !value.str) return;
    const std::string start = texts[static_cast<size_t>(i)].substr(0, 2);
    const bool isWhole = std::string_view(value.str, 2) == start;
    EXPECT_TRUE(!isWhole || found.find(start) != found.npos) << name << found;
  });
}

bool IsKey(const K7XmlElem& elem) { return std::string_view(elem.Name()).ends_with("Key"); }

void ExpectLabels(const K7XmlElem& elem, bool keysAllowed) {
  for (const K7XmlElem* child = elem.FirstChild(); child; child = child->NextSibling()) {
    SCOPED_TRACE(static_cast<const char*>(child->Name()));
    EXPECT_EQ(std::string_view(child->Name()).find(' '), std::string_view::npos);
    if (IsKey(*child)) {
      EXPECT_TRUE(keysAllowed);
      EXPECT_FALSE(child->ChildText("NavType").IsEmpty());
    } else if (child->FirstChild()) {
      ExpectLabels(*child, keysAllowed);
    } else {
      EXPECT_NE(child->AttribValue("Name"), nullptr);
      EXPECT_EQ(child->NumAttribs(), 1);
    }
  }
}

// The text is what a tree of the same elements is written as.
void ExpectWellFormed(const K7String& text, K7XmlElem& root) {
  ASSERT_TRUE(std::string_view(text).starts_with(DECLARATION));
  int err = 0;
  ASSERT_NE(root.Parse(text, &err), nullptr) << err << '\n' << static_cast<const char*>(text);
  EXPECT_STREQ(root.Name(), "Record");
}

std::string Rendered(K7NavRec& rec, K7XmlOutputType_t output, const char* element, K7NavData* data) {
  K7String text;
  K7XmlElem root;
  EXPECT_EQ(data->ToXML(&rec, output, text), 0);
  ExpectWellFormed(text, root);
  const K7XmlElem* const found = root.Child(element);
  return found ? static_cast<const char*>(found->Text()) : "(none)";
}

}  // namespace

TEST(NavXml, EveryTypeRendersWhatItHolds) {
  SmallStore store;
  for (unsigned type = 0; type < K7NAV_TYPE_COUNT; type++) {
    const auto rec = Make(type);
    if (!rec) continue;
    SCOPED_TRACE(type);
    std::vector<std::string> texts;
    Fill(*rec, texts);
    rec->notes = "all <well> & good";
    for (const K7XmlOutputType_t output : OUTPUTS) {
      SCOPED_TRACE(output);
      K7String text("what was there");
      ASSERT_EQ(store.ToXML(rec.get(), output, text), 0);
      if (type == K7NAV_REGIONAL_NOTE) {
        EXPECT_EQ(std::string(text), output == K7XML_DOCUMENT ? texts[3] : "");
        continue;
      }
      K7XmlElem root;
      ExpectWellFormed(text, root);
      K7String written(DECLARATION);
      ASSERT_EQ(root.Write(written), 0);
      text.Replace("> ", ">");  // reading takes them away
      text.Replace(" </", "</");
      EXPECT_STREQ(text, written);
      EXPECT_STREQ(root.ChildText("OperationalNotes"), "all <well> & good");
      EXPECT_EQ(root.Child("NavKey") != nullptr, output == K7XML_FULL);
      ExpectLabels(root, output == K7XML_FULL);
      if (!SHARED_ONLY.contains(type) && output == K7XML_PLAIN) ExpectTexts(*rec, texts, root);
      // Besides the key, the type and the notes.
      int elements = 0;
      for (const K7XmlElem* child = root.FirstChild(); child; child = child->NextSibling()) elements++;
      EXPECT_EQ(elements - 2 - (output == K7XML_FULL) > 0, !SHARED_ONLY.contains(type));
    }
  }
}

// Texts without NUL, codes beyond every table, numbers that are none.
TEST(NavXml, AnyBytesRender) {
  SmallStore store;
  for (unsigned type = 0; type < K7NAV_TYPE_COUNT; type++) {
    for (const int byte : {0xFF, 0x7F, 0x80, 0x01, 0x78}) {
      const auto rec = Make(type);
      if (!rec) continue;
      SCOPED_TRACE(type);
      const K7NavRec clean = *rec;
      uint8_t* const bytes = reinterpret_cast<uint8_t*>(rec.get());
      const int size = K7NavData::GetRecSize(rec->Type());
      std::set<int> pointers;
      K7NavFieldLayout layout;
      for (int i = 0; K7NavData::GetFieldLayout(rec->Type(), i, layout); i++) {
        if (layout.storage == K7STORE_POINTER) pointers.insert(layout.at);
      }
      // Members that no field names may be pointers, too: only numbers and texts that are fields are filled.
      for (int i = 0; K7NavData::GetFieldLayout(rec->Type(), i, layout); i++) {
        if (layout.bits <= 0 || pointers.contains(layout.at)) continue;
        std::fill(bytes + layout.at, bytes + std::min(size, layout.at + layout.bits / 8), uint8_t(byte));
      }
      if (type == K7NAV_MORA || type == K7NAV_AIRSPACE_SEG)
        std::fill(bytes + sizeof clean, bytes + size, uint8_t(byte));
      static_cast<K7NavRec&>(*rec) = clean;
      for (const K7XmlOutputType_t output : OUTPUTS) {
        K7String text;
        EXPECT_EQ(store.ToXML(rec.get(), output, text), 0);
        EXPECT_TRUE(type == K7NAV_REGIONAL_NOTE || std::string_view(text).ends_with("</Record>\n"));
      }
      const K7NavKey key(7, rec->Type());
      K7String text;
      SmallStore other;
      std::memcpy(static_cast<void*>(&other.Add<K7NavRec>(rec->Type())), rec.get(),
                  static_cast<size_t>(size));
      const int err = other.GetDescriptionByKey(key, text);
      EXPECT_TRUE(err == 0 || err == K7_ERR_NOT_IMPLEMENTED) << err;
    }
  }
}

// Every element with its label, in the published order.
TEST(NavXml, RecordsReadAsPublished) {
  SmallStore store;
  std::ifstream in(K7_TEST_DATA "/navdata/elements.tsv");
  std::string record, wanted, found;
  for (std::string line; std::getline(in, line) || !record.empty();) {
    if (in && !line.starts_with("record\t")) {
      if (!line.starts_with("#")) wanted += line + "\n";
      continue;
    }
    EXPECT_EQ(found, wanted) << record;
    record = line;
    wanted = found = "";
    if (!in) break;
    std::istringstream cells(line);
    std::string cell[5];
    for (std::string& c : cell) std::getline(cells, c, '\t');
    const auto rec = Make(static_cast<unsigned>(std::stoul(cell[1])));
    Set(*rec, cell[3]);
    K7String text;
    K7XmlElem root;
    EXPECT_EQ(store.ToXML(rec.get(), static_cast<K7XmlOutputType_t>(std::stoi(cell[2])), text), 0);
    text.Replace("\xB0", "\xC2\xB0");  // the table is UTF-8
    ExpectWellFormed(text, root);
    for (const K7XmlElem* child = root.FirstChild(); child; child = child->NextSibling()) {
      if (!cell[4].empty() && cell[4] != std::string_view(child->Name())) continue;
      const char* const label = child->AttribValue("Name");
      line = std::string(child->Name()) + "\t" + (label ? label : "") + "\t" + std::string(child->Text());
      found += line.substr(0, line.find_last_not_of('\t') + 1) + "\n";
    }
  }
}

TEST(NavXml, MembersThatAreNoFieldsAreReadToo) {
  SmallStore store;
  const auto with = [&](K7NavType type, auto record, auto member, auto value, const char* element) {
    record.key = K7NavKey(7, type);
    record.*member = static_cast<std::remove_reference_t<decltype(record.*member)>>(value);
    return Rendered(record, K7XML_PLAIN, element, &store);
  };
  EXPECT_EQ(with(K7NAV_AIRPORT, K7Airport(), &K7Airport::utcOffset, -330, "Timezone"), "-5:30 = UTC");
  EXPECT_EQ(with(K7NAV_AIRPORT, K7Airport(), &K7Airport::utcOffset, 545, "Timezone"), "+9:05 = UTC");
  EXPECT_EQ(with(K7NAV_RUNWAY, K7Runway(), &K7Runway::gradient, 0.5F, "RunwayGradient"), "0.500 Up");
  EXPECT_EQ(with(K7NAV_RUNWAY, K7Runway(), &K7Runway::gradient, -0.25F, "RunwayGradient"), "-0.250 Down");
  EXPECT_EQ(with(K7NAV_MORA, K7Mora(), &K7Mora::lat, 48, "Latitude"), "N 48 00.0");
  EXPECT_EQ(with(K7NAV_MORA, K7Mora(), &K7Mora::lon, -123, "Longitude"), "W 123 00.0");
  EXPECT_EQ(with(K7NAV_LOW_AIRWAY, K7AirwaySeg(), &K7AirwaySeg::distance, 2350, "Distance"), "23.50 NM");
  EXPECT_EQ(with(K7NAV_LOW_AIRWAY, K7AirwaySeg(), &K7AirwaySeg::rnp, 0.3F, "RNP"), "0.3 NM");
  EXPECT_EQ(
      with(K7NAV_HOLDING, K7HoldingPattern(), &K7HoldingPattern::inbound, K7Course(905), "InboundCourse"),
      "090\xB0");
  K7String text("kept");
  EXPECT_EQ(store.ToXML(nullptr, K7XML_FULL, text), 0);
  EXPECT_STREQ(text, "kept");
}

TEST(NavXml, SharedElementsAsTextAndInATree) {
  struct Record : K7NavRec {
    using K7NavRec::ToXML;
  } rec;
  rec.key = K7NavKey(3, K7NAV_MORA);
  rec.notes = "a < b VFR: c";
  for (const K7XmlOutputType_t output : OUTPUTS) {
    K7XmlElem root("Record");
    K7String text, written(DECLARATION);
    ASSERT_EQ(rec.ToXML(nullptr, output, root), 0);
    ASSERT_EQ(root.Write(written), 0);
    ASSERT_EQ(rec.ToXML(nullptr, output, text), 0);
    EXPECT_STREQ(text, written);
    EXPECT_STREQ(root.ChildText("VFRNote"), "c");
  }
}

TEST(NavXml, AirportHoldsItsRunwaysByIdentAndItsFrequenciesBackward) {
  SmallStore store;
  K7Airport& airport = AddBusyAirport(store);
  // The same record twice in the query's answer, as a store over several files gives it.
  store.Add<K7Runway>(K7NAV_RUNWAY) = static_cast<const K7Runway&>(*store.GetRec(K7NavKey(2, K7NAV_RUNWAY)));
  for (const K7XmlOutputType_t output : OUTPUTS) {
    K7String text;
    K7XmlElem root;
    ASSERT_EQ(store.ToXML(&airport, output, text), 0);
    ExpectWellFormed(text, root);
    std::string order;
    for (const K7XmlElem* child = root.FirstChild(); child; child = child->NextSibling()) {
      if (child->Name() == "Runway") order += std::string(child->ChildText("Ident")) + " ";
      if (child->Name() == "CommRecord") order += std::string(child->ChildText("CommType")) + " ";
    }
    EXPECT_EQ(order, "16L 16R 34L 34R Departure Approach Tower Ground Clearance ATIS ");
    ExpectLabels(root, output == K7XML_FULL);
  }
}

TEST(NavXml, SmartNoteHoldsWhatItAppliesTo) {
  SmallStore store;
  K7SmartNotes& note = store.Add<K7SmartNotes>(K7NAV_SMART_NOTE);
  auto& link = store.Add<K7SmartNoteLink>(K7NAV_SMART_NOTE_LINK);
  auto& altitude = store.Add<K7SmartNoteAltitude>(K7NAV_SMART_NOTE_ALTITUDE);
  link.smartNote = altitude.smartNote = note.key;
  link.distance = 12.5F;
  altitude.altitude = 9500;
  K7String text;
  K7XmlElem root;
  ASSERT_EQ(store.ToXML(&note, K7XML_DISPLAY, text), 0);
  ExpectWellFormed(text, root);
  ASSERT_TRUE(root.Child("SmartNoteLink") && root.Child("SmartNoteAltitude"));
  EXPECT_STREQ(root.Child("SmartNoteLink")->ChildText("Distance"), "12.5 NM");
  EXPECT_STREQ(root.Child("SmartNoteAltitude")->ChildText("Altitude"), "9500 Feet");
  EXPECT_EQ(root.Child("SmartNoteComm"), nullptr);
  ExpectLabels(root, false);
}

// Every text field holds its own name, every number 3, every key the airport's.
TEST(NavData, DescriptionsOfEveryType) {
  const struct {
    const char* text;
    std::set<unsigned> types;
  } described[] = {{"Ident (Name)", {0, 1, 2, 3, 4, 5, 14, 20, 41}},
                   {"KSEA Runway Ident", {6}},
                   {"Ident ILS", {7}},
                   {"Ident  - ", {9, 10, 52, 53}},
                   {"Enroute Comm (Callsign)", {12}},
                   {"Name Class H", {13}},
                   {"Ident FIR", {15, 16, 57}},
                   {"Holding at ", {17}},
                   {"Formation at KSEA", {21}},
                   {"Building 3 ft (3 ft AGL)", {22, 54, 55, 56}},
                   {"Name (Designator)", {39}},
                   {"Ident", {45}},
                   {"Name", {46, 48, 51}},
                   {"Ident (3 min)", {50}}};
  for (unsigned type = 0; type < K7NAV_TYPE_COUNT; type++) {
    if (!Make(type)) continue;
    SCOPED_TRACE(type);
    SmallStore store;
    const K7NavKey airport = AddBusyAirport(store).key;
    K7NavRec& rec = store.Add<K7NavRec>(static_cast<K7NavType>(type));
    EachField(rec.Type(), [&](int i, K7NavFieldDataType kind, const char* name) {
      const K7NavKey key = rec.key;
      K7NavData::SetField(&rec, i, Value(kind, 3, name, airport));
      rec.key = key;
    });
    const char* expected = "";
    for (const auto& [text, types] : described) expected = types.contains(type) ? text : expected;
    K7String text;
    EXPECT_EQ(store.GetDescriptionByKey(rec.key, text), *expected ? 0 : int{K7_ERR_NOT_IMPLEMENTED});
    EXPECT_STREQ(text, expected);
  }
}

TEST(NavData, DescriptionsByFlagsAndTheirFailures) {
  SmallStore store;
  K7FIR& fir = store.Add<K7FIR>(K7NAV_FIR);
  K7String text;
  fir.ident = "KZSE";
  fir.flags = K7FIR::IS_UIR;
  EXPECT_EQ(fir.GetDescription(&store, text), 0);
  EXPECT_STREQ(text, "KZSE UIR");
  EXPECT_FALSE(fir.IsOceanic());
  fir.ident = "ZOZ";
  EXPECT_TRUE(fir.IsOceanic());
  K7Waypoint same;
  std::memcpy(same.ident, "JAWBN", 6);
  same.name = "JAWBN";
  EXPECT_EQ(same.GetDescription(nullptr, text), 0);
  EXPECT_STREQ(text, "JAWBN");
  EXPECT_EQ(store.GetDescriptionByKey(K7NavKey(), text), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(store.GetDescriptionByKey(K7NavKey(999, K7NAV_AIRPORT), text), K7_ERR_INVALID_DATA);
}

TEST(NavData, FixByIdentIsTheNearest) {
  SmallStore store;
  for (const double lon : {-122.0, 10.0, 179.5, 10.0}) {
    K7Waypoint& fix = store.Add<K7Waypoint>(K7NAV_ENROUTE_FIX);
    std::memcpy(fix.ident, "JAWBN", 6);
    fix.lon = K7NavData::DecDeg2FixPt(lon);
  }
  const struct {
    double lon;
    uint32_t nearest;
  } rows[] = {{-170, 2}, {-100, 0}, {9, 1}};  // of equals the lower key
  for (const auto& [lon, nearest] : rows) {
    const K7NavRec* const rec = store.GetFixByIdent(K7NAV_ENROUTE_FIX, "JAWBN", 0, lon);
    EXPECT_TRUE(rec && rec->key.Idx() == nearest) << lon;
  }
  EXPECT_EQ(store.GetFixByIdent(K7NAV_ENROUTE_FIX, "NOWHR", 0, 0), nullptr);
  EXPECT_EQ(store.GetFixByIdent(K7NAV_OBSTACLE, "JAWBN", 0, 0), nullptr);
}
