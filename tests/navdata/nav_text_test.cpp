// Packed words and codes of records, as people read them.
#include <k7/foundation/error_string.h>
#include <k7/io/xml_elem.h>
#include <k7/navdata.h>

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

TEST(NavText, Altitudes) {
  using A = K7Alt;
  const struct {
    uint32_t value, flags;
    bool numberOnly, metric;
    const char* text;
  } cases[] = {{12000, A::FLIGHT_LEVEL, false, false, "FL120"},
               {550, A::FLIGHT_LEVEL, true, true, "FL05"},
               {3650, A::FLIGHT_LEVEL | A::METRIC, false, false, "FL3650m"},
               {0, A::ABOVE_GROUND, false, false, "GND"},
               {100, A::ABOVE_GROUND, false, false, "100 AGL"},
               {100, A::ABOVE_GROUND | A::ABOVE_AERODROME, false, false, "100 AGL"},
               {0, A::ABOVE_AERODROME, false, false, "0 AAL"},
               {0, A::METRIC, false, true, ""},
               {0, 0, true, false, "0"},
               {2500, 0, false, false, "2500 ft"},
               {2500, 0, false, true, "2500 m"},
               {2500, A::METRIC, false, false, "2500 m"},
               {0x7FFFF4, A::METRIC, true, true, "8388596"},
               {0x7FFFF5, A::FLIGHT_LEVEL, true, false, "CLASS B"},
               {0x7FFFF6, 0, false, false, "ATC"},
               {0x7FFFF7, 0, false, false, "TMZ"},
               {0x7FFFFA, A::ABOVE_GROUND, false, false, ""},
               {0x7FFFFB, 0, false, false, "MSL"},
               {0x7FFFFC, 0, false, false, "NOTAM"},
               {0x7FFFFD, 0, false, false, "Unlimited"},
               {0x7FFFFE, 0, false, false, "GND"},
               {0x7FFFFF, 0, false, false, ""},
               {0x800000, 0, true, false, "8388608"}};
  for (const auto& c : cases) {
    K7String text = "left over";
    const K7Alt alt(c.value, c.flags);
    EXPECT_EQ(alt.ToString(text, c.numberOnly, c.metric), 0);
    EXPECT_STREQ(text, c.text) << c.value << " " << c.flags;
    EXPECT_EQ(alt.IsSpecialValue(), c.value >= 0x7FFFF5 && c.value <= 0x7FFFFF) << c.value;
    EXPECT_EQ(static_cast<double>(alt), c.value);
  }
  EXPECT_STREQ(K7Alt(2500).GetAltString(), "2500 ft");
}

TEST(NavText, Courses) {
  const struct {
    uint32_t tenths;
    const char *magnetic, *cardinal;
  } cases[] = {{3599, "359\xB0", "N"},  {5, "000\xB0", "N"},     {225, "022\xB0", "N"},
               {226, "022\xB0", "NE"},  {675, "067\xB0", "NE"},  {676, "067\xB0", "E"},
               {3375, "337\xB0", "NW"}, {3376, "337\xB0", "N"},  {3600, "360\xB0", "N"},
               {1800, "180\xB0", "S"},  {2475, "247\xB0", "SW"}, {2925, "292\xB0", "W"}};
  for (const auto& c : cases) {
    K7String text, cardinal;
    EXPECT_EQ(K7Course(c.tenths).ToString(text), 0);
    EXPECT_STREQ(text, c.magnetic);
    EXPECT_EQ(K7Course(c.tenths).GetCardinalDir(cardinal), 0);
    EXPECT_STREQ(cardinal, c.cardinal) << c.tenths;
  }
  K7String text = "kept";
  EXPECT_EQ(K7Course(900, 2).ToString(text), 0);
  EXPECT_STREQ(text, "kept");
  EXPECT_EQ(K7Course(3601).GetCardinalDir(text), K7_ERR_OUT_OF_RANGE);
  EXPECT_STREQ(text, "kept");
  EXPECT_EQ(K7Course(900, K7Course::TRUE_NORTH).ToString(text), 0);
  EXPECT_STREQ(text, "090\xB0T");
  EXPECT_DOUBLE_EQ(K7Course(905, K7Course::TRUE_NORTH), 90.5);
}

