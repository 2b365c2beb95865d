#include "grid/resample.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float NOTHING = std::numeric_limits<float>::quiet_NaN();

// A place along one axis of a grid: between post `index` and the next, whose share is `share`. Beyond the
// outermost posts these go on, with a weight that falls to nothing one post away: there the posts of the next
// grid begin.
struct Place {
  int index = 0;
  float share = 0;
  float weight = 0;

  bool IsWithin() const { return weight >= 1; }
  // Half a post beyond the outermost at most, by and large.
  bool IsReached() const { return weight >= 0.4999F; }
};

// The samples of target posts along one axis, against a grid's axis.
struct Places {
  std::vector<Place> samples;
  int first = 0;  // the posts of the grid that they need
  int last = -1;
};

// Along each side of a post.
struct SamplesPerPost {
  int lat = 1;
  int lon = 1;
};

Place PlaceAt(const GridAxis& axis, double degrees) {
  const double index = axis.IndexOf(degrees), end = axis.Count() - 1;
  const double beyond = std::max({-index, index - end, 0.0});
  Place place;
  if (!(beyond < 1)) return place;
  const double clamped = std::clamp(index, 0.0, end);
  place.index = std::min(static_cast<int>(clamped), axis.Count() - 2);
  place.share = static_cast<float>(clamped - place.index);
  place.weight = static_cast<float>(1 - beyond);
  return place;
}

Places PlacesAlong(const GridAxis& axis, double first, double spacing, int count, int perPost) {
  Places places;
  places.first = axis.Count();
  for (int i = 0; i < count * perPost; ++i) {
    const int post = i / perPost;
    const double offset = (i % perPost + 0.5) / perPost - 0.5;
    const Place place = PlaceAt(axis, first + (post + offset) * spacing);
    places.samples.push_back(place);
    if (place.weight <= 0) continue;
    places.first = std::min(places.first, place.index);
    places.last = std::max(places.last, place.index + 1);
  }
  return places;
}

// Adds one corner of four.
void Weigh(float metres, float weight, float& sum, float& known) {
  if (weight <= 0 || std::isnan(metres)) return;
  sum += metres * weight;
  known += weight;
}

// One grid, as far as it is needed, shifted by whole turns.
class Sampler {
 public:
  Sampler(const TargetPosts& posts, const SamplesPerPost& perPost, const ElevGrid& grid, int turn)
      : m_lats(PlacesAlong(grid.Lats(), posts.south, posts.spacing, posts.rows, perPost.lat)),
        m_lons(PlacesAlong(grid.Lons(), posts.west + turn, posts.spacing, posts.cols, perPost.lon)) {}

  bool IsEmpty() const { return m_lats.last < m_lats.first || m_lons.last < m_lons.first; }
  std::string Read(ElevGrid& grid) {
    m_window = {m_lats.first, m_lons.first, m_lats.last - m_lats.first + 1, m_lons.last - m_lons.first + 1};
    return grid.Read(m_window, m_metres);
  }
  const Place& Lat(int row) const { return m_lats.samples[static_cast<size_t>(row)]; }
  const Place& Lon(int col) const { return m_lons.samples[static_cast<size_t>(col)]; }
  float At(const Place& lat, const Place& lon) const;

 private:
  float Post(int row, int col) const {
    return m_metres[static_cast<size_t>(row - m_window.row) * static_cast<size_t>(m_window.cols) +
                    static_cast<size_t>(col - m_window.col)];
  }

  Places m_lats;
  Places m_lons;
  GridWindow m_window;
  std::vector<float> m_metres;
};

float Sampler::At(const Place& lat, const Place& lon) const {
  float sum = 0, known = 0;
  Weigh(Post(lat.index, lon.index), (1 - lat.share) * (1 - lon.share), sum, known);
  Weigh(Post(lat.index, lon.index + 1), (1 - lat.share) * lon.share, sum, known);
  Weigh(Post(lat.index + 1, lon.index), lat.share * (1 - lon.share), sum, known);
  Weigh(Post(lat.index + 1, lon.index + 1), lat.share * lon.share, sum, known);
  return known >= 0.5F ? sum / known : NOTHING;
}

