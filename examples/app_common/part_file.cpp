#include "app_common/part_file.h"

#include <random>
#include <system_error>
#include <utility>

namespace {

std::string Unused(const std::filesystem::path& place) {
  std::random_device bits;
  return place.string() + "." + std::to_string(bits()) + ".part";
}

}  // namespace

PartFile::PartFile(const std::filesystem::path& place) : PartFile(Unused(place), place) {}

PartFile::PartFile(std::filesystem::path part, std::filesystem::path place)
    : m_part(std::move(part)), m_place(std::move(place)) {}

PartFile::~PartFile() {
  std::error_code ignored;
  std::filesystem::remove(m_part, ignored);
}

bool PartFile::TakePlace() {
  std::error_code error;
  std::filesystem::rename(m_part, m_place, error);
  return !error;
}
