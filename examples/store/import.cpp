#include "store/import.h"

#include "store/import_run.h"
#include "store/nav_writer.h"

#include <charconv>
#include <filesystem>

namespace {

class WriterSink : public NavSink {
 public:
  explicit WriterSink(NavWriter& writer) : m_writer(writer) {}
  K7NavKey Add(K7NavRec& rec) override { return m_writer.Add(rec); }
  uint32_t Count(K7NavType type) const override { return m_writer.Count(type); }

 private:
  NavWriter& m_writer;
};

struct Step {
  const std::string& path;
  std::string (*import)(ByteSource& source, const std::string& name, ImportRun& run);
};

std::string RunStep(const Step& step, ImportRun& run) {
  if (step.path.empty()) return {};
  const std::unique_ptr<ByteSource> source = OpenSource(step.path);
  if (!source) return "cannot open " + step.path;
  return step.import(*source, std::filesystem::path(step.path).filename().string(), run);
}

// "data cycle 2013.10" is 1310; 0 when nothing is said.
int CycleOf(const std::string& source) {
  static constexpr char BEFORE[] = "data cycle ";
  const size_t at = source.find(BEFORE);
  if (at == std::string::npos) return 0;
  const char* const end = source.data() + source.size();
  int year = 0, cycle = 0;
  const auto [stop, error] = std::from_chars(source.data() + at + sizeof BEFORE - 1, end, year);
  if (error != std::errc() || stop == end || *stop != '.') return 0;
  std::from_chars(stop + 1, end, cycle);
  return year > 0 && year < 10000 && cycle > 0 && cycle < 100 ? year % 100 * 100 + cycle : 0;
}

}  // namespace

std::string ImportDatabase(const ImportFiles& files, const std::string& path, const Tarsvald::MagVar* model,
                           int64_t time, ImportLog& log, const ImportProgress& progress) {
  std::string problem;
  NavWriter writer;
  if (!writer.Open(path, problem)) return problem;
  WriterSink sink(writer);
  ImportRun run{sink, log, Variation(model, time), progress, {}, {}, {}};
  const Step steps[] = {{files.airports, ImportAirports},
                        {files.navaids, ImportNavaids},
                        {files.fixes, ImportFixes},
                        {files.airways, ImportAirways}};
  for (const Step& step : steps)
    if (problem = RunStep(step, run); !problem.empty()) return problem;
  for (const std::string& airspaces : files.airspaces)
    if (problem = RunStep({airspaces, ImportAirspaces}, run); !problem.empty()) return problem;
  writer.SetSource(run.source, CycleOf(run.source));
  progress("writing indexes", 0);
  return writer.Finish(problem) ? std::string() : problem;
}
