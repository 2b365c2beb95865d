#include "web/wms.h"
#include "web/map_window.h"
#include "web_desk.h"

#include <k7/io/xml_elem.h>

#include <cmath>

namespace {

HttpAnswer Ask(const std::string& query) { return AnswerWms(RequestOf("/wms", query), SampleDesk()); }

// GetMap of a small picture; what comes twice counts as it is first given.
HttpAnswer Map(const std::string& query) {
  return Ask(query +
             "&REQUEST=GetMap&VERSION=1.3.0&LAYERS=land,navaids&STYLES=&CRS=CRS:84&BBOX=-123.5,46.5,-121.5,48"
             "&WIDTH=240&HEIGHT=180&FORMAT=image/png");
}

struct Pixels {
  explicit Pixels(const std::string& png) : rest(png) {
    image = cairo_image_surface_create_from_png_stream(
        [](void* self, unsigned char* data, unsigned length) {
          std::string& left = static_cast<Pixels*>(self)->rest;
          if (left.size() < length) return CAIRO_STATUS_READ_ERROR;
          std::copy_n(left.begin(), length, data);
          left.erase(0, length);
          return CAIRO_STATUS_SUCCESS;
        },
        this);
    EXPECT_EQ(cairo_surface_status(image), CAIRO_STATUS_SUCCESS);
  }
  ~Pixels() { cairo_surface_destroy(image); }
  uint32_t At(int x, int y) const {
    return reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(image) +
                                             y * cairo_image_surface_get_stride(image))[x];
  }
  std::string rest;
  cairo_surface_t* image;
};

// Where a place falls in the picture of a box.
DevicePoint PixelOf(const MapBox& box, const K7LatLon& place) {
  MapPainter painter(SampleDesk().Data());
  std::optional<MapWindow> window = WindowOf(box);
  window->map.only = {"graticule"};
  EXPECT_EQ(painter.Show(window->map), "");
  DevicePoint p{};
  painter.Shown().View()->ToDevice(place.Lat(), place.Lon(), p.x, p.y);
  cairo_matrix_transform_point(&window->toPicture, &p.x, &p.y);
  return p;
}

// IOGP Guidance Note 7-2, 3.5.2: the example of Popular Visualisation Pseudo Mercator.
TEST(MapWindow, LiesOnTheGridOfWebMercator) {
  const K7LatLon place(24 + 22 / 60.0 + 54.433 / 3600, -(100 + 20 / 60.0));
  const double x = -11169055.58, y = 2800000.00;
  const MapBox boxes[] = {
      {MapCrs::Mercator, x - 700, y - 300, x + 1000, y + 500, 257, 121},
      {MapCrs::Mercator, -20037508.342789, -20037508.342789, 20037508.342789, 20037508.342789, 256, 256},
      {MapCrs::Mercator, -45000000, -30000000, 40000000, 30000000, 1000, 999},
      {MapCrs::Mercator, x - 4e6, y - 1e6, x + 1e6, y + 3e6, 300, 900},
      {MapCrs::Mercator, x - 5e7 - 3e6, y - 1e6, x + 5e7 - 1e6, y + 3e6, 4096, 100},
  };
  for (const MapBox& box : boxes) {
    const DevicePoint p = PixelOf(box, place);
    EXPECT_NEAR(p.x, (x - box.west) / (box.east - box.west) * box.width, 0.01) << box.west;
    EXPECT_NEAR(p.y, (box.north - y) / (box.north - box.south) * box.height, 0.01) << box.west;
  }
}

TEST(MapWindow, DegreesAreProportionalWhereverTheBoxLies) {
  for (const double west : {-190.0, 170.0, 530.0}) {
    const DevicePoint p = PixelOf({MapCrs::Degrees, west, -10, west + 20, 50, 200, 300}, {20, -175});
    EXPECT_NEAR(p.x, 150, 0.01);
    EXPECT_NEAR(p.y, 150, 0.01);
  }
}

TEST(Wms, AxesAreInTheOrderOfTheReferenceSystem) {
  const std::string map = Map("").body;
  ASSERT_EQ(map.substr(1, 3), "PNG");
  EXPECT_TRUE(Map("crs=EPSG:4326&bbox=46.5,-123.5,48,-121.5").body == map);
  EXPECT_TRUE(Map("version=1.1.1&srs=EPSG:4326&bbox=-123.5,46.5,-121.5,48").body == map);
  EXPECT_FALSE(Map("bbox=-123.4,46.5,-121.4,48").body == map);
}

