// k7terrain check: whether the region files of a folder are as they were made.

#include "app_common/progress_bar.h"
#include "app_common/verb.h"
#include "region/build_region.h"
#include "region/region_survey.h"

#include <k7/io/crc.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

class Check : public Verb {
 public:
  std::string TakeArgument(const std::string& argument) override {
    if (!m_folder.empty()) return Verb::TakeArgument(argument);
    m_folder = argument;
    return {};
  }

  std::string Run() override {
    if (m_folder.empty()) return "check needs the folder of the region files, as FOLDER";
    std::vector<std::string> files;
    std::error_code failed;
    for (fs::directory_iterator at(m_folder, failed), end; !failed && at != end; at.increment(failed))
      if (at->path().extension() == ".ter") files.push_back(at->path().string());
    if (failed) return "cannot read the folder " + m_folder;
    if (files.empty()) return "there is no region file in " + m_folder;
    std::sort(files.begin(), files.end());
    size_t bad = 0;
    for (const std::string& file : files) {
      const std::string problem = CheckFile(file);
      std::puts(problem.empty() ? (file + ": good").c_str() : problem.c_str());
      bad += !problem.empty();
    }
    if (bad == 0) return {};
    return std::to_string(bad) + " of " + std::to_string(files.size()) + " region files are not good";
  }

 private:
  static std::string CheckFile(const std::string& file) {
    if (const int code = K7CRC::CheckCRC(file.c_str(), 0)) return file + ": " + Explain(code);
    K7TerRegion region;
    RegionSurvey survey;
    ProgressBar bar;
    return SurveyRegion(file, region, survey, [&](double share) { bar.Show("checking " + file, share); });
  }

  std::string m_folder;
};

}  // namespace

std::unique_ptr<Verb> MakeCheck() { return std::make_unique<Check>(); }
