// Layers by name: what is hidden and moved, and what a theme keeps of it; the route and what lies off it.

#include "layers/layer_list.h"

#include "chart/chart_fixture.h"
#include "layers/route_layer.h"
#include "support/temp_dir.h"

#include <cmath>

namespace {

using Names = std::vector<std::string>;

class LayersTest : public ChartTest {
 protected:
  ShapeLayer other{ThemeItem::Other, "mine.shp"};
};

TEST_F(LayersTest, NamedLayersChangePlacesAndOthersStay) {
  LayerList layers({&earth, &land, &other, &graticule}, theme);
  const Names first = {"sea", "land", "mine", "graticule"};
  EXPECT_EQ(layers.Names(), first);
  for (const Names& wrong : {Names{"land", "lakes"}, {"land", "Land"}, {"land", ""}}) {
    EXPECT_FALSE(layers.SetOrder(wrong));
    EXPECT_EQ(layers.Names(), first);
  }
  ASSERT_TRUE(layers.SetOrder({"Graticule", "mine", "SEA"}));
  EXPECT_EQ(layers.Names(), (Names{"graticule", "land", "mine", "sea"}));
  EXPECT_FALSE(layers.SetVisible("lakes", false));
  ASSERT_TRUE(layers.SetVisible("MINE", false));
  Names shown;
  layers.VisitVisible([&](Layer& layer) { shown.push_back(layer.Name()); });
  EXPECT_EQ(shown, (Names{"graticule", land.Name(), "sea"}));
}

// A chart that a user arranged comes up the same from the file that it wrote.
TEST_F(LayersTest, ThemesKeepWhatIsHiddenAndTheOrder) {
  const TempDir folder;
  const std::string path = folder / "mine.xml";
  Theme read;
  ASSERT_TRUE(chart.Layers().SetOrder({"graticule", "land"}));
  ASSERT_TRUE(chart.Layers().SetVisible("sea", false));
  chart.WriteUserThemePref(path.c_str());
  ASSERT_EQ(read.Read(path), "");
  LayerList again({&earth, &land, &graticule}, read);
  EXPECT_EQ(again.Names(), (Names{"sea", "graticule", "land"}));
  EXPECT_TRUE(!again.IsVisible("sea") && again.IsVisible("land"));
}

TEST_F(LayersTest, ComponentsBelongToLayersThatAreThere) {
  const auto parent = [this](const char* component) {
    return std::string(chart.GetComponentParentName(component));
  };
  EXPECT_EQ(parent("Land"), "land");
  EXPECT_EQ(parent("limb"), "sea");
  for (const char* const none : {"CompassRoses", "VOR", "Text", "Paper", "Moon", ""})
    EXPECT_EQ(parent(none), "") << none;
  EXPECT_EQ(parent(nullptr), "");
  EXPECT_FALSE(chart.CanToggleTerrainContours());
}

// Takes down pictures and the order in which they and lines come.
struct VeilRecorder : PathRecorder {
  void Image(const uint32_t* image, int w, int h, double left, double top, double right, double) override {
    pixels.assign(image, image + w * h);
    width = w;
    cell = (right - left) / w;
    x0 = left;
    y0 = top;
    strokesBefore = strokes;
  }
  void Stroke() override {
    strokes += !pieces.empty();
    Clear();
  }
  double Opacity(double x, double y) const {
    const auto at = static_cast<size_t>((y - y0) / cell) * static_cast<size_t>(width) +
                    static_cast<size_t>((x - x0) / cell);
    return (pixels.at(at) >> 24) / 255.0;
  }
  std::vector<uint32_t> pixels;
  double cell = 0, x0 = 0, y0 = 0;
  int width = 0, strokes = 0, strokesBefore = 0;
};

TEST_F(LayersTest, WhatLiesOffAVisibleRouteIsDimmedUnderIt) {
  Route route;
  route.fixes.resize(2);
  route.fixes[0].place = {48, -130};
  route.fixes[1].place = {48, -110};
  route.legs.resize(1);
  RouteLayer layer(route);
  Chart flown({&layer, &earth}, theme, progress);
  EXPECT_FALSE(chart.SetOffRouteAlpha(0));
  ASSERT_EQ(flown.Show({K7_PROJ_LAMBERT, {48, -120}, 600, {}}, WIDTH, HEIGHT, 1), "");
  const auto draw = [&] {
    VeilRecorder recorder;
    EXPECT_EQ(flown.Render(&recorder), 0);
    return recorder;
  };
  EXPECT_TRUE(draw().pixels.empty());
  ASSERT_TRUE(flown.SetOffRouteAlpha(102));
  const VeilRecorder drawn = draw();
  EXPECT_NEAR(drawn.Opacity(5, 5), 0.6, 0.01);
  EXPECT_EQ(drawn.Opacity(WIDTH / 2.0, HEIGHT / 2.0), 0);
  EXPECT_GT(drawn.strokes, drawn.strokesBefore);  // though the route is the lowest layer
  const LabelPlan::Opacity label = flown.LabelOpacity();
  const auto at = [&](double x, double y, ThemeItem item) {
    return label({"", x, y, {.size = 9, .item = item}}, PixelBox{x - 1, y - 1, x + 1, y + 1});
  };
  EXPECT_NEAR(at(5, 5, ThemeItem::Fixes), 0.4, 1e-9);
  EXPECT_EQ(at(5, 5, ThemeItem::Route), 1);
  EXPECT_EQ(at(5, -5, ThemeItem::Text), 1);

  flown.SetRouteVisible(0);
  EXPECT_FALSE(flown.SetOffRouteAlpha(0));
  EXPECT_TRUE(draw().pixels.empty());
  flown.SetRouteVisible(1);
  EXPECT_FALSE(draw().pixels.empty());
  flown.ClearRoute();
  EXPECT_EQ(flown.Layers().Names(), Names{"sea"});
  EXPECT_TRUE(draw().pixels.empty());
}

}  // namespace
