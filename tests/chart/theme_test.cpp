// Themes of k7chart: what is written reads back, what is wrong is said, and the shipped ones do what they are
// for.

#include "ink/theme.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>

namespace {

class ThemeFileTest : public testing::Test {
 protected:
  std::string Read(const std::string& settings, Theme& theme) {
    const std::string path = m_dir / "t.xml";
    std::ofstream(path) << "<Options>" << settings << "</Options>";
    return theme.Read(path);
  }

  TempDir m_dir;
};

TEST_F(ThemeFileTest, DayIsWhatTheShippedFileSays) {
  Theme shipped;
  shipped[ThemeItem::Land].width = 9;
  ASSERT_EQ(shipped.Read(K7_THEMES "/day.xml"), "");
  EXPECT_EQ(shipped, Theme());
}

TEST_F(ThemeFileTest, WhatIsLeftOutIsDay) {
  Theme theme, expected;
  theme[ThemeItem::Sea].fill = {1, 2, 3, 4};
  expected[ThemeItem::Land].fill = {0xf4, 0x0b, 0xdc, 0x80};
  expected[ThemeItem::Borders].dash = {200, 0.1, 0, 0};
  expected[ThemeItem::Borders].width = 40;
  expected[ThemeItem::Rivers].maxNMPerPixel = 2.5;
  EXPECT_EQ(Read("<Fill Group=\"Land\">#F40bDC80</Fill><Dash Group=\"Borders\">200 0.1</Dash><Width "
                 "Group=\"Borders\">40</Width>"
                 "<MaxNMPerPixel Group=\"Rivers\">2.5</MaxNMPerPixel>",
                 theme),
            "");
  EXPECT_EQ(theme, expected);
  EXPECT_TRUE(theme[ThemeItem::Rivers].ShowsAt(2.5));
  EXPECT_FALSE(theme[ThemeItem::Rivers].ShowsAt(2.6));
}

TEST_F(ThemeFileTest, WhatIsLeftOutOfAVariantIsAsItsLayer) {
  Theme theme;
  ASSERT_EQ(Read("<Width Group=\"ClassCAirspaces\">3</Width><Line Group=\"Airspaces\">#010203</Line><Width "
                 "Group=\"Airspaces\">2</Width><Fill Group=\"Airports\">#040506</Fill>",
                 theme),
            "");
  EXPECT_EQ(theme[ThemeItem::ClassCAirspaces].line, (Color{1, 2, 3, 255}));
  EXPECT_EQ(theme[ThemeItem::ClassCAirspaces].width, 3);
  EXPECT_EQ(theme[ThemeItem::ClassEAirspaces].width, 2);
  EXPECT_EQ(theme[ThemeItem::ToweredAirports].fill, (Color{4, 5, 6, 255}));
}

TEST_F(ThemeFileTest, SavedThemesReadBackEqual) {
  std::mt19937 bits(7);
  const auto number = [&bits] { return std::uniform_real_distribution<>(0.1, 40)(bits); };
  const auto byte = [&bits] { return static_cast<uint8_t>(bits()); };
  Theme night;
  ASSERT_EQ(night.Read(K7_THEMES "/night.xml"), "");
  for (int i = 0; i < 50; ++i) {
    Theme theme = night;
    for (const ThemeItem item : {ThemeItem::Land, ThemeItem::Rivers, ThemeItem::Other}) {
      theme[item].fill = {byte(), byte(), byte(), byte()};
      theme[item].line = {byte(), byte(), byte(), byte()};
      theme[item].width = number();
      theme[item].dash = {};
      for (size_t k = 0; k < bits() % 5; ++k) theme[item].dash[k] = number();
      theme[item].minNMPerPixel = bits() % 2 ? number() / 100 : 0;
    }
    theme[ThemeItem::Terrain].visible = bits() % 2;
    theme[ThemeItem::ClassDAirspaces].width = number();
    std::vector<ThemeItem> order = {ThemeItem::Sea, ThemeItem::Route, ThemeItem::Contours};
    std::shuffle(order.begin(), order.end(), bits);
    order.resize(bits() % 4);
    theme.SetOrder(order);
    HeightTints& tints = theme[ThemeItem::Terrain].tints = {1 + static_cast<int>(bits() % 20), {}};
    for (int k = 0; k < tints.count; ++k)
      tints.rows[static_cast<size_t>(k)] = {k * 2000 - 9000, {byte(), byte(), byte(), byte()}};
    const std::string path = m_dir / "saved.xml";
    ASSERT_EQ(theme.Save(path), "");
    Theme read;
    ASSERT_EQ(read.Read(path), "");
    ASSERT_EQ(read, theme) << i;
  }
  EXPECT_NE(night.Save(m_dir / "no/such/folder.xml"), "");
}

TEST_F(ThemeFileTest, SaysWhatIsWrongAndStaysAsItWas) {
  const struct {
    const char* settings;
    const char* said;
  } cases[] = {
      {"<Fill Group=\"Moon\">#123456</Fill>", "'Moon'"},
      {"<Fill>#123456</Fill>", "the groups are Paper, Sea"},
      {"<Colour Group=\"Land\">#123456</Colour>", "Land has no 'Colour'; it has Fill, Line, Width"},
      {"<Width Group=\"Paper\">1</Width>", "Paper has no 'Width'; it has Fill"},
      {"<Fill Group=\"Land\">blue</Fill>", "Fill of Land is #RRGGBB or #RRGGBBAA, not 'blue'"},
      {"<Line Group=\"Land\">#+12345</Line>", "'#+12345'"},
      {"<Width Group=\"Land\">40.1</Width>", "Width of Land is 0.1 to 40 pixels, not '40.1'"},
      {"<Dash Group=\"Land\">200.5</Dash>", "'200.5'"},
      {"<MinNMPerPixel Group=\"Land\">-1</MinNMPerPixel>", "'-1'"},
      {"<Width Group=\"Land\">nan</Width>", "'nan'"},
      {"<Width Group=\"Land\">1px</Width>", "'1px'"},
      {"<Dash Group=\"Land\">1 0</Dash>", "'1 0'"},
      {"<Dash Group=\"Land\">1 2 3 4 5</Dash>", "'1 2 3 4 5'"},
      {"<MinNMPerPixel Group=\"Land\">3</MinNMPerPixel><MaxNMPerPixel Group=\"Land\">2</MaxNMPerPixel>",
       "MinNMPerPixel of Land is above"},
      {"<Fill Group=\"Land\">#123456</Fill><Fill Group=\"Land\">#123457</Fill>", "Fill of Land twice"},
      {"<Tints Group=\"Terrain\">0 #123456, 0 #123457</Tints>", "Tints of Terrain is up to 20 heights"},
      {"<Tints Group=\"Terrain\">0 #12345</Tints>", "'0 #12345'"},
      {"<Tints Group=\"Terrain\">nan #123456</Tints>", "'nan #123456'"},
      {"<Tints Group=\"Terrain\"></Tints>", "Tints of Terrain is"},
      {"<Moon Group=\"Symbols\">a.png</Moon>", "Symbols has no 'Moon'; it has ToweredAirport, Airport"},
      {"<VOR Group=\"Symbols\">no.png</VOR>", "no.png': No such file"},
      {"<VOR Group=\"Symbols\">t.xml</VOR>", "cannot read the image"},
      {"<Visible Group=\"Land\">maybe</Visible>", "Visible of Land is yes or no, not 'maybe'"},
      {"<Visible Group=\"Limb\">no</Visible>", "Limb has no 'Visible'"},
      {"<Hidden Group=\"Layers\">Land</Hidden>", "Layers has no 'Hidden'; it has Order"},
      {"<Order Group=\"Layers\">Land, Moon</Order>", "no layer 'Moon'; layers are Sea, Land"},
      {"<Order Group=\"Layers\">Land, Limb</Order>", "no layer 'Limb'"},
      {"<Order Group=\"Layers\">Land,Sea, Land</Order>", "'Land' twice"},
      {"<Order Group=\"Layers\"></Order>", "names none"},
      {"", "nothing"},
  };
  for (const auto& c : cases) {
    Theme theme;
    theme[ThemeItem::Sea].fill = {1, 2, 3, 4};
    const Theme before = theme;
    const std::string said = Read(c.settings, theme);
    EXPECT_NE(said.find(c.said), std::string::npos) << c.settings << ": " << said;
    EXPECT_NE(said.find("t.xml"), std::string::npos) << said;
    EXPECT_EQ(said.find('\n'), std::string::npos) << said;
    EXPECT_EQ(theme, before) << c.settings;
  }
  Theme theme;
  EXPECT_NE(theme.Read(m_dir / "none.xml").find("No such file"), std::string::npos);
  std::ofstream(m_dir / "cut.xml") << "<Options><Fill Group=\"Land\">#123456";
  EXPECT_NE(theme.Read(m_dir / "cut.xml").find("no whole XML document"), std::string::npos);
}

// Relative luminance and contrast as WCAG 2.1 has them, of all light and of red alone.
double Linear(uint8_t byte) {
  const double c = byte / 255.0;
  return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double Luminance(const Color& c, bool redOnly) {
  return redOnly ? Linear(c.red)
                 : 0.2126 * Linear(c.red) + 0.7152 * Linear(c.green) + 0.0722 * Linear(c.blue);
}

double Contrast(const Color& a, const Color& b, bool redOnly) {
  const double x = Luminance(a, redOnly) + 0.05, y = Luminance(b, redOnly) + 0.05;
  return std::max(x, y) / std::min(x, y);
}

TEST_F(ThemeFileTest, NightIsDarkAndLegibleUnderRedLight) {
  Theme night;
  ASSERT_EQ(night.Read(K7_THEMES "/night.xml"), "");
  for (const ThemeItem ground : {ThemeItem::Paper, ThemeItem::Sea, ThemeItem::Sky, ThemeItem::Land})
    EXPECT_LT(Luminance(night[ground].fill, false), 0.02) << ThemeItemName(ground);
  EXPECT_LT(Luminance(night[ThemeItem::Text].fill, false), 0.4);
  for (const bool redOnly : {false, true}) {
    for (const ThemeItem ground : {ThemeItem::Paper, ThemeItem::Sea, ThemeItem::Land})
      EXPECT_GT(Contrast(night[ThemeItem::Text].fill, night[ground].fill, redOnly), 4.5)
          << ThemeItemName(ground);
    for (const ThemeItem line : {ThemeItem::Land, ThemeItem::Borders, ThemeItem::Frame})
      EXPECT_GT(Contrast(night[line].line, night[ThemeItem::Land].fill, redOnly), 3) << ThemeItemName(line);
    EXPECT_GT(Contrast(night[ThemeItem::Rivers].line, night[ThemeItem::Land].fill, redOnly), 2);
    const HeightTints& tints = night[ThemeItem::Terrain].tints;
    for (int i = 0; i < tints.count; ++i)
      EXPECT_GT(
          Contrast(night[ThemeItem::Elevations].line, tints.rows[static_cast<size_t>(i)].color, redOnly), 4)
          << i;
  }
}

// Where terrain begins at the sea's level nothing shows it.
TEST_F(ThemeFileTest, TintsAboutTheSeasLevelAreThoseOfTheSeaAndTheLand) {
  for (const char* const name : {"/day.xml", "/night.xml", "/printed.xml"}) {
    Theme theme;
    ASSERT_EQ(theme.Read(K7_THEMES + std::string(name)), "");
    const HeightTints& tints = theme[ThemeItem::Terrain].tints;
    size_t land = 0;
    while (tints.rows[land].feet < 0) ++land;
    EXPECT_EQ(tints.rows[land].feet, 0);
    EXPECT_EQ(tints.rows[land].color, theme[ThemeItem::Land].fill) << name;
    EXPECT_EQ(tints.rows[land - 1].color, theme[ThemeItem::Sea].fill) << name;
  }
}

}  // namespace
