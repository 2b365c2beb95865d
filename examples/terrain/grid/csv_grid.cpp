#include "app_common/option_table.h"
#include "grid/formats.h"
#include "grid/text.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

struct CsvPost {
  double lat = 0;
  double lon = 0;
  double metres = std::numeric_limits<double>::quiet_NaN();
};

// Which field of a line is what.
struct CsvColumns {
  size_t lat = 0;
  size_t lon = 0;
  size_t metres = 0;
};

class CsvGrid : public ElevGrid {
 public:
  explicit CsvGrid(const std::string& path) : ElevGrid(path) {}

  std::string Open();
  std::string Read(const GridWindow& window, std::vector<float>& metres) override {
    m_posts.Read(window, metres);
    return {};
  }

 private:
  std::string ReadPosts(std::vector<CsvPost>& posts) const;
  std::string Arrange(const std::vector<CsvPost>& posts);

  LoadedPosts m_posts;
};

std::string_view NextLine(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

std::vector<std::string_view> Fields(std::string_view line) {
  std::vector<std::string_view> fields;
  for (size_t at = 0; at != std::string_view::npos;) {
    const size_t comma = line.find(',', at);
    fields.push_back(line.substr(at, comma == std::string_view::npos ? comma : comma - at));
    at = comma == std::string_view::npos ? comma : comma + 1;
  }
  return fields;
}

bool FindColumns(std::string_view line, CsvColumns& columns) {
  const std::vector<std::string_view> names = Fields(line);
  const auto find = [&names](const char* start, size_t& column) {
    const auto at = std::find_if(names.begin(), names.end(),
                                 [start](std::string_view name) { return Lower(name).rfind(start, 0) == 0; });
    column = static_cast<size_t>(at - names.begin());
    return at != names.end();
  };
  return find("lat", columns.lat) && find("lon", columns.lon) && find("elev", columns.metres);
}

// An empty elevation is a post without one.
std::string ReadPost(std::string_view line, const CsvColumns& columns, CsvPost& post) {
  const std::vector<std::string_view> fields = Fields(line);
  if (fields.size() <= std::max({columns.lat, columns.lon, columns.metres}))
    return "has fewer fields than the first";
  if (!ReadNumber(fields[columns.lat], post.lat) || !ReadNumber(fields[columns.lon], post.lon))
    return "has a position that is no number";
  std::string problem;
  if (!fields[columns.metres].empty()) ReadMetres(fields[columns.metres], post.metres, problem);
  return problem;
}

std::string CsvGrid::ReadPosts(std::vector<CsvPost>& posts) const {
  std::string text;
  if (!ReadText(Path(), text)) return "cannot open " + Path();
  std::string_view rest = text;
  // Spreadsheets begin with a byte order mark.
  if (rest.starts_with("\xEF\xBB\xBF")) rest.remove_prefix(3);
  CsvColumns columns;
  if (!FindColumns(NextLine(rest), columns))
    return Path() + ": its first line names no latitude, longitude and elevation";
  for (int number = 2; !rest.empty(); ++number) {
    const std::string_view line = NextLine(rest);
    if (line.empty()) continue;
    const std::string problem = ReadPost(line, columns, posts.emplace_back());
    if (!problem.empty()) return Path() + ": line " + std::to_string(number) + " " + problem;
  }
  return {};
}

std::vector<double> Distinct(const std::vector<CsvPost>& posts, double CsvPost::*coordinate) {
  std::vector<double> values(posts.size());
  std::transform(posts.begin(), posts.end(), values.begin(),
                 [=](const CsvPost& post) { return post.*coordinate; });
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return values;
}

// Posts in any order that stand in rows and columns, each place once.
std::string CsvGrid::Arrange(const std::vector<CsvPost>& posts) {
  std::vector<double> lats = Distinct(posts, &CsvPost::lat), lons = Distinct(posts, &CsvPost::lon);
  if (lats.size() < 2 || lons.size() < 2 || uint64_t{lats.size()} * lons.size() != posts.size())
    return Path() + ": its posts stand in no full grid of rows and columns";
  const auto indexIn = [](const std::vector<double>& values, double value) {
    return static_cast<size_t>(std::lower_bound(values.begin(), values.end(), value) - values.begin());
  };
  std::vector<float> metres(posts.size());
  std::vector<bool> filled(posts.size());
  for (const CsvPost& post : posts) {
    const size_t at = indexIn(lats, post.lat) * lons.size() + indexIn(lons, post.lon);
    if (filled[at]) return Path() + ": has a place twice";
    filled[at] = true;
    metres[at] = static_cast<float>(post.metres);
  }
  m_posts.Set(std::move(metres), static_cast<int>(lons.size()));
  return SetAxes(GridAxis(std::move(lats)), GridAxis(std::move(lons)));
}

std::string CsvGrid::Open() {
  std::vector<CsvPost> posts;
  std::string problem = ReadPosts(posts);
  return problem.empty() ? Arrange(posts) : problem;
}

}  // namespace

std::string OpenCsv(const std::string& path, std::unique_ptr<ElevGrid>& grid) {
  auto csv = std::make_unique<CsvGrid>(path);
  std::string problem = csv->Open();
  if (problem.empty()) grid = std::move(csv);
  return problem;
}