// The first grid in which a sample lies has it; between grids, and at most half a post beyond the last, those
// about it.
float Sample(const std::vector<Sampler>& samplers, int row, int col) {
  float sum = 0, known = 0;
  bool isReached = false;
  for (const Sampler& sampler : samplers) {
    const Place &lat = sampler.Lat(row), &lon = sampler.Lon(col);
    if (lat.weight <= 0 || lon.weight <= 0) continue;
    const float metres = sampler.At(lat, lon);
    if (std::isnan(metres)) continue;
    if (lat.IsWithin() && lon.IsWithin()) return metres;
    Weigh(metres, lat.weight * lon.weight, sum, known);
    isReached |= lat.IsReached() && lon.IsReached();
  }
  return isReached ? sum / known : NOTHING;
}

// The mean of a post's samples, of which half must be there.
float Post(const std::vector<Sampler>& samplers, const SamplesPerPost& perPost, int row, int col) {
  float sum = 0;
  int known = 0;
  for (int i = row * perPost.lat; i < (row + 1) * perPost.lat; ++i)
    for (int j = col * perPost.lon; j < (col + 1) * perPost.lon; ++j) {
      const float metres = Sample(samplers, i, j);
      if (std::isnan(metres)) continue;
      sum += metres;
      ++known;
    }
  return known > 0 && known * 2 >= perPost.lat * perPost.lon ? sum / static_cast<float>(known) : NOTHING;
}

int16_t Stored(float metres) {
  if (std::isnan(metres)) return K7_NO_ELEV;
  const long whole = std::lround(metres);
  return static_cast<int16_t>(whole == K7_NO_ELEV ? K7_NO_ELEV + 1 : whole);
}

// A part of the posts that are wanted.
struct Block {
  int row, col, rows, cols;
};

TargetPosts PostsOf(const Block& block, const TargetPosts& posts) {
  return {posts.south + block.row * posts.spacing, posts.west + block.col * posts.spacing, posts.spacing,
          block.rows, block.cols};
}

// Of a grid, for one post: more is a mistake of the level, or of the grid.
constexpr double MOST_PER_POST = 1000;  // along each side
constexpr double MOST_AT_ONCE = 4e6;    // posts in memory

// As the finest of the grids needs them.
std::string FindSamples(std::span<ElevGrid* const> grids, double spacing, SamplesPerPost& perPost) {
  const auto raise = [spacing](const GridAxis& axis, int& samples) {
    const double ratio = spacing / axis.Spacing();
    if (!(ratio <= MOST_PER_POST)) return false;
    if (ratio >= 1.5) samples = std::max(samples, static_cast<int>(std::lround(ratio)));
    return true;
  };
  for (ElevGrid* const grid : grids)
    if (!raise(grid->Lats(), perPost.lat) || !raise(grid->Lons(), perPost.lon))
      return grid->Path() + ": its posts stand too close together for this level";
  return {};
}

std::string ResampleBlock(std::span<ElevGrid* const> grids, const TargetPosts& posts,
                          const SamplesPerPost& perPost, const Block& block, std::vector<int16_t>& metres) {
  const TargetPosts part = PostsOf(block, posts);
  std::vector<Sampler> samplers;
  for (ElevGrid* const grid : grids)
    for (const int turn : {0, -360, 360}) {
      Sampler sampler(part, perPost, *grid, turn);
      if (sampler.IsEmpty()) continue;
      if (std::string problem = sampler.Read(*grid); !problem.empty()) return problem;
      samplers.push_back(std::move(sampler));
    }
  auto post = metres.begin() + static_cast<ptrdiff_t>(block.row) * posts.cols + block.col;
  for (int row = 0; row < block.rows; ++row, post += posts.cols)
    for (int col = 0; col < block.cols; ++col) post[col] = Stored(Post(samplers, perPost, row, col));
  return {};
}

}  // namespace

std::string Resample(std::span<ElevGrid* const> grids, const TargetPosts& posts,
                     std::vector<int16_t>& metres) {
  metres.assign(static_cast<size_t>(posts.rows) * static_cast<size_t>(posts.cols), K7_NO_ELEV);
  SamplesPerPost perPost;
  if (std::string problem = FindSamples(grids, posts.spacing, perPost); !problem.empty()) return problem;
  const double most = MOST_AT_ONCE / perPost.lat / perPost.lon;
  const int cols = static_cast<int>(std::clamp(most, 1.0, 1.0 * posts.cols));
  const int rows = static_cast<int>(std::clamp(most / cols, 1.0, 1.0 * posts.rows));
  for (int row = 0; row < posts.rows; row += rows)
    for (int col = 0; col < posts.cols; col += cols) {
      const Block block = {row, col, std::min(rows, posts.rows - row), std::min(cols, posts.cols - col)};
      if (std::string problem = ResampleBlock(grids, posts, perPost, block, metres); !problem.empty())
        return problem;
    }
  return {};
}
