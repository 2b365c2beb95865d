#include "layers/read_set.h"

#include "ink/readable.h"

#include <k7/foundation/error_string.h>
#include <k7/geometry/shp_file.h>
#include <k7/io/io.h>

#include <filesystem>
#include <memory>

namespace {

// `ending` is that of one of the files of the set.
std::string Unreadable(const std::filesystem::path& set, const char* ending, const std::string& why) {
  if (K7String::IComp(set.extension().string().c_str(), ending) == 0)
    return "cannot read '" + set.string() + "': " + why;
  return "cannot read '" + std::filesystem::path(set).replace_extension(ending).string() +
         "', which belongs to the shapefile set '" + set.string() + "': " + why;
}

// Empty when all files of the set open, else which does not and why.
std::string MissingFile(const std::filesystem::path& set) {
  for (const char* const ending : {".shp", ".dbf", ".shx"}) {
    const bool isMain = K7String::IComp(set.extension().string().c_str(), ending) == 0;
    const std::filesystem::path path = isMain ? set : std::filesystem::path(set).replace_extension(ending);
    if (const std::string why = WhyUnreadable(path.string()); !why.empty())
      return Unreadable(set, ending, why);
  }
  return {};
}

}  // namespace

std::string ReadSet(K7ShpLayer& layer, const std::string& path, K7ShpFile* reader) {
  std::unique_ptr<K7ShpFile> owned(reader);
  if (std::string missing = MissingFile(path); !missing.empty()) return missing;
  const int code = layer.Read(path.c_str(), K7IO::Inst(), owned.release());
  if (code == 0) return {};
  if (code == K7_ERR_MEMORY) return "out of memory for the shapefile set '" + path + "'";
  const char* const message = K7ErrorString::ErrorString(code);
  // By K7ShpPart: where the set itself is whole, what says how its texts are written is not.
  const char* const endings[] = {".cpg", ".shp", ".dbf", ".shx"};
  return Unreadable(path, endings[layer.BadFile()], message ? message : "unknown error");
}