TEST(NavText, Frequencies) {
  const struct {
    int freq, units, flags;
    bool withUnits;
    const char* text;
  } cases[] = {{118025, 0, 0, true, "118.02 MHz"},
               {121500, 0, 0, true, "121.5 MHz"},
               {118050, 0, 0, false, "118.05"},
               {12150, 1, 0, true, "121.5 MHz"},
               {12155, 1, 0x100, true, "121.55 MHz (R)"},
               {118025, 2, 0x100, false, "118.025 (R)"},
               {33500, 3, 0, true, "335 kHz"},
               {33550, 9, 0, true, "335.5 kHz"},
               {33550, 10, 0x100, true, "kept"},
               {33550, -1, 0, true, "kept"}};
  for (const auto& c : cases) {
    K7String text = "kept";
    EXPECT_EQ(K7EnrouteComm::FormatCommFrequency(c.freq, c.units, c.flags, text, c.withUnits), 0);
    EXPECT_STREQ(text, c.text);
  }
}

TEST(NavText, Codes) {
  const std::map<int, const char*> types = {{1, "ACC"},   {9, "AWOS"},      {17, "FLIGHTWATCH"}, {19, "FSS"},
                                            {24, "INFO"}, {26, "MULTICOM"}, {29, "RADIO"},       {31, "FSS"},
                                            {38, "TWEB"}, {42, "VOLMET"}};
  for (int code = -1; code < 50; code++) {
    EXPECT_STREQ(K7EnrouteComm::CommTypeString(code), types.contains(code) ? types.at(code) : "Unknown");
  }
  EXPECT_STREQ(K7AirportComm::TypeString(K7AirportComm::TOWER), "Tower");
  K7String services = "left over";
  EXPECT_EQ(K7EnrouteComm::ServiceIndicatorString(0x8 | 0x800 | 0x1000 | 0x2000 | 0x4000 | 0x20000, services),
            0);
  EXPECT_STREQ(services, "FIS, MF, Secondary, A/G, VDF, MIL, ");

  K7SmartNotes note;
  const auto texts = [&](int16_t code) {
    note.category = note.flightRules = note.phaseOfFlight = note.subcategory = note.elementType = code;
    return std::string(note.GetCategoryStr()) + "|" + note.GetFlightRulesStr() + "|" +
           note.GetPhaseOfFlightStr() + "|" + note.GetSubcategoryStr() + "|" + note.GetElementTypeStr();
  };
  EXPECT_EQ(texts(0), "Contingency|Both|Airport|Air Traffic|Airspace Activation");
  EXPECT_EQ(texts(2), "Reference|VFR|SID//STAR//Approach|Contingency|Airspace Class");
  EXPECT_EQ(texts(3), "Unknown|Unknown|Unknown|Equipment|Altitude Exclusion");
  EXPECT_EQ(texts(11), "Unknown|Unknown|Unknown|Weather|Contingency Procedures");
  EXPECT_EQ(texts(45), "Unknown|Unknown|Unknown|Unknown|VHF//LF");
  EXPECT_EQ(texts(50), "Unknown|Unknown|Unknown|Unknown|Weather Restrictions");
  for (const int16_t code : {int16_t(-1), int16_t(51)})
    EXPECT_EQ(texts(code), "Unknown|Unknown|Unknown|Unknown|Unknown");
  note.north = 8388608;
  EXPECT_EQ(note.North(), 1.0);

  // As many texts as there are codes.
  const auto count = [](auto record, auto code, auto get) {
    K7String text;
    const auto isThere = [&](int value) {
      record.*code = static_cast<int16_t>(value);
      EXPECT_EQ((record.*get)(text), 0);
      return !text.IsEmpty();
    };
    int found = 0;
    while (isThere(found)) found++;
    EXPECT_FALSE(isThere(-1));
    return found;
  };
  using L = K7SmartNoteLink;
  using A = K7SmartNoteAltitude;
  EXPECT_EQ(count(L(), &L::areaCode, &L::GetAreaCodeString), 11);
  EXPECT_EQ(count(L(), &L::cardinalDirection, &L::GetCardinalDirectionString), 17);
  EXPECT_EQ(count(L(), &L::coverageCode, &L::GetCoverageCodeString), 8);
  EXPECT_EQ(count(L(), &L::distDescrip, &L::GetDistDescripString), 5);
  EXPECT_EQ(count(L(), &L::units, &L::GetUnitsString), 7);
  EXPECT_EQ(count(A(), &A::description, &A::GetAltitudeDescriptionString), 6);
  EXPECT_EQ(count(A(), &A::type, &A::GetAltitudeTypeString), 5);
  EXPECT_EQ(count(A(), &A::reference, &A::GetAltitudeReferenceString), 3);
  EXPECT_EQ(count(A(), &A::unit, &A::GetAltitudeUnitString), 3);
}

