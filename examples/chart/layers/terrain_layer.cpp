#include "layers/terrain_layer.h"

#include <k7/foundation/error_string.h>
#include <k7/projection/chart_rect.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace {

struct Tint {
  int32_t metres;
  K7Color color;
};

// Greens, yellow and browns upwards, blues downwards, as on printed charts; pale, since everything else is
// read on top.
constexpr Tint TINTS[] = {
    {-9999, {122, 171, 205}}, {-2000, {143, 188, 216}}, {-500, {166, 204, 226}}, {-100, {188, 219, 234}},
    {-20, {207, 230, 240}},   {0, {203, 221, 190}},     {150, {219, 227, 193}},  {300, {235, 234, 198}},
    {600, {242, 228, 184}},   {1000, {235, 211, 163}},  {1500, {222, 190, 144}}, {2100, {207, 170, 130}},
    {3000, {200, 170, 148}},  {4000, {224, 214, 206}},
};

// A dark paper takes dark tints.
double Brightness(const Theme& theme) {
  const Color paper = theme[ThemeItem::Paper].fill;
  return std::max({paper.red, paper.green, paper.blue}) < 128 ? 0.3 : 1;
}

K7Color Scaled(K7Color color, double by) {
  const auto scaled = [by](uint8_t part) { return static_cast<uint8_t>(part * by); };
  return {scaled(color.R()), scaled(color.G()), scaled(color.B())};
}

}  // namespace

std::string TerrainLayer::Load(Progress& progress) {
  progress.Step("reading terrain");
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(m_folder, error)) {
    int resolution = 0;
    if (entry.path().extension() != ".ter" ||
        std::sscanf(entry.path().filename().string().c_str(), "%d_", &resolution) != 1 || resolution < 1)
      continue;
    auto region = std::make_unique<K7TerRegion>();
    if (const int code = region->Read(entry.path().string().c_str()); code != 0) {
      const char* const why = K7ErrorString::ErrorString(code);
      return "cannot read " + entry.path().string() + ": " + (why ? why : "damaged");
    }
    m_regions.push_back({resolution, std::move(region)});
  }
  if (error) return "cannot read the folder " + m_folder + ": " + error.message();
  return m_regions.empty() ? "there are no region files (.ter) in " + m_folder : "";
}

// The coarsest that has a post for every two pixels, else the finest.
int TerrainLayer::ResolutionFor(const K7MapView& view) const {
  const double wanted = 60 / view.NMPerPixel() / 2;
  int best = 0;
  for (const Region& region : m_regions) {
    const bool isEnough = region.resolution >= wanted, wasEnough = best >= wanted;
    if (isEnough != wasEnough ? isEnough : isEnough ? region.resolution < best : region.resolution > best)
      best = region.resolution;
  }
  return best;
}

void TerrainLayer::AddTiles(const K7TerRegion& region, const K7ChartRect& extent) {
  for (int row = 0; row < region.RowCount(); ++row)
    for (int column = 0; column < region.ColCount(); ++column) {
      K7TerTile* const tile = region.Tile(row, column);
      if (tile && extent.AreaIn(tile->GetChartRect())) m_shown->AddTileForMerge(tile);
    }
}

void TerrainLayer::Prepare(const LayerContext& context) {
  m_shown.reset();
  if (!context.theme[Item()].ShowsAt(context.view.NMPerPixel())) return;
  int32_t metres[std::size(TINTS)];
  K7Color colors[std::size(TINTS)];
  const double brightness = Brightness(context.theme);
  for (size_t i = 0; i < std::size(TINTS); ++i) {
    metres[i] = TINTS[i].metres;
    colors[i] = Scaled(TINTS[i].color, brightness);
  }
  m_params.ColorMap().Init(static_cast<int>(std::size(TINTS)), metres, colors);
  // Gentle slopes of wide views would hardly show.
  m_params.m_exaggeration = std::clamp(context.view.NMPerPixel() * 12, 1.0, 8.0);
  m_params.m_deepDarkening = 0;
  m_shown = std::make_unique<K7TerTileEX>();
  const int resolution = ResolutionFor(context.view);
  const K7ChartRect extent = context.view.GetExtent();
  for (const Region& region : m_regions)
    if (region.resolution == resolution) AddTiles(*region.region, extent);
  if (m_shown->MergeCount() == 0 || m_shown->MergeTiles() != 0 || m_shown->InitBoundary() != 0)
    m_shown.reset();
}

void TerrainLayer::DrawAreas(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  if (m_shown) m_shown->Render(&g, context.view, m_params);
}
