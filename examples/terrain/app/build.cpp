// k7terrain build: elevation grids into region files.

#include "app_common/progress_bar.h"
#include "app_common/verb.h"
#include "region/build_region.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

struct BuildOptions {
  std::string folder = ".";
  std::vector<int> resolutions;
  int tilePosts = 256;
  bool list = false;
  std::string region;
};

std::string ResolutionNames() {
  std::string names;
  for (const int resolution : LevelResolutions()) names += " " + std::to_string(resolution);
  return names;
}

constexpr OptionRow<BuildOptions> OPTIONS[] = {
    {"--output", "FOLDER", "Where the region files go (default: here).",
     [](const char* text, BuildOptions& o) -> std::string {
       o.folder = text;
       return o.folder.empty() ? "a folder needs a name" : "";
     }},
    {"--resolution", "POSTS",
     "Posts per degree; may be given several times (default: what suits the finest grid). One of",
     [](const char* text, BuildOptions& o) -> std::string {
       for (const int resolution : LevelResolutions())
         if (text == std::to_string(resolution)) return o.resolutions.push_back(resolution), "";
       return Quoted(text) + " is none of" + ResolutionNames();
     },
     true, [](const BuildOptions&) { return ResolutionNames() + "."; }},
    {"--tile", "POSTS", "Posts along each side of a tile, 16 to 4096 (default: 256).",
     [](const char* text, BuildOptions& o) -> std::string {
       double value = 0;
       if (!ReadNumber(text, value) || value < 16 || value > 4096 || value != static_cast<int>(value))
         return Quoted(text) + " is no number of posts from 16 to 4096";
       o.tilePosts = static_cast<int>(value);
       return {};
     }},
    {"--list", nullptr, "Makes nothing and prints the names of the regions that there are to make.",
     [](const char*, BuildOptions& o) -> std::string {
       o.list = true;
       return {};
     }},
    {"--region", "NAME", "Makes one region alone, by the name that --list prints.",
     [](const char* text, BuildOptions& o) -> std::string {
       o.region = text;
       return o.region.empty() ? "a region needs a name" : "";
     }},
};

// The files of a folder in the order of their names: which grid comes first must not change from run to run.
std::string FilesOf(const std::string& path, std::vector<std::string>& files) {
  std::error_code failed;
  if (!fs::is_directory(path, failed)) {
    files.push_back(path);
    return {};
  }
  const size_t first = files.size();
  for (fs::recursive_directory_iterator at(path, failed), end; !failed && at != end; at.increment(failed))
    if (at->is_regular_file(failed) && IsGridName(at->path().string())) files.push_back(at->path().string());
  if (failed) return "cannot read the folder " + path;
  std::sort(files.begin() + static_cast<ptrdiff_t>(first), files.end());
  return files.size() > first ? std::string() : "there is no elevation grid in " + path;
}

class Build : public Verb {
 public:
  void AddOptions(OptionTable& table) override { table.Add(OPTIONS, m_options); }

  std::string TakeArgument(const std::string& argument) override { return FilesOf(argument, m_files); }

  std::string Run() override {
    if (m_files.empty()) return "build needs elevation grids, as GRID";
    if (std::string problem = OpenGrids(); !problem.empty()) return problem;
    std::vector<RegionPlan> plans = Plans();
    if (m_options.list) {
      for (const RegionPlan& plan : plans) std::puts(plan.Name().c_str());
      return {};
    }
    if (!m_options.region.empty()) {
      std::erase_if(plans, [this](const RegionPlan& plan) { return plan.Name() != m_options.region; });
      if (plans.empty()) return Quoted(m_options.region) + " is none of the regions that --list prints";
    }
    return BuildAll(plans);
  }

 private:
  std::string OpenGrids() {
    for (const std::string& file : m_files) {
      std::unique_ptr<ElevGrid> grid;
      if (std::string problem = OpenGrid(file, grid); !problem.empty()) return problem;
      m_grids.push_back(grid.get());
      m_owned.push_back(std::move(grid));
    }
    return {};
  }

  std::vector<RegionPlan> Plans() const {
    std::vector<int> resolutions = m_options.resolutions;
    if (resolutions.empty()) resolutions.push_back(FinestResolution());
    std::sort(resolutions.begin(), resolutions.end());
    resolutions.erase(std::unique(resolutions.begin(), resolutions.end()), resolutions.end());
    std::vector<RegionPlan> plans;
    for (const int resolution : resolutions)
      for (const RegionPlan& plan : PlanRegions(m_grids, resolution, m_options.tilePosts))
        plans.push_back(plan);
    return plans;
  }

  int FinestResolution() const {
    int finest = 0;
    for (const ElevGrid* grid : m_grids) finest = std::max(finest, ResolutionFor(*grid));
    return finest;
  }

  std::string BuildAll(const std::vector<RegionPlan>& plans) const {
    std::error_code failed;
    fs::create_directories(m_options.folder, failed);
    if (failed) return "cannot make the folder " + m_options.folder;
    for (const RegionPlan& plan : plans) {
      ProgressBar bar;
      int tiles = 0;
      std::string problem = BuildRegion(
          m_grids, plan, m_options.folder, [&](double share) { bar.Show("building " + plan.Name(), share); },
          tiles);
      bar.Wipe();
      if (!problem.empty()) return problem;
      if (tiles == 0)
        std::fprintf(stderr, "k7terrain: %s has no elevation: no file is made\n", plan.Name().c_str());
    }
    return {};
  }

  BuildOptions m_options;
  std::vector<std::string> m_files;
  std::vector<std::unique_ptr<ElevGrid>> m_owned;
  std::vector<ElevGrid*> m_grids;
};

}  // namespace

std::unique_ptr<Verb> MakeBuild() { return std::make_unique<Build>(); }
