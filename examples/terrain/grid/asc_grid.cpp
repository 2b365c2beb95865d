#include "app_common/option_table.h"
#include "grid/formats.h"
#include "grid/text.h"

#include <cmath>
#include <filesystem>
#include <limits>
#include <map>

namespace {

// Of a header, generously.
constexpr int MOST_KEYS = 10;
constexpr uintmax_t HEADER_SIZE = 4096;
// Of a header that does not say otherwise.
constexpr double NO_DATA = -9999;

class AscGrid : public ElevGrid {
 public:
  explicit AscGrid(const std::string& path) : ElevGrid(path) {}

  std::string Open();
  std::string Read(const GridWindow& window, std::vector<float>& metres) override;
  void Release() override { m_posts.Clear(); }

 private:
  std::string ReadHeader(Words& words);
  std::string Place(uintmax_t textSize);
  std::string Load();

  std::map<std::string, double> m_header;
  LoadedPosts m_posts;
};

// Names and numbers in turn, up to the first number in the place of a name.
std::string AscGrid::ReadHeader(Words& words) {
  m_header.clear();
  for (int i = 0; i <= MOST_KEYS; ++i) {
    Words ahead = words;
    const std::string name = Lower(ahead.Next());
    double value = 0;
    if (ReadNumber(name, value) || name == "nan") return {};
    const std::string_view word = ahead.Next();
    if (name == "nodata_value" && Lower(word) == "nan")
      value = std::numeric_limits<double>::quiet_NaN();
    else if (!ReadNumber(word, value))
      break;
    m_header[name] = value;
    words = ahead;
  }
  return Path() + ": has no header of an ESRI ASCII grid";
}

std::string AscGrid::Place(uintmax_t textSize) {
  const auto has = [this](const char* name) { return m_header.count(name) > 0; };
  const double rows = m_header["nrows"], cols = m_header["ncols"];
  const bool corner = has("xllcorner") && has("yllcorner"), center = has("xllcenter") && has("yllcenter");
  const double dx = has("dx") ? m_header["dx"] : m_header["cellsize"];
  const double dy = has("dy") ? m_header["dy"] : m_header["cellsize"];
  if (!(rows >= 2 && rows <= INT32_MAX && cols >= 2 && cols <= INT32_MAX && dx > 0 && dy > 0) ||
      corner == center || rows != std::floor(rows) || cols != std::floor(cols))
    return Path() + ": its header lacks the size or the place of the grid";
  // A digit and a space each.
  if (rows * cols * 2 > static_cast<double>(textSize) + 1)
    return Path() + ": is too short for the posts that its header states";
  const double west = corner ? m_header["xllcorner"] + dx / 2 : m_header["xllcenter"];
  const double south = corner ? m_header["yllcorner"] + dy / 2 : m_header["yllcenter"];
  return SetAxes(GridAxis(south, dy, static_cast<int>(rows)), GridAxis(west, dx, static_cast<int>(cols)));
}

std::string AscGrid::Open() {
  std::string text;
  if (!ReadText(Path(), text, HEADER_SIZE)) return "cannot open " + Path();
  Words words(text);
  std::string problem = ReadHeader(words);
  std::error_code failed;
  return problem.empty() ? Place(std::filesystem::file_size(Path(), failed)) : problem;
}

std::string AscGrid::Load() {
  std::string text;
  if (!ReadText(Path(), text)) return "cannot open " + Path();
  Words words(text);
  if (std::string problem = ReadHeader(words); !problem.empty()) return problem;
  const auto stated = m_header.find("nodata_value");
  const double noData = stated != m_header.end() ? stated->second : NO_DATA;
  const auto rows = static_cast<size_t>(Lats().Count()), cols = static_cast<size_t>(Lons().Count());
  std::vector<float> metres(rows * cols, std::numeric_limits<float>::quiet_NaN());
  for (size_t row = rows; row-- > 0;)
    for (size_t col = 0; col < cols; ++col) {
      double value = 0;
      const std::string_view word = words.Next();
      if (word.empty()) return Path() + ": ends before its last post";
      if (std::isnan(noData) ? Lower(word) == "nan" : ReadNumber(word, value) && value == noData) continue;
      if (std::string problem; !ReadMetres(word, value, problem)) return Path() + ": " + problem;
      metres[row * cols + col] = static_cast<float>(value);
    }
  if (!words.Next().empty()) return Path() + ": goes on behind its last post";
  m_posts.Set(std::move(metres), static_cast<int>(cols));
  return {};
}

std::string AscGrid::Read(const GridWindow& window, std::vector<float>& metres) {
  std::string problem = m_posts.IsEmpty() ? Load() : std::string();
  if (problem.empty()) m_posts.Read(window, metres);
  return problem;
}

}  // namespace

std::string OpenAsc(const std::string& path, std::unique_ptr<ElevGrid>& grid) {
  auto asc = std::make_unique<AscGrid>(path);
  std::string problem = asc->Open();
  if (problem.empty()) grid = std::move(asc);
  return problem;
}
