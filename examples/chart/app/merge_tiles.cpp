#include "app/merge_tiles.h"

#include "app/bounds_text.h"
#include "app/tile_facts.h"
#include "app_common/progress_bar.h"

#include <algorithm>
#include <cstdio>

namespace {

bool ReadZoom(const std::string& text, int& zoom) {
  double value = 0;
  if (!ReadNumber(text, value) || value < 0 || value > MOST_ZOOM) return false;
  zoom = static_cast<int>(value);
  return zoom == value;
}

std::string PlanOf(const TileReader& part, TileWork& work) {
  TileArea area{};
  int minZoom = 0, maxZoom = 0;
  if (!ReadBounds(part.Fact(AREA_FACT), area.west, area.south, area.east, area.north).empty() ||
      !ReadZoom(part.Fact("minzoom"), minZoom) || !ReadZoom(part.Fact("maxzoom"), maxZoom) ||
      minZoom > maxZoom)
    return "is no file of tiles that k7chart drew";
  return work.Plan(area, minZoom, maxZoom);
}

// What parts of one chart have in common.
TileFacts Common(const TileReader& part) {
  TileFacts facts = part.Facts();
  std::erase_if(facts, [](const auto& fact) { return fact.first == SHARD_FACT; });
  return facts;
}

// "2, 5 and 6 more"
std::string Missing(const std::vector<bool>& given) {
  static constexpr int MOST_NAMED = 10;
  std::string text;
  int more = 0, named = 0;
  for (size_t i = 1; i < given.size(); ++i) {
    if (given[i]) continue;
    if (named == MOST_NAMED)
      ++more;
    else
      text += (named++ ? ", " : "") + std::to_string(i);
  }
  return more ? text + " and " + std::to_string(more) + " more" : text;
}

class Merge {
 public:
  explicit Merge(const std::vector<std::string>& parts) : m_parts(parts) {}

  std::string Run(const std::string& output) {
    if (std::find(m_parts.begin(), m_parts.end(), output) != m_parts.end())
      return "the output " + output + " is one of the parts";
    for (const std::string& part : m_parts)
      if (std::string problem = Look(part); !problem.empty()) return problem;
    if (const std::string missing = Missing(m_given); !missing.empty())
      return "of " + std::to_string(m_given.size() - 1) + " parts these are missing: " + missing;
    TileWriter file;
    if (std::string problem = file.Open(output, m_facts); !problem.empty()) return problem;
    for (const std::string& part : m_parts)
      if (std::string problem = Add(part, file); !problem.empty()) return problem;
    const int64_t tiles = file.Tiles(), images = file.Images();
    if (tiles != m_work.Tiles())
      return "of " + std::to_string(m_work.Tiles()) + " tiles the parts have " + std::to_string(tiles);
    if (std::string problem = file.Finish(); !problem.empty()) return problem;
    m_bar.Wipe();
    std::printf("%s: %lld tiles, %lld of them different\n", output.c_str(), static_cast<long long>(tiles),
                static_cast<long long>(images));
    return {};
  }

 private:
  // Before anything is written.
  std::string Look(const std::string& path) {
    TileReader part;
    if (std::string problem = part.Open(path); !problem.empty()) return problem;
    const bool isFirst = m_facts.empty();
    if (isFirst) {
      if (std::string problem = PlanOf(part, m_work); !problem.empty()) return path + ": " + problem;
      m_facts = Common(part);
    } else if (const std::string difference = FactsDiffer(Common(part), m_facts); !difference.empty()) {
      return path + " and " + m_parts.front() + " are no parts of one chart (" + difference + ")";
    }
    TileShard shard;
    if (!ReadShard(part.Fact(SHARD_FACT), shard)) return path + " is no part: it was drawn without --shard";
    const auto count = static_cast<size_t>(shard.count) + 1;
    if (isFirst) m_given.resize(count);
    if (count != m_given.size())
      return path + " is one of " + std::to_string(shard.count) + " parts, " + m_parts.front() + " one of " +
             std::to_string(m_given.size() - 1);
    m_given[static_cast<size_t>(shard.index)] = true;
    return {};
  }

  std::string Add(const std::string& path, TileWriter& file) {
    TileReader part;
    if (std::string problem = part.Open(path); !problem.empty()) return problem;
    int64_t inPart = 0;
    std::string problem = part.Visit([&](const TileId& tile, std::string_view png) {
      if (!m_work.Has(tile)) return path + " has a tile outside its bounds";
      if (++inPart > m_work.Tiles()) return path + " has tiles twice";
      const auto all = static_cast<double>(m_work.Tiles());
      m_bar.Show("joining tiles", std::min(1.0, static_cast<double>(++m_added) / all));
      std::string failed = file.Add(tile, png);
      return failed.empty() ? failed : path + ": " + failed;
    });
    return problem.empty() ? file.Keep() : problem;
  }

  const std::vector<std::string>& m_parts;
  TileWork m_work;
  TileFacts m_facts;
  std::vector<bool> m_given;  // by the number of the part
  int64_t m_added = 0;
  ProgressBar m_bar;
};

}  // namespace

std::string MergeTiles(const std::string& output, const std::vector<std::string>& parts) {
  return Merge(parts).Run(output);
}
