#include "app_common/shared_data.h"

#include <filesystem>
#include <system_error>

namespace {

// What is installed beside the program; empty for a program that is not.
std::string Installed(const char* name) {
  std::error_code failed;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed);
  const std::filesystem::path path = program.parent_path() / K7CHART_INSTALLED_DATA / name;
  return !failed && std::filesystem::exists(path, failed) ? path.lexically_normal().string() : std::string();
}

}  // namespace

std::string SharedData(const char* folder) {
  std::string installed = Installed(folder);
  return installed.empty() ? std::string(K7CHART_SOURCE_DATA) + "/" + folder : installed;
}

std::string SampleNav() {
  std::error_code failed;
  std::string installed = Installed("sample.db");
  if (!installed.empty()) return installed;
  return std::filesystem::exists(K7CHART_BUILT_NAV, failed) ? K7CHART_BUILT_NAV : "";
}

std::string PageFolder() {
  std::string installed = Installed("page");
  return installed.empty() ? K7CHART_SOURCE_PAGE : installed;
}
