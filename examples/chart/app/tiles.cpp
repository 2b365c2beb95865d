// k7chart tiles: a chart as the file of tiles that tablets and geographic programs read.

#include "app/bounds_text.h"
#include "app/chart_data.h"
#include "app/chart_options.h"
#include "app/merge_tiles.h"
#include "app/tile_facts.h"
#include "app_common/progress_bar.h"
#include "app_common/verb.h"
#include "web/draw_tiles.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <thread>

namespace {

constexpr int MOST_THREADS = 256;

struct TilesOptions {
  TileOptions tiles{};
  TileArea area{};
  int minZoom = -1, maxZoom = -1;  // -1: not given
  TileShard shard{};
  bool isShard = false;
  int threads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, 1U * MOST_THREADS));
  std::string output{};
  bool count = false;
};

std::string SetZoom(const char* text, TilesOptions& options) {
  const std::string_view zooms = text;
  const char* const end = zooms.data() + zooms.size();
  const auto [dash, minError] = std::from_chars(text, end, options.minZoom);
  options.maxZoom = options.minZoom;
  bool isRead = minError == std::errc();
  if (isRead && dash != end) {
    const auto [stop, maxError] = std::from_chars(dash + 1, end, options.maxZoom);
    isRead = *dash == '-' && maxError == std::errc() && stop == end;
  }
  if (isRead && options.minZoom >= 0 && options.minZoom <= options.maxZoom && options.maxZoom <= MOST_ZOOM)
    return {};
  return "zooms are as 3-10, or one, from 0 to " + std::to_string(MOST_ZOOM) + ", not " + Quoted(text);
}

std::string SetOutput(const char* text, TilesOptions& options) {
  options.output = text;
  const size_t stem = options.output.rfind('.');
  const bool ends = stem != std::string::npos && K7String::IComp(text + stem, ".mbtiles") == 0;
  return ends ? std::string() : "the output ends in .mbtiles, unlike " + Quoted(text);
}

constexpr OptionRow<TilesOptions> TILES_OPTIONS[] = {
    {"--bounds", "WEST,SOUTH,EAST,NORTH",
     "of what the tiles show, in degrees, as -125.5,47,-121,50; across 180 where east is not the larger",
     [](const char* text, TilesOptions& options) {
       return ReadBounds(text, options.area.west, options.area.south, options.area.east, options.area.north);
     }},
    {"--zoom", "FIRST-LAST", "zooms of the tiles, as 3-10 or 8, from 0, the world in one tile, to 20",
     SetZoom},
    {"--output", "FILE.mbtiles",
     "the file of tiles. It appears when it is whole; until then FILE.mbtiles.part stands beside it, with "
     "which "
     "the same command goes on when it is run again",
     SetOutput},
    {"--ratio", "RATIO",
     "2 for screens of fine pixels: tiles of 512 pixels, all on them twice as large "
     "(default 1)",
     [](const char* text, TilesOptions& options) -> std::string {
       options.tiles.look.ratio = *text - '0';
       const bool isRead = std::string_view(text) == "1" || std::string_view(text) == "2";
       return isRead ? "" : "the ratio is 1 or 2, not " + Quoted(text);
     }},
    {"--theme", "THEME", "day (default), night, printed or FILE.xml, as 'k7chart draw' has it",
     [](const char* text, TilesOptions& options) {
       options.tiles.look.theme = text;
       Theme theme;
       return ReadTheme(text, theme);
     }},
    {"--name", "TEXT", "what the chart is called in lists of charts",
     [](const char* text, TilesOptions& options) {
       options.tiles.name = text;
       return std::string();
     }},
    {"--attribution", "TEXT", "who is to be named beside the chart (default: the navigation data's source)",
     [](const char* text, TilesOptions& options) {
       options.tiles.attribution = text;
       return std::string();
     }},
    {"--threads", "NUMBER", "how many draw at once, 1 to 256 (default: one a core)",
     [](const char* text, TilesOptions& options) {
       double number = 0;
       if (!ReadNumber(text, number) || !(number >= 1 && number <= MOST_THREADS))
         return "threads are 1 to 256, not " + Quoted(text);
       options.threads = static_cast<int>(number);
       return std::string();
     }},
    {"--shard", "I/N", "draws one of N parts, as 3/8; 'k7chart tiles merge FILE.mbtiles PART...' joins them",
     [](const char* text, TilesOptions& options) {
       options.isShard = ReadShard(text, options.shard);
       return options.isShard ? std::string() : "a part is as 3/8, not " + Quoted(text);
     }},
    {"--count", nullptr, "draws nothing and prints how many tiles there are",
     [](const char*, TilesOptions& options) {
       options.count = true;
       return std::string();
     }},
};

