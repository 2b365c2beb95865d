// Rows of the published formats, and lines of all kinds, read by hand beside.
#include "store/import_rows.h"
#include "store/import_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

TEST(NavRows, FrequenciesGetTheirThirdDecimalBack) {
  // ICAO Annex 10: channels of 25 kHz end in .000, .025, .050 and .075 MHz.
  const struct {
    const char* line;
    int khz;
  } cases[] = {{"50 11800 ATIS", 118000},
               {"53 12027 GND", 120275},
               {"54  12612 NORTH TWR ", 126125},
               {"51 12345 CTAF", 123450},
               {"56 13697 DEP", 136975}};
  for (const auto& c : cases) {
    CommRow row;
    EXPECT_EQ(ReadCommRow(c.line, row), "");
    EXPECT_EQ(row.freq, c.khz) << c.line;
  }
}

TEST(NavRows, PartsOfAnIls) {
  NavRow row;
  ASSERT_EQ(ReadNavRow("6 49.20557 -123.19639 2 11055 10 325358.140 ITL CYVR 08L GS", row), "");
  EXPECT_DOUBLE_EQ(row.angle, 3.25);
  EXPECT_NEAR(row.bearing, 358.14, 1e-9);
  EXPECT_EQ(row.airport, "CYVR");
  ASSERT_EQ(ReadNavRow("12 67.0 -50.7 172 10955 18 1.6 ISF BGSF 10 DME-ILS", row), "");
  EXPECT_EQ(row.runway, "10");
  ASSERT_EQ(ReadNavRow("12 47.4 -122.3 354 11680 130 0 SEA SEATTLE INTL VORTAC", row), "");
  EXPECT_EQ(row.name, "SEATTLE INTL");
  EXPECT_EQ(row.airport, "");
  ASSERT_EQ(ReadNavRow("2 49.0154 -122.4878 0 344 50 0.0 XX ABBOTSFORD NDB", row), "");
  EXPECT_EQ(row.freq, 3440);
  ASSERT_EQ(ReadNavRow("3 1 -170.5 0 11680 40 356.5 XXX A VOR", row), "");
  EXPECT_DOUBLE_EQ(row.declination, -3.5);
}

TEST(NavRows, MalformedRowsAreRefused) {
  NavRow nav;
  for (const char* line :
       {"", "2", "3 91 0 0 11680 130 19 SEA SEATTLE VORTAC", "3 47 -180.1 0 11680 130 19 SEA SEATTLE VORTAC",
        "3 -90.5 0 0 11680 130 19 SEA SEATTLE VORTAC", "3 nan 0 0 11680 130 19 SEA SEATTLE VOR",
        "3 47 1e2 0 11680 130 19 SEA SEATTLE VOR", "3 47 -122 0 116.8 130 19 SEA SEATTLE VOR",
        "3 47 -122 0 11680 130 19 LONGIDENT SEATTLE VOR", "3 47 -122 0 11680 130 19 SEA",
        "10 47 -122 0 11680 130 19 SEA SEATTLE VOR", "4 47 -122 0 11030 18 180 ISEA KSEATTLE 16L ILS-cat-I",
        "6 47 -122 0 11030 10 300180 ISEA KSEA"})
    EXPECT_NE(ReadNavRow(line, nav), "") << line;
  FixRow fix;
  EXPECT_NE(ReadFixRow("48 -123 JAWBN more", fix), "");
  AirwayRow airway;
  EXPECT_NE(ReadAirwayRow("SEA 47 -122 SEA 47 -122 1 30 180 V23", airway), "");
  EXPECT_NE(ReadAirwayRow("SEA 47 -122 PAE 48 -122 3 30 180 V23", airway), "");
  EXPECT_NE(ReadAirwayRow("SEA 47 -122 PAE 48 -122 1 30 180", airway), "");
}

namespace {

// A source that hands out few bytes at a time, and fails at the end when told so.
class Trickle : public ByteSource {
 public:
  Trickle(std::string_view bytes, bool damaged) : m_bytes(bytes), m_damaged(damaged) {}
  long Read(char* to, size_t room) override {
    const size_t count = std::min<size_t>({room, 3, m_bytes.size()});
    std::memcpy(to, m_bytes.data(), count);
    m_bytes.remove_prefix(count);
    return count == 0 && m_damaged ? -1 : static_cast<long>(count);
  }

 private:
  std::string_view m_bytes;
  bool m_damaged;
};

}  // namespace

TEST(NavLines, OfAnyLengthAndEnd) {
  // Texts come as windows-1252, from UTF-8 too. What holds a byte of zero, or is too long, is no row.
  const std::string text = "\xEF\xBB\xBFone\r\n\n\rtwo\xE9\nG\xC3\xB6hlis\xE2\x82\xAC\n" +
                           std::string(100000, 'x') + "\n" + std::string("ze\0ro", 5) + "\nend";
  for (const bool damaged : {false, true}) {
    Trickle source(text, damaged);
    LineReader reader(source);
    std::vector<std::string> good;
    int bad = 0;
    for (std::string_view line; reader.Next(line);)
      if (reader.Problem())
        ++bad;
      else
        good.emplace_back(line);
    EXPECT_EQ(good, (std::vector<std::string>{"one", "", "\rtwo\xE9", "G\xF6hlis\x80", "end"}));
    EXPECT_EQ(bad, 2);
    EXPECT_EQ(reader.Number(), 7);
    EXPECT_EQ(reader.Damaged(), damaged);
  }
}
