// k7nav import: published text files into a database.

#include "store/import.h"
#include "app_common/progress_bar.h"
#include "app_common/shared_data.h"
#include "app_common/verb.h"

#include <k7/geodesy/magvar.h>

#include <cstdio>
#include <ctime>

namespace {

struct ImportOptions {
  ImportFiles files;
  std::string magnetic = SharedData("sample") + "/magnetic/WMM.COF";
};

std::string SetPath(const char* text, std::string& path) {
  path = text;
  return path.empty() ? "a file needs a name" : "";
}

constexpr OptionRow<ImportOptions> OPTIONS[] = {
    {"--nav", "FILE", "VORs, DMEs, NDBs, localizers and markers, in the format of nav.dat 810.",
     [](const char* text, ImportOptions& o) { return SetPath(text, o.files.navaids); }},
    {"--fix", "FILE", "Fixes, in the format of fix.dat 600.",
     [](const char* text, ImportOptions& o) { return SetPath(text, o.files.fixes); }},
    {"--awy", "FILE", "Airways, in the format of awy.dat 640.",
     [](const char* text, ImportOptions& o) { return SetPath(text, o.files.airways); }},
    {"--apt", "FILE", "Airports with runways and frequencies, in the format of apt.dat 1000.",
     [](const char* text, ImportOptions& o) { return SetPath(text, o.files.airports); }},
    {"--airspace", "FILE", "Airspaces, in the OpenAir format; may be given several times.",
     [](const char* text, ImportOptions& o) {
       o.files.airspaces.emplace_back();
       return SetPath(text, o.files.airspaces.back());
     },
     true},
    {"--magnetic", "FILE", "Coefficients of the magnetic model (default: that of the sample data).",
     [](const char* text, ImportOptions& o) { return SetPath(text, o.magnetic); }},
};

class Import : public Verb {
 public:
  void AddOptions(OptionTable& table) override { table.Add(OPTIONS, m_options); }

  std::string TakeArgument(const std::string& argument) override {
    if (argument.empty()) return "the database needs a name";
    if (!m_path.empty()) return Verb::TakeArgument(argument);
    m_path = argument;
    return {};
  }

  std::string Run() override {
    const ImportFiles& files = m_options.files;
    if (m_path.empty()) return "import needs the database that it is to write, as OUT.db";
    if (files.navaids.empty() && files.fixes.empty() && files.airways.empty() && files.airports.empty() &&
        files.airspaces.empty())
      return "there is nothing to import: --nav, --fix, --awy, --apt and --airspace name the files";
    Tarsvald::MagVarWMM model(m_options.magnetic.c_str());
    if (!model.IsLoaded()) return m_options.magnetic + " holds no coefficients of a magnetic model";
    ImportLog log;
    ProgressBar bar;
    std::string problem =
        ImportDatabase(files, m_path, &model, std::time(nullptr), log,
                       [&bar](const std::string& what, double share) { bar.Show(what, share); });
    bar.Wipe();
    if (!problem.empty()) return problem;
    for (const std::string& line : log.Lines()) std::fprintf(stderr, "k7nav: %s\n", line.c_str());
    return {};
  }

 private:
  ImportOptions m_options;
  std::string m_path;
};

}  // namespace

std::unique_ptr<Verb> MakeImport() { return std::make_unique<Import>(); }
