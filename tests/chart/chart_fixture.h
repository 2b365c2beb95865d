// A chart of the sample's land with its sea and graticule, and contexts that take down what it draws.
#pragma once

#include "layers/chart.h"
#include "layers/earth_layer.h"
#include "layers/graticule_layer.h"
#include "layers/shape_layer.h"

#include "projection/path_recorder.h"

#include <gtest/gtest.h>

inline std::vector<std::string> TextsUnder(Chart& chart, double x, double y) {
  std::vector<std::string> texts;
  for (const Picked& thing : chart.Pick(x, y)) texts.push_back(thing.text);
  return texts;
}

class ChartTest : public testing::Test {
 protected:
  ChartTest() : land(ThemeItem::Land, K7_SAMPLE_DATA "/ne_110m_land.shp") {
    EXPECT_EQ(land.Load(progress), "");
  }

  NoProgress progress;
  Theme theme;
  EarthLayer earth;
  ShapeLayer land;
  GraticuleLayer graticule;
  Chart chart{{&earth, &land, &graticule}, theme, progress};
  static constexpr int WIDTH = 300, HEIGHT = 200;
};
