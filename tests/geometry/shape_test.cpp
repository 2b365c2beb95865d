// Shape layers as a host makes them: records as XML and in a line, and what a kind does not have.

#include <k7/foundation/error_string.h>
#include <k7/geometry/shape.h>
#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shape_table.h>
#include <k7/io/xml_elem.h>

#include <gtest/gtest.h>

#include <strings.h>
#include <string>
#include <variant>
#include <vector>

namespace {

struct Value {
  std::string name;
  std::variant<int, int64_t, double, std::string> value;
};

struct Record : K7ShapeRec {
  int GetKey() const override { return 7; }
  int GetBounds(K7ChartRect&) const override { return K7_ERR_NOT_IMPLEMENTED; }
  int GetPos(double&, double&) const override { return K7_ERR_NOT_IMPLEMENTED; }
  int GetPolyCount() const override { return 0; }
  int GetPolySize(int) const override { return K7_ERR_OUT_OF_RANGE; }
  int GetPolyPoint(int, int, double&, double&) const override { return K7_ERR_OUT_OF_RANGE; }
};

struct Table : K7ShapeTable {
  std::vector<Value> values;

  const char* DbName() const override { return "made & kept"; }
  int TableIndex() const override { return 3; }
  int RecordCount() const override { return 1; }
  K7ShapeRec* GetRecord(int) const override { return nullptr; }
  K7ShapeRec* FindRecord(int) const override { return nullptr; }
  K7ChartRect GetBounds() const override { return {}; }
  K7ShapeQuery* AreaQuery(const K7ChartRect&) const override { return nullptr; }
  int AttribCount() const override { return static_cast<int>(values.size()); }
  const char* AttribName(int i) const override { return At(i).name.c_str(); }
  K7ShapeAttribType AttribType(int i) const override {
    return static_cast<K7ShapeAttribType>(At(i).value.index());
  }
  int FindAttrib(const char* name) const override {
    for (int i = 0; i < AttribCount(); ++i)
      if (strcasecmp(At(i).name.c_str(), name) == 0) return i;
    return -1;
  }
  int GetAttrib(const K7ShapeRec&, int i, K7ShapeAttrib& out) const override {
    std::visit([&](const auto& value) { out = Kept(value); }, At(i).value);
    return 0;
  }

 private:
  const Value& At(int i) const { return values.at(static_cast<size_t>(i)); }
  template <class T>
  static K7ShapeAttrib Kept(const T& value) {
    if constexpr (std::is_same_v<T, std::string>)
      return K7ShapeAttrib(value.c_str());
    else
      return K7ShapeAttrib(value);
  }
};

struct Layer : K7Shape {
  K7ShapeType type = K7_SHAPE_PLAIN;
  mutable Table table;
  Record record;

  const char* Name() const override { return "coast"; }
  K7ShapeType Type() const override { return type; }
  int Key() const override { return 12; }
  K7ShapeTable* GetTable(const K7ShapeRec* rec) const override { return rec == &record ? &table : nullptr; }
  int Render(K7Grfx*, K7MapPath&, K7ShapeRec*) override { return K7_ERR_NOT_IMPLEMENTED; }

