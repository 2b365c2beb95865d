#include "app_common/part_file.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <random>
#include <system_error>
#include <utility>

namespace {

// What is being written, where a signal's handler can read it. A file that finds no room stays behind then.
struct Written {
  std::atomic<const PartFile*> owner;
  std::atomic<bool> isNamed;
  char path[4096];
};
Written g_written[8];

void Enter(const PartFile* part, const std::string& path) {
  for (Written& written : g_written) {
    const PartFile* none = nullptr;
    if (path.size() >= sizeof written.path || !written.owner.compare_exchange_strong(none, part)) continue;
    std::memcpy(written.path, path.c_str(), path.size() + 1);
    written.isNamed = true;
    return;
  }
}

void Leave(const PartFile* part) {
  for (Written& written : g_written) {
    if (written.owner != part) continue;
    written.isNamed = false;
    written.owner = nullptr;
  }
}

std::string Unused(const std::filesystem::path& place) {
  std::random_device bits;
  return place.string() + "." + std::to_string(bits()) + ".part";
}

}  // namespace

PartFile::PartFile(const std::filesystem::path& place) : PartFile(Unused(place), place) {}

PartFile::PartFile(std::filesystem::path part, std::filesystem::path place)
    : m_part(std::move(part)), m_place(std::move(place)) {
  Enter(this, Path());
}

PartFile::~PartFile() {
  std::error_code ignored;
  std::filesystem::remove(m_part, ignored);
  Leave(this);
}

bool PartFile::TakePlace() {
  std::error_code error;
  std::filesystem::rename(m_part, m_place, error);
  return !error;
}

void PartFile::RemoveAll() {
  for (const Written& written : g_written)
    if (written.isNamed) std::remove(written.path);
}