// How far it is and how long it will take.
class TileProgress {
 public:
  void Show(int64_t there, int64_t all, int64_t before) {
    std::string text = std::to_string(there) + " of " + std::to_string(all) + " tiles";
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - m_begin;
    if (there > before && took.count() > 5) {
      const double left =
          took.count() / static_cast<double>(there - before) * static_cast<double>(all - there);
      text +=
          left < 90 ? ", a minute left" : ", " + std::to_string(std::llround(left / 60)) + " minutes left";
    }
    m_bar.Show(text, static_cast<double>(there) / static_cast<double>(std::max<int64_t>(1, all)));
    if (m_before < 0) m_before = before;
  }
  int64_t Before() const { return std::max<int64_t>(0, m_before); }
  void Wipe() { m_bar.Wipe(); }

 private:
  const std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
  int64_t m_before = -1;
  ProgressBar m_bar;
};

class Tiles : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    table.Add(TILES_OPTIONS, m_options);
    AddLayerOptions(table, m_options.tiles.layers);
    AddDataOptions(table, m_options.tiles.layers);
    m_table = &table;
  }

  std::string TakeArgument(const std::string& argument) override {
    if (m_merge)
      m_files.push_back(argument);
    else if (argument == "merge")
      m_merge = true;
    else
      return Verb::TakeArgument(argument);
    return {};
  }

  std::string Run() override {
    if (m_merge) return RunMerge();
    if (m_options.area.west == m_options.area.east || m_options.minZoom < 0)
      return "tiles need --bounds=WEST,SOUTH,EAST,NORTH and --zoom FIRST-LAST";
    TileWork work;
    if (std::string problem = work.Plan(m_options.area, m_options.minZoom, m_options.maxZoom);
        !problem.empty())
      return problem;
    if (m_options.count) {
      std::printf("%lld\n", static_cast<long long>(work.Tiles()));
      return {};
    }
    return m_options.output.empty() ? "tiles need --output FILE.mbtiles" : Draw(work);
  }

 private:
  std::string RunMerge() const {
    if (const std::string given = m_table->FirstGiven(); !given.empty())
      return "tiles merge takes no " + given + ": OUTPUT.mbtiles PART...";
    if (m_files.size() < 2) return "tiles merge needs OUTPUT.mbtiles PART...";
    TilesOptions checked;
    if (std::string problem = SetOutput(m_files.front().c_str(), checked); !problem.empty()) return problem;
    return MergeTiles(m_files.front(), {m_files.begin() + 1, m_files.end()});
  }

  std::string Draw(const TileWork& work) const {
    ChartData data;
    if (std::string problem = data.Open(m_options.tiles.layers, m_options.tiles.look.theme); !problem.empty())
      return problem;
    TileFacts facts = TileFactsOf(m_options.tiles, work);
    if (m_options.isShard) facts.emplace_back(SHARD_FACT, ShardText(m_options.shard));
    TileWriter file;
    if (std::string problem = file.Open(m_options.output, facts); !problem.empty()) return problem;
    TileProgress progress;
    const auto show = [&](int64_t there, int64_t all, int64_t before) { progress.Show(there, all, before); };
    const TileLook look{{}, m_options.tiles.look.ratio};
    std::string problem = DrawTiles({data, work, m_options.shard, look, m_options.threads, show}, file);
    progress.Wipe();
    if (!problem.empty()) return problem;
    const auto tiles = static_cast<long long>(file.Tiles()), images = static_cast<long long>(file.Images());
    if (problem = file.Finish(); !problem.empty()) return problem;
    std::printf("%s: %lld tiles, %lld of them different", m_options.output.c_str(), tiles, images);
    if (progress.Before() > 0)
      std::printf(", %lld of a run before", static_cast<long long>(progress.Before()));
    std::puts("");
    return {};
  }

  TilesOptions m_options;
  const OptionTable* m_table = nullptr;
  bool m_merge = false;
  std::vector<std::string> m_files;
};

}  // namespace

std::unique_ptr<Verb> MakeTiles() { return std::make_unique<Tiles>(); }
