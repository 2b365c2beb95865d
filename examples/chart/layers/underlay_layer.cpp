#include "layers/underlay_layer.h"

#include "ink/readable.h"
#include "layers/pixel_places.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double NM_PER_DEGREE = 60;

// Blue, green, red and alpha, the colours multiplied by it: so what cannot be seen adds nothing to a mean.
using Sum = std::array<float, 4>;

void Add(K7Color color, float weight, Sum& sum) {
  const float seen = weight * color.A();
  sum[0] += seen * color.B();
  sum[1] += seen * color.G();
  sum[2] += seen * color.R();
  sum[3] += seen;
}

// Of weights whose sum is 1.
K7Color Mean(const Sum& sum) {
  if (sum[3] < 0.5F) return {};
  const auto part = [&](size_t i) { return static_cast<uint8_t>(std::min(sum[i] / sum[3] + 0.5F, 255.0F)); };
  return {part(2), part(1), part(0), static_cast<uint8_t>(std::min(sum[3] + 0.5F, 255.0F))};
}

// Null without memory. An odd last row or column joins the one before.
std::unique_ptr<K7Bitmap> Halved(const K7Bitmap& from) {
  auto half = std::make_unique<K7Bitmap>();
  const auto halves = [](int size) { return std::max(size / 2, 1); };
  if (half->Create(halves(from.Width()), halves(from.Height()), 32) != 0) return nullptr;
  const auto begin = [](int i, int halved, int whole) {
    return static_cast<int>(int64_t{i} * whole / halved);
  };
  K7Color* to = half->Colors();
  for (int y = 0; y < half->Height(); ++y)
    for (int x = 0; x < half->Width(); ++x, ++to) {
      const int left = begin(x, half->Width(), from.Width()),
                right = begin(x + 1, half->Width(), from.Width());
      const int top = begin(y, half->Height(), from.Height()),
                bottom = begin(y + 1, half->Height(), from.Height());
      const float weight = 1.0F / static_cast<float>((right - left) * (bottom - top));
      Sum sum{};
      for (int v = top; v < bottom; ++v)
        for (int u = left; u < right; ++u) Add(from.Colors()[int64_t{v} * from.Width() + u], weight, sum);
      *to = Mean(sum);
    }
  return half;
}

// A picture and where it lies.
class Sampler {
 public:
  Sampler(const K7Bitmap& image, const UnderlayBounds& bounds, double width)
      : m_pixels(image.Colors()),
        m_columns(image.Width()),
        m_rows(image.Height()),
        m_bounds(bounds),
        m_width(width),
        m_isRound(width == 360),
        m_perColumn(image.Width() / width),
        m_perRow(image.Height() / (bounds.north - bounds.south)) {}

  // Fully transparent beside the picture.
  K7Color At(double lat, double lon) const {
    if (!(lat >= m_bounds.south && lat <= m_bounds.north)) return {};
    double east = lon - m_bounds.west;
    east -= 360 * std::floor(east / 360);
    if (!(east <= m_width)) return {};
    const double x = east * m_perColumn - 0.5, y = (m_bounds.north - lat) * m_perRow - 0.5;
    const int column = static_cast<int>(std::floor(x)), row = static_cast<int>(std::floor(y));
    const float u = static_cast<float>(x - column), v = static_cast<float>(y - row);
    Sum sum{};
    Add(Pixel(row, column), (1 - u) * (1 - v), sum);
    Add(Pixel(row, column + 1), u * (1 - v), sum);
    Add(Pixel(row + 1, column), (1 - u) * v, sum);
    Add(Pixel(row + 1, column + 1), u * v, sum);
    return Mean(sum);
  }

 private:
  // At most one pixel beyond the edges. The columns of a picture all around the earth go on behind its seam,
  // and its rows behind the poles; other pictures go on with their last ones.
  K7Color Pixel(int row, int column) const {
    const bool isBeyond = row < 0 || row >= m_rows;
    if (isBeyond) row = row < 0 ? 0 : m_rows - 1;
    if (isBeyond && m_isRound && (row > 0 ? m_bounds.south == -90 : m_bounds.north == 90))
      column += m_columns / 2;
    if (column < 0 || column >= m_columns)
      column = m_isRound ? (column + m_columns) % m_columns : std::clamp(column, 0, m_columns - 1);
    return m_pixels[static_cast<ptrdiff_t>(row) * m_columns + column];
  }

  const K7Color* m_pixels;
  int m_columns, m_rows;
  UnderlayBounds m_bounds;
  double m_width;
  bool m_isRound;
  double m_perColumn, m_perRow;
};

// On dark paper a bright picture would outshine all that is read on top.
void DimAsPaper(const Theme& theme, K7Bitmap& picture) {
  static constexpr double DIMMED[12] = {0.35, 0, 0, 0, 0, 0.35, 0, 0, 0, 0, 0.35, 0};
  const Color paper = theme[ThemeItem::Paper].fill;
  if (std::max({paper.red, paper.green, paper.blue}) < 128) picture.ColorTransform(DIMMED);
}

}  // namespace

UnderlayLayer::UnderlayLayer(std::string path, const UnderlayBounds& bounds)
    : m_path(std::move(path)), m_bounds(bounds), m_width(bounds.east - bounds.west) {
  if (m_width <= 0) m_width += 360;
}

std::string UnderlayLayer::Load(Progress& progress) {
  progress.Step("reading " + m_path);
  if (const std::string why = WhyUnreadable(m_path); !why.empty())
    return "cannot read the image '" + m_path + "': " + why;
  auto picture = std::make_unique<K7Bitmap>();
  int code = picture->Read(m_path.c_str());
  if (code == 0) code = picture->GenTransparent(*picture);
  if (code != 0) {
    const char* const why = K7ErrorString::ErrorString(code);
    return "cannot read the image '" + m_path + "': " + (why ? why : "unknown error");
  }
  m_levels.clear();
  m_levels.push_back(std::move(picture));
  return {};
}

// The finest whose pixels are at least half as large as those of the view: finer ones would make noise of
// what is smaller than a pixel. Null without memory.
const K7Bitmap* UnderlayLayer::LevelFor(const K7MapView& view) {
  const double height = (m_bounds.north - m_bounds.south) * NM_PER_DEGREE;
  size_t level = 0;
  for (; m_levels[level]->Height() > 1 && m_levels[level]->Width() > 1; ++level) {
    if (2 * height / m_levels[level]->Height() > view.NMPerPixel()) break;
    if (level + 1 == m_levels.size()) m_levels.push_back(Halved(*m_levels[level]));
    if (!m_levels.back()) {
      m_levels.pop_back();
      break;
    }
  }
  return m_levels[level].get();
}

void UnderlayLayer::DrawAreas(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  const K7MapView& view = context.view;
  K7Bitmap picture;
  if (m_levels.empty() || picture.Create(view.Width(), view.Height(), 32) != 0) return;
  const Sampler sampler(*LevelFor(view), m_bounds, m_width);
  K7Color* const pixels = picture.Colors();
  VisitPlaces(view, [&](int x, int y, double lat, double lon) {
    pixels[static_cast<ptrdiff_t>(y) * view.Width() + x] = sampler.At(lat, lon);
  });
  DimAsPaper(context.theme, picture);
  g.Image(picture.Pixels(), view.Width(), view.Height(), 0, 0, view.Width(), view.Height());
}
