#include "app/database.h"

#include "app/import_options.h"

#include <k7/foundation/error_string.h>

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr OptionRow<DatabaseOptions> OPTIONS[] = {
    {"--db", "FILE",
     "The database, as 'k7nav import' writes it (default: the sample, imported into the user's cache folder "
     "on first use).",
     [](const char* text, DatabaseOptions& o) -> std::string {
       o.path = text;
       return o.path.empty() ? "a database needs a name" : "";
     }},
};

std::string CacheFolder() {
  const char* const cache = std::getenv("XDG_CACHE_HOME");
  if (cache && *cache == '/') return std::string(cache) + "/k7nav";
  const char* const home = std::getenv("HOME");
  return home && *home ? std::string(home) + "/.cache/k7nav" : std::string();
}

// True when the database is there and none of its sources has changed since.
bool IsCurrent(const std::string& path, const ImportFiles& files) {
  std::error_code failed;
  const auto made = fs::last_write_time(path, failed);
  if (failed) return false;
  std::vector<std::string> sources = files.airspaces;
  for (const std::string* file : {&files.airports, &files.navaids, &files.fixes, &files.airways})
    sources.push_back(*file);
  for (const std::string& source : sources)
    if (const auto changed = fs::last_write_time(source, failed); failed || changed > made) return false;
  return true;
}

std::string OpenFile(const std::string& path, NavStore& store) {
  const int err = store.Open(path.c_str());
  if (err == K7_ERR_INVALID_DATA) return path + " is no database of navigation data";
  return err ? "cannot open " + path : "";
}

std::string OpenSample(NavStore& store) {
  const std::string folder = CacheFolder();
  if (folder.empty()) return "there is no cache folder for the sample: name a database with --db";
  const std::string path = folder + "/sample.db";
  const ImportFiles files = SampleFiles();
  if (IsCurrent(path, files) && OpenFile(path, store).empty()) return {};
  std::error_code failed;
  fs::create_directories(folder, failed);
  if (failed) return "cannot make the folder " + folder + ": " + failed.message();
  const std::string problem = RunImport(files, path, SampleMagneticModel());
  return problem.empty() ? OpenFile(path, store) : problem;
}

}  // namespace

void AddDatabaseOptions(OptionTable& table, DatabaseOptions& options) { table.Add(OPTIONS, options); }

std::string OpenDatabase(const DatabaseOptions& options, NavStore& store) {
  return options.path.empty() ? OpenSample(store) : OpenFile(options.path, store);
}
