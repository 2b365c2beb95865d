#include "app/terrain_options.h"

#include "app_common/shared_data.h"

namespace {

constexpr double MOST_SECONDS = 3600;

std::string SetFolder(const char* text, TerrainOptions& options) {
  options.folder = text;
  return {};
}

std::string SetResolution(const char* text, TerrainOptions& options) {
  double seconds = 0;
  if (!ReadNumber(text, seconds) || seconds <= 0 || seconds > MOST_SECONDS)
    return "the resolution is arc-seconds between posts, above 0 and up to 3600, not " + Quoted(text);
  options.resolution = seconds;
  return {};
}

constexpr OptionRow<TerrainOptions> OPTIONS[] = {
    {"--terrain", "FOLDER",
     "region files, made by 'k7terrain build' (default: the sample of the Salish Sea, 48 to 50 north, 126 to "
     "122 west)",
     SetFolder},
    {"--resolution", "SECONDS",
     "arc-seconds between the posts of data that are fine enough, above 0 and up to 3600 (default: the "
     "finest "
     "that there are); where such data are missing, coarser ones answer",
     SetResolution},
};

}  // namespace

TerrainOptions::TerrainOptions() : folder(SampleTerrain()) {}

void AddTerrainOptions(OptionTable& table, TerrainOptions& options) { table.Add(OPTIONS, options); }

std::string SampleTerrain() { return SharedData("sample") + "/terrain"; }