// Each character beside its code, dots and dashes run together; the others have none.
TEST(NavText, MorseCode) {
  std::istringstream alphabet(
      "0----- 1.---- 2..--- 3...-- 4....- 5..... 6-.... 7--... 8---.. 9----. a.- b-... c-.-. d-.. e. f..-. "
      "g--. h.... i.. j.--- k-.- l.-.. m-- n-. o--- p.--. q--.- r.-. s... t- u..- v...- w.-- x-..- y-.-- "
      "z--..");
  std::map<char, std::string> codes;
  for (std::string code; alphabet >> code;) {
    std::string& spaced = codes[code[0]];
    for (size_t i = 1; i < code.size(); i++) spaced += std::string(i > 1, ' ') + code[i];
    codes[static_cast<char>(std::toupper(code[0]))] = spaced;
  }
  K7String out;
  for (int c = -128; c < 128; c++) {
    EXPECT_EQ(K7MorseCode::GetMorseCode(static_cast<char>(c), out), 0);
    EXPECT_STREQ(out, codes[static_cast<char>(c)].c_str()) << c;
  }
  const struct {
    const char *text, *code;
  } texts[] = {{"AB", ". -   - . . ."}, {"A B", ". -      - . . ."}, {"?E", "   ."}, {"", ""}, {nullptr, ""}};
  for (const auto& [text, code] : texts) {
    K7MorseCode::GetMorseCode(text, out);
    EXPECT_STREQ(out, code);
    const K7MorseCode kept(text), copy = kept;
    EXPECT_EQ(copy.GetMorseCode(out), 0);
    EXPECT_STREQ(out, code);
  }
  out = "AB";
  K7MorseCode::GetMorseCode(out, out);
  EXPECT_STREQ(out, ". -   - . . .") << "a text may be replaced by its own code";
}

TEST(NavText, KeysAsXml) {
  const struct {
    K7NavKey key;
    const char *asked, *name, *index, *type;
  } rows[] = {{{7, K7NAV_AIRPORT}, nullptr, "NavKey", "7", "5"},
              {K7NavKey(), "FirKey", "FirKey", "4294967295", "4294967295"}};
  K7String out;
  for (const auto& [key, asked, name, index, type] : rows) {
    EXPECT_EQ(key.ToXML(nullptr, K7XML_FULL, out, asked), 0);
    K7XmlElem elem;
    elem.Parse(out);
    EXPECT_STREQ(elem.Name(), name);
    EXPECT_STREQ(elem.ChildText("Index"), index);
    EXPECT_STREQ(elem.ChildText("NavType"), type);
    EXPECT_EQ(elem.FirstChild()->NumAttribs(), 0);
  }
  EXPECT_EQ(K7NavKey(7, K7NAV_FIR).typeString(out), 0);
  EXPECT_STREQ(out, "FIR");
}
