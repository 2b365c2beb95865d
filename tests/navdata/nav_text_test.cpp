// Packed words and codes of records, as people read them.
#include <k7/foundation/error_string.h>
#include <k7/io/xml_elem.h>
#include <k7/navdata.h>

#include <gtest/gtest.h>

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
               {0, 0, false, true, ""},
               {0, 0, true, false, "0"},
               {0, A::METRIC, false, false, ""},
               {2500, 0, false, false, "2500 ft"},
               {2500, 0, false, true, "2500 m"},
               {2500, A::METRIC, false, false, "2500 m"},
               {2500, A::METRIC, true, true, "2500"},
               {0x7FFFF4, 0, true, false, "8388596"},
               {0x7FFFF5, A::FLIGHT_LEVEL, true, false, "CLASS B"},
               {0x7FFFF6, 0, false, false, "ATC"},
               {0x7FFFF7, 0, false, false, "TMZ"},
               {0x7FFFF8, 0, false, false, ""},
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
  for (int code = -1; code < 50; code++) {
    const char* text = code == 1    ? "ACC"
                       : code == 9  ? "AWOS"
                       : code == 17 ? "FLIGHTWATCH"
                       : code == 19 ? "FSS"
                       : code == 24 ? "INFO"
                       : code == 26 ? "MULTICOM"
                       : code == 29 ? "RADIO"
                       : code == 31 ? "FSS"
                       : code == 38 ? "TWEB"
                       : code == 42 ? "VOLMET"
                                    : "Unknown";
    EXPECT_STREQ(K7EnrouteComm::CommTypeString(code), text) << code;
  }
  EXPECT_STREQ(K7AirportComm::TypeString(K7AirportComm::TOWER), "Tower");
  EXPECT_STREQ(K7AirportComm::TypeString(9), "AWOS");
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

  // As many texts as there are codes, each of its own.
  K7SmartNoteLink link;
  K7SmartNoteAltitude alt;
  K7String text, last;
  const auto count = [&](auto& record, int16_t& code, auto get) {
    for (code = 0;; code++, last = text) {
      EXPECT_EQ((record.*get)(text), 0);
      if (text.IsEmpty()) break;
      EXPECT_STRNE(text, last);
    }
    const int found = code;
    code = -1;
    EXPECT_EQ((record.*get)(text), 0);
    EXPECT_STREQ(text, "");
    return found;
  };
  EXPECT_EQ(count(link, link.areaCode, &K7SmartNoteLink::GetAreaCodeString), 11);
  EXPECT_EQ(count(link, link.cardinalDirection, &K7SmartNoteLink::GetCardinalDirectionString), 17);
  EXPECT_EQ(count(link, link.coverageCode, &K7SmartNoteLink::GetCoverageCodeString), 8);
  EXPECT_EQ(count(link, link.distDescrip, &K7SmartNoteLink::GetDistDescripString), 5);
  EXPECT_EQ(count(link, link.units, &K7SmartNoteLink::GetUnitsString), 7);
  EXPECT_GT(count(alt, alt.description, &K7SmartNoteAltitude::GetAltitudeDescriptionString), 2);
  EXPECT_GT(count(alt, alt.type, &K7SmartNoteAltitude::GetAltitudeTypeString), 2);
  EXPECT_GT(count(alt, alt.reference, &K7SmartNoteAltitude::GetAltitudeReferenceString), 1);
  EXPECT_GT(count(alt, alt.unit, &K7SmartNoteAltitude::GetAltitudeUnitString), 1);
}

// The alphabet as its own letters spell it in the tables of amateurs, dots and dashes run together.
TEST(NavText, MorseCode) {
  const std::string alphabet =
      "0----- 1.---- 2..--- 3...-- 4....- 5..... 6-.... 7--... 8---.. 9----. a.- b-... c-.-. d-.. e. f..-. "
      "g--. h.... "
      "i.. j.--- k-.- l.-.. m-- n-. o--- p.--. q--.- r.-. s... t- u..- v...- w.-- x-..- y-.-- z--..";
  K7String out;
  size_t at = 0;
  for (int characters = 0; at < alphabet.size(); characters++) {
    const size_t end = std::min(alphabet.find(' ', at), alphabet.size());
    std::string spaced;
    for (const char symbol : alphabet.substr(at + 1, end - at - 1))
      spaced += (spaced.empty() ? "" : " ") + std::string(1, symbol);
    EXPECT_EQ(K7MorseCode::GetMorseCode(alphabet[at], out), 0);
    EXPECT_STREQ(out, spaced.c_str()) << alphabet[at];
    K7MorseCode::GetMorseCode(static_cast<char>(std::toupper(alphabet[at])), out);
    EXPECT_STREQ(out, spaced.c_str());
    at = end + 1;
  }
  for (int c = -128; c < 128; c++) {
    if (c > 0 && std::isalnum(c)) continue;
    K7MorseCode::GetMorseCode(static_cast<char>(c), out);
    EXPECT_STREQ(out, "") << c;
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
  K7String out;
  EXPECT_EQ(K7NavKey(7, K7NAV_AIRPORT).ToXML(nullptr, K7XML_FULL, out, nullptr), 0);
  K7XmlElem elem;
  elem.Parse(out);
  EXPECT_STREQ(elem.Name(), "NavKey");
  EXPECT_STREQ(elem.ChildText("Index"), "7");
  EXPECT_STREQ(elem.ChildText("NavType"), "5");
  EXPECT_EQ(elem.FirstChild()->NumAttribs(), 0);
  EXPECT_EQ(K7NavKey(7, K7NAV_FIR).typeString(out), 0);
  EXPECT_STREQ(out, "FIR");
  EXPECT_EQ(K7NavKey().ToXML(nullptr, K7XML_FULL, out, "FirKey"), 0);
  elem.Parse(out);
  EXPECT_STREQ(elem.Name(), "FirKey");
  EXPECT_STREQ(elem.ChildText("Index"), "4294967295");
}
