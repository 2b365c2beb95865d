#include "app/database.h"

#include "app_common/shared_data.h"

#include <k7/foundation/error_string.h>

namespace {

constexpr OptionRow<DatabaseOptions> OPTIONS[] = {
    {"--db", "FILE", "The database, as 'k7nav import' writes it (default: that of the sample).",
     [](const char* text, DatabaseOptions& o) -> std::string {
       o.path = text;
       return o.path.empty() ? "a database needs a name" : "";
     }},
};

}  // namespace

void AddDatabaseOptions(OptionTable& table, DatabaseOptions& options) { table.Add(OPTIONS, options); }

std::string OpenDatabase(const DatabaseOptions& options, NavStore& store) {
  const std::string path = options.path.empty() ? SampleNav() : options.path;
  if (path.empty()) return "the sample is not there: name a database with --db";
  const int err = store.Open(path.c_str());
  if (err == K7_ERR_INVALID_DATA) return path + " is no database of navigation data";
  return err ? "cannot open " + path : "";
}