TEST(Wms, WhatIsNoMapIsTransparentOrTheBackground) {
  const Pixels over(Map("TRANSPARENT=TRUE&LAYERS=navaids").body);
  EXPECT_EQ(over.At(238, 178), 0U);
  // The VOR of Seattle, 116.8, as its operator publishes it: N47 26.1 W122 18.6.
  const int x = static_cast<int>((123.5 - 122.31) * 120), y = static_cast<int>((48 - 47.435) * 120);
  bool isInked = false;
  for (int dy = -3; dy <= 3; ++dy)
    for (int dx = -3; dx <= 3; ++dx) isInked |= over.At(x + dx, y + dy) >> 24 == 255;
  EXPECT_TRUE(isInked);
  // Laid over white it is what is drawn on white, to the rounding of two bytes.
  const Pixels onWhite(Map("LAYERS=navaids").body);
  int worst = 0;
  for (int i = 0; i < 240 * 180; ++i)
    for (int shift = 0; shift < 24; shift += 8) {
      const uint32_t ink = over.At(i % 240, i / 240), paper = onWhite.At(i % 240, i / 240);
      const int sum = static_cast<int>((ink >> shift & 0xFF) + 255 - (ink >> 24));
      worst = std::max(worst, std::abs(sum - static_cast<int>(paper >> shift & 0xFF)));
    }
  EXPECT_LE(worst, 3);
  EXPECT_EQ(Pixels(Map("LAYERS=navaids&BGCOLOR=0x123456").body).At(238, 178) & 0xFFFFFF, 0x123456U);
  const Pixels beyond(Map("LAYERS=chart&BBOX=-200,30,200,130&TRANSPARENT=TRUE").body);
  EXPECT_EQ(beyond.At(120, 60), 0U);
  EXPECT_EQ(beyond.At(4, 160), 0U);
  EXPECT_EQ(beyond.At(120, 120) >> 24, 255U);
}

TEST(Wms, RefusesInTheWordsOfTheStandard) {
  const std::pair<const char*, const char*> problems[] = {
      {"CRS=EPSG:4269", "InvalidCRS"},
      {"LAYERS=land,rails", "LayerNotDefined"},
      {"LAYERS=", "MissingParameterValue"},
      {"STYLES=sepia", "StyleNotDefined"},
      {"FORMAT=image/gif", "InvalidFormat"},
      {"REQUEST=GetLegendGraphic", "OperationNotSupported"},
      {"REQUEST=GetFeatureInfo&QUERY_LAYERS=airways&I=1&J=1", "LayerNotDefined"},
      {"REQUEST=GetFeatureInfo&QUERY_LAYERS=land&I=240&J=1", "InvalidPoint"},
  };
  for (const auto& [query, code] : problems)
    EXPECT_NE(Map(query).body.find(std::string("code=\"") + code + "\""), std::string::npos) << query;
  for (const char* const query :
       {"BBOX=nan,46,-120,49", "BBOX=-124,46,inf,49", "BBOX=-120,46,-124,49", "BBOX=1,2,3", "BBOX=1,2,3,4,5",
        "BBOX=-1e308,46,1e308,49", "BBOX=-124,46,-120,46.0001", "WIDTH=0", "WIDTH=4097", "HEIGHT=1e3",
        "BGCOLOR=0x12345", "TRANSPARENT=maybe"})
    EXPECT_NE(Map(query).body.find("InvalidParameterValue"), std::string::npos) << query;
  EXPECT_NE(Map("CRS=<\"\x01\xEF\xBF\xBF\xC3\xA9").body.find(">no map in '&lt;&quot;??\u00E9'<"),
            std::string::npos);
  // Boxes that are in order and show nothing, or too little to be a map, end well.
  for (const char* const query : {"BBOX=0,95,10,105", "BBOX=1,1,1.0000000000001,1.0000000000001",
                                  "BBOX=-1e12,-1e12,1e12,1e12", "CRS=EPSG:3857&BBOX=-1e12,-5,1e12,1e12"})
    EXPECT_FALSE(Map(query).body.empty()) << query;
  EXPECT_EQ(Pixels(Map("LAYERS=rails&EXCEPTIONS=BLANK&TRANSPARENT=TRUE").body).At(60, 45), 0U);
  EXPECT_EQ(Map("LAYERS=rails&EXCEPTIONS=INIMAGE").type, "image/png");
}

TEST(Wms, TellsWhatLiesUnderAPixel) {
  const auto info = [](const std::string& query) {
    return Map("REQUEST=GetFeatureInfo&QUERY_LAYERS=navaids&FEATURE_COUNT=9&" + query);
  };
  const std::string sea = "I=142&J=67&INFO_FORMAT=";
  EXPECT_NE(info(sea + "text/plain").body.find("SEA"), std::string::npos);
  EXPECT_NE(info(sea + "application/json").body.find("\"layer\":\"navaids\""), std::string::npos);
  K7XmlElem root;
  const std::string xml = info(sea + "text/xml").body;
  ASSERT_NE(root.Parse(xml.c_str()), nullptr);
  ASSERT_NE(root.Child("Feature"), nullptr) << xml;
  EXPECT_STREQ(root.Child("Feature")->AttribValue("layer"), "navaids");
  EXPECT_EQ(info("I=238&J=178").body, "nothing here\n");
  EXPECT_EQ(info("VERSION=1.1.1&SRS=EPSG:4326&X=142&Y=67").body, info(sea).body);
}

TEST(Wms, CapabilitiesNameWhatMapsAreMadeOf) {
  const std::string text = Ask("request=getcapabilities&service=wms&version=1.1.1").body;
  K7XmlElem root;
  ASSERT_NE(root.Parse(text.c_str()), nullptr);
  const K7XmlElem* const chart = root.Child("Capability")->Child("Layer");
  EXPECT_STREQ(chart->ChildText("Name"), "chart");
  EXPECT_NE(text.find("xlink:href=\"http://127.0.0.1:8077/wms?\""), std::string::npos);
  int layers = 0;
  while (const K7XmlElem* const layer = chart->Child("Layer", layers)) {
    const std::string name(layer->ChildText("Name"));
    EXPECT_EQ(Map("WIDTH=8&HEIGHT=6&LAYERS=" + name).type, "image/png") << name;
    ++layers;
  }
  EXPECT_GT(layers, 10);
}

}  // namespace