  void Hold(K7ShapeType kind, std::vector<Value> values) {
    type = kind;
    table.values = std::move(values);
  }
  // The elements behind the keys, as "NAME|label|text" in their order.
  std::vector<std::string> Shown(K7XmlOutputType_t output) {
    K7String text;
    EXPECT_EQ(ToXML(&record, output, text), 0);
    EXPECT_EQ(std::string(text).rfind("<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n", 0), 0u);
    K7XmlElem root;
    EXPECT_NE(root.Parse(text), nullptr);
    EXPECT_STREQ(root.Name(), "Record");
    std::vector<std::string> shown;
    int i = 0;
    for (const K7XmlElem* e = root.FirstChild(); e; e = e->NextSibling(), ++i)
      if (i >= KEYS)
        shown.push_back(std::string(e->Name()) + "|" + e->AttribValue("Name") + "|" +
                        static_cast<const char*>(e->Text()));
    return shown;
  }
  std::string Line() {
    K7String text;
    EXPECT_EQ(GetDescription(&record, text), 0);
    return std::string(text);
  }
  static constexpr int KEYS = 5;
};
using Lines = std::vector<std::string>;

TEST(Shape, RecordsCarryTheirKeysInEveryForm) {
  Layer layer;
  layer.Hold(K7_SHAPE_PLAIN, {{"A", 1}});
  for (const K7XmlOutputType_t output : {K7XML_PLAIN, K7XML_FULL, K7XML_DISPLAY, K7XML_DOCUMENT}) {
    K7String text;
    ASSERT_EQ(layer.ToXML(&layer.record, output, text), 0);
    K7XmlElem root;
    ASSERT_NE(root.Parse(text), nullptr);
    EXPECT_STREQ(root.ChildText("ShapeType"), "coast");
    EXPECT_STREQ(root.ChildText("ShapeKey"), "12");
    EXPECT_STREQ(root.ChildText("DbName"), "made & kept");
    EXPECT_STREQ(root.ChildText("TableIndex"), "3");
    EXPECT_STREQ(root.ChildText("Key"), "7");
  }
  K7String kept("kept");
  Record stranger;
  EXPECT_EQ(layer.ToXML(nullptr, K7XML_FULL, kept), 0);
  EXPECT_EQ(layer.ToXML(&stranger, K7XML_FULL, kept), K7_ERR_NOT_FOUND);
  EXPECT_EQ(layer.GetDescription(nullptr, kept), 0);
  EXPECT_EQ(layer.GetDescription(&stranger, kept), K7_ERR_NOT_FOUND);
  EXPECT_STREQ(kept, "kept");
}

TEST(Shape, AttributesAreWrittenByTheirTypeAndNamedAsElementsMayBe) {
  Layer layer;
  layer.Hold(K7_SHAPE_PLAIN, {{"COUNT", -5},
                              {"LARGE", int64_t{1} << 40},
                              {"2nd <try>", 2.0005},
                              {"TEXT", std::string("a<b & \"c\"")},
                              {"LINES", std::string("a\n\x01\x7F\x9D")},
                              {"EMPTY", std::string("  ")},
                              {"", 9}});
  EXPECT_EQ(layer.Shown(K7XML_FULL),
            (Lines{"COUNT|COUNT|-5", "LARGE|LARGE|1099511627776", "_2nd__try_|_2nd__try_|2.001",
                   "TEXT|TEXT|a<b & \"c\"", "LINES|LINES|a   ?", "_|_|9"}));
}

TEST(Shape, SpecialValuesAreUnknownOrLeftOut) {
  Layer layer;
  layer.Hold(K7_SHAPE_PLAIN, {{"A", -32767},
                              {"B", -32767.0},
                              {"C", std::string("-32767.000")},
                              {"D", std::string("$UNK")},
                              {"E", -32768},
                              {"F", -32765.0},
                              {"G", std::string("-32764.0")},
                              {"H", std::string("$Null")},
                              {"I", std::string("$NA")},
                              {"J", std::string("$NE")},
                              {"K", std::string("-327670")},
                              {"L", -3276.7},
                              {"M", std::string("$UNKNOWN")}});
  EXPECT_EQ(layer.Shown(K7XML_FULL), (Lines{"A|A|Unknown", "B|B|Unknown", "C|C|Unknown", "D|D|Unknown",
                                            "K|K|-327670", "L|L|-3276.700", "M|M|$UNKNOWN"}));
}

TEST(Shape, FeaturesOfAnAerodromeReadByTheirLabels) {
  Layer layer;
  const std::vector<Value> stand = {{"FUEL", std::string("$NA")},
                                    {"JETWAY", std::string("$UNK")},
                                    {"RESTACFT", std::string("A388; B748|$NA|$UNK")},
                                    {"idstd", std::string("N7")},
                                    {"IDARPT", std::string("KSEA")},
                                    {"STATUS", 0},
                                    {"PRIVATE", 1}};
  layer.Hold(K7_SHAPE_PARKING_STAND, stand);
  EXPECT_EQ(layer.Shown(K7XML_DISPLAY),
            (Lines{"IDARPT|Airport ICAO|KSEA", "IDSTD|Parking Stand identification|N7", "STATUS|Status|0",
                   "RESTACFT|Aircraft restrictions|A388, B748, Unknown", "JETWAY|Jetway|Unknown"}));
  EXPECT_EQ(layer.Shown(K7XML_FULL),
            (Lines{"JETWAY|Jetway|Unknown", "RESTACFT|Aircraft restrictions|A388; B748|$NA|$UNK",
                   "idstd|Parking Stand identification|N7", "IDARPT|Airport ICAO|KSEA", "STATUS|Status|0",
                   "PRIVATE|PRIVATE|1"}));
  EXPECT_EQ(layer.Line(), "Parking Stand N7 (0)");
  const auto attrib = [&](const char* name, int code) {
    K7String text("kept");
    EXPECT_EQ(layer.GetAttribText(&layer.record, name, text), code) << name;
    return std::string(text);
  };
  EXPECT_EQ(attrib("RESTACFT", 0), "A388, B748, Unknown");
  EXPECT_EQ(attrib("jetway", 0), K7Shape::UNKNOWN);
  EXPECT_EQ(attrib("FUEL", K7_ERR_NOT_FOUND) + attrib("TOWING", K7_ERR_NOT_FOUND), "");

  layer.Hold(K7_SHAPE_THRESHOLD, {{"IDTHR", std::string("16L")},
                                  {"TORA", 3627.125},
                                  {"TODA", std::string("3627")},
                                  {"LDA", 3400},
                                  {"ASDA", std::string("infinity")},
                                  {"ELEV", 131.2}});
  EXPECT_EQ(layer.Shown(K7XML_DISPLAY),
            (Lines{"IDTHR|Runway Threshold|16L", "TORA|Take-off Run Available|3627.12 m",
                   "TODA|Take-off Distance Available|3627.00 m", "LDA|Landing Distance Available|3400.00 m",
                   "ASDA|Accelerate-Stop Distance Available|infinity", "ELEV|Elevation|131.200"}));
  K7String number;
  EXPECT_EQ(layer.GetAttribText(&layer.record, "LDA", number), 0);
  EXPECT_STREQ(number, "3400");
}

TEST(Shape, EachKindHasItsAttributes) {
  // How many attributes, the airport included, and what is read last.
  static constexpr struct {
    K7ShapeType type;
    size_t count;
    const char *last, *name;
  } KINDS[] = {
      {K7_SHAPE_APRON, 5, "Aircraft restrictions", "Apron"},
      {K7_SHAPE_DEICING_AREA, 4, "Aircraft restrictions", "Deicing Area"},
      {K7_SHAPE_FREQUENCY_AREA, 4, "Information", "Frequency Area"},
      {K7_SHAPE_HOTSPOT, 3, "Notes", "Hotspot"},
      {K7_SHAPE_PARKING_STAND, 10, "Fuel", "Parking Stand"},
      {K7_SHAPE_DISPLACED_AREA, 5, "Length", "Runway Displaced Area"},
      {K7_SHAPE_RUNWAY, 6, "Width", "Runway"},
      {K7_SHAPE_EXIT_LINE, 4, "Direction", "Exit Line"},
      {K7_SHAPE_THRESHOLD, 8, "Elevation", "Runway Threshold"},
      {K7_SHAPE_TAXIWAY, 3, "Status", "Taxiway"},
      {K7_SHAPE_HOLDING_POSITION, 4, "Taxiway Holding Position Type", "Taxiway Holding Position"},
      {K7_SHAPE_HOLDING_LINE, 2, "Taxiway Holding Position Identification", "Taxiway Holding Position"},
      {K7_SHAPE_VERTICAL_STRUCTURE, 3, "Vertical Structure Type", "Vertical Structure"}};
  std::vector<Value> all;
  for (const char* const key :
       {"IDARPT",   "IDAPRON", "APRONTYP", "STATUS", "RESTACFT", "IDENT",  "FRQ",     "STATION",
        "INFO",     "IDHOT",   "NOTES",    "IDSTD",  "TERMREF",  "JETWAY", "TOWING",  "DOCKING",
        "GNDPOWER", "FUEL",    "IDTHR",    "LENGTH", "IDRWY",    "WIDTH",  "IDLIN",   "DIREC",
        "TORA",     "TODA",    "LDA",      "ASDA",   "ELEV",     "TYPE",   "PLYSTTYP"})
    all.push_back({key, std::string("x")});
  Layer layer;
  for (const auto& kind : KINDS) {
    layer.Hold(kind.type, all);
    const Lines shown = layer.Shown(K7XML_DISPLAY);
    ASSERT_EQ(shown.size(), kind.count) << kind.name;
    EXPECT_EQ(shown.front(), "IDARPT|Airport ICAO|x");
    EXPECT_NE(shown.back().find("|" + std::string(kind.last) + "|"), std::string::npos) << shown.back();
    EXPECT_EQ(layer.Line().rfind(std::string(kind.name) + " x", 0), 0u) << layer.Line();
  }
}

TEST(Shape, PlainRecordsAreCalledByTheirName) {
  Layer layer;
  layer.Hold(K7_SHAPE_PLAIN, {{"featurecla", std::string("Island")}, {"Name", std::string("Orcas")}});
  EXPECT_EQ(layer.Line(), "Orcas (Island)");
  layer.Hold(K7_SHAPE_PLAIN, {{"NAME", std::string("$NA")}});
  EXPECT_EQ(layer.Line(), "coast");
}

TEST(Shape, WhatAKindDoesNotHaveIsNothing) {
  Layer layer;
  Record& record = layer.record;
  const K7STessGroup* groups = reinterpret_cast<const K7STessGroup*>(&record);
  EXPECT_EQ(record.GetTriVertCount() + record.GetTessGroupCount() + record.GetTessGroups(groups), 0);
  EXPECT_EQ(groups, nullptr);
  EXPECT_TRUE(!record.GetTriVerts() && !record.GetTriVertIndices() && !record.GetCache());
  EXPECT_EQ(record.GetAdjacentFaceKey(0) + record.FreeCache(), 0);
  EXPECT_EQ(layer.table.InclusionQuery(nullptr, nullptr), nullptr);
  EXPECT_EQ(layer.FreeMemCache() + layer.table.FreeMemCache(), 0);
  EXPECT_EQ(static_cast<int64_t>(K7ShapeAttrib()), 0);
  K7ShapeAttrib a(2.5), b;
  b = a;
  EXPECT_EQ(static_cast<double>(b), 2.5);
}

}  // namespace
