#include "app_common/shared_data.h"

#include <filesystem>
#include <system_error>

std::string SharedData(const char* folder) {
  std::error_code failed;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed);
  const std::filesystem::path installed = program.parent_path() / K7CHART_INSTALLED_DATA / folder;
  if (!failed && std::filesystem::is_directory(installed, failed))
    return installed.lexically_normal().string();
  return std::string(K7CHART_SOURCE_DATA) + "/" + folder;
}
