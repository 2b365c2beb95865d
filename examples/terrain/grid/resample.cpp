#include "grid/resample.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float NOTHING = std::numeric_limits<float>::quiet_NaN();

// A place along one axis of a grid: between post `index` and the next, whose weight is `share`.
struct Place {
  int index = 0;
  float share = 0;
  bool within = false;   // the posts on both sides are there
  bool reached = false;  // at least half a post beyond the outermost
};

// Target posts along one axis, each by the samples about it, against a grid's axis.
struct Places {
  std::vector<Place> samples;
  int perPost = 1;
  int first = 0;  // the posts of the grid that they need
  int last = -1;
};

Place PlaceAt(const GridAxis& axis, double degrees) {
  const double index = axis.IndexOf(degrees), end = axis.Count() - 1;
  Place place;
  place.within = index >= 0 && index <= end;
  place.reached = index >= -0.5 && index <= end + 0.5;
  if (!place.reached) return place;
  const double clamped = std::clamp(index, 0.0, end);
  place.index = std::min(static_cast<int>(clamped), axis.Count() - 2);
  place.share = static_cast<float>(clamped - place.index);
  return place;
}

Places PlacesAlong(const GridAxis& axis, double first, double spacing, int count) {
  Places places;
  const double ratio = spacing / axis.Spacing();
  places.perPost = ratio < 1.5 ? 1 : static_cast<int>(std::lround(std::min(ratio, 1000.0)));
  places.first = axis.Count();
  for (int i = 0; i < count * places.perPost; ++i) {
    const int post = i / places.perPost, sample = i % places.perPost;
    const double offset = (sample + 0.5) / places.perPost - 0.5;
    places.samples.push_back(PlaceAt(axis, first + (post + offset) * spacing));
    const Place& place = places.samples.back();
    if (!place.reached) continue;
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
  Sampler(const TargetPosts& posts, const GridAxis& lats, const GridAxis& lons, int turn)
      : m_lats(PlacesAlong(lats, posts.south, posts.spacing, posts.rows)),
        m_lons(PlacesAlong(lons, posts.west + turn, posts.spacing, posts.cols)) {}

  bool IsEmpty() const { return m_lats.last < m_lats.first || m_lons.last < m_lons.first; }
  std::string Read(ElevGrid& grid) {
    m_window = {m_lats.first, m_lons.first, m_lats.last - m_lats.first + 1, m_lons.last - m_lons.first + 1};
    return grid.Read(m_window, m_metres);
  }
  // The mean of a post's samples, NaN when fewer than half have an elevation. `edges`: also such samples as
  // lie beyond the outermost posts.
  float At(int row, int col, bool edges) const;

 private:
  float Sample(const Place& lat, const Place& lon) const;
  float Post(int row, int col) const {
    return m_metres[static_cast<size_t>(row - m_window.row) * static_cast<size_t>(m_window.cols) +
                    static_cast<size_t>(col - m_window.col)];
  }

  Places m_lats;
  Places m_lons;
  GridWindow m_window;
  std::vector<float> m_metres;
};

float Sampler::Sample(const Place& lat, const Place& lon) const {
  float sum = 0, known = 0;
  Weigh(Post(lat.index, lon.index), (1 - lat.share) * (1 - lon.share), sum, known);
  Weigh(Post(lat.index, lon.index + 1), (1 - lat.share) * lon.share, sum, known);
  Weigh(Post(lat.index + 1, lon.index), lat.share * (1 - lon.share), sum, known);
  Weigh(Post(lat.index + 1, lon.index + 1), lat.share * lon.share, sum, known);
  return known >= 0.5F ? sum / known : NOTHING;
}

float Sampler::At(int row, int col, bool edges) const {
  float sum = 0;
  int known = 0;
  for (int i = row * m_lats.perPost; i < (row + 1) * m_lats.perPost; ++i)
    for (int j = col * m_lons.perPost; j < (col + 1) * m_lons.perPost; ++j) {
      const Place &lat = m_lats.samples[static_cast<size_t>(i)],
                  &lon = m_lons.samples[static_cast<size_t>(j)];
      if (edges ? !(lat.reached && lon.reached) : !(lat.within && lon.within)) continue;
      const float metres = Sample(lat, lon);
      if (std::isnan(metres)) continue;
      sum += metres;
      ++known;
    }
  return known > 0 && known * 2 >= m_lats.perPost * m_lons.perPost ? sum / static_cast<float>(known)
                                                                   : NOTHING;
}

// Fills what no grid has filled yet.
void Fill(const Sampler& sampler, const TargetPosts& posts, bool edges, std::vector<float>& metres) {
  for (int row = 0; row < posts.rows; ++row)
    for (int col = 0; col < posts.cols; ++col) {
      float& post =
          metres[static_cast<size_t>(row) * static_cast<size_t>(posts.cols) + static_cast<size_t>(col)];
      if (std::isnan(post)) post = sampler.At(row, col, edges);
    }
}

int16_t Stored(float metres) {
  if (std::isnan(metres)) return K7_NO_ELEV;
  const long whole = std::lround(metres);
  return static_cast<int16_t>(whole == K7_NO_ELEV ? K7_NO_ELEV + 1 : whole);
}

// The rows of `posts` alone that a run of them has.
TargetPosts Strip(const TargetPosts& posts, int row, int rows) {
  TargetPosts strip = posts;
  strip.south += row * posts.spacing;
  strip.rows = std::min(rows, posts.rows - row);
  return strip;
}

// As many rows as need no more of the finest grid than a few million posts.
int RowsAtOnce(std::span<ElevGrid* const> grids, const TargetPosts& posts) {
  constexpr double MOST_POSTS = 4e6;
  double finest = posts.spacing;
  for (ElevGrid* const grid : grids)
    finest = std::min({finest, grid->Lats().Spacing(), grid->Lons().Spacing()});
  const double ratio = posts.spacing / finest;
  return static_cast<int>(std::clamp(MOST_POSTS / (ratio * ratio * posts.cols), 1.0, 1.0 * posts.rows));
}

std::string ResampleStrip(std::span<ElevGrid* const> grids, const TargetPosts& posts,
                          std::vector<int16_t>& metres) {
  std::vector<Sampler> samplers;
  for (ElevGrid* const grid : grids)
    for (const int turn : {0, -360, 360}) {
      Sampler sampler(posts, grid->Lats(), grid->Lons(), turn);
      if (sampler.IsEmpty()) continue;
      if (std::string problem = sampler.Read(*grid); !problem.empty()) return problem;
      samplers.push_back(std::move(sampler));
    }
  std::vector<float> filled(static_cast<size_t>(posts.rows) * static_cast<size_t>(posts.cols), NOTHING);
  // A grid's own posts come before what lies beyond the edge of another.
  for (const bool edges : {false, true})
    for (const Sampler& sampler : samplers) Fill(sampler, posts, edges, filled);
  for (const float post : filled) metres.push_back(Stored(post));
  return {};
}

}  // namespace

std::string Resample(std::span<ElevGrid* const> grids, const TargetPosts& posts,
                     std::vector<int16_t>& metres) {
  metres.clear();
  const int rows = RowsAtOnce(grids, posts);
  for (int row = 0; row < posts.rows; row += rows)
    if (std::string problem = ResampleStrip(grids, Strip(posts, row, rows), metres); !problem.empty())
      return problem;
  return {};
}
