#include "app_common/save_file.h"

#include "app_common/part_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#if !defined(_WIN32)
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;

// Links there lead to open files, whose names are not theirs.
bool InProc(const fs::path& path) {
  std::error_code error;
  return fs::weakly_canonical(path.parent_path(), error).string().compare(0, 6, "/proc/") == 0;
}

fs::path FollowLinks(fs::path path) {
  static const int MOST_LINKS = 40;
  std::error_code error;
  for (int i = 0; i < MOST_LINKS && !InProc(path) && fs::is_symlink(fs::symlink_status(path, error)); ++i)
    path = path.parent_path() / fs::read_symlink(path, error);
  return path;
}

bool IsMine([[maybe_unused]] const fs::path& path) {
#if defined(_WIN32)
  return true;
#else
  struct stat info;
  return stat(path.c_str(), &info) == 0 && info.st_uid == geteuid();
#endif
}

// Another file may take the name of this one without anybody losing by it.
bool IsReplaceable(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) return true;
  return fs::is_regular_file(status) && fs::hard_link_count(path, error) == 1 && IsMine(path) &&
         !InProc(path);
}

// 0, or the reason.
int Write(std::FILE* file, const std::vector<unsigned char>& bytes) {
  errno = 0;
  bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() && std::fflush(file) == 0;
  int reason = written ? 0 : errno;
  // Some file systems find only now that they are full.
  if (std::fclose(file) != 0 && written) {
    written = false;
    reason = errno;
  }
  return written ? 0 : reason ? reason : EIO;
}

int WriteDirectly(const fs::path& path, const std::vector<unsigned char>& bytes) {
  std::error_code error;
  const bool isNew = fs::status(path, error).type() == fs::file_type::not_found;
  std::FILE* const file = std::fopen(path.string().c_str(), "wb");
  if (!file) return errno;
  const int reason = Write(file, bytes);
  if (reason && isNew) fs::remove(path, error);
  return reason;
}

// -1 where it cannot be.
int WriteBeside(const fs::path& path, const std::vector<unsigned char>& bytes) {
  PartFile part(path);
  std::FILE* const file = std::fopen(part.Path().c_str(), "wbx");
  if (!file) return -1;
  std::error_code error;
  const fs::file_status before = fs::status(path, error);
  if (before.type() != fs::file_type::not_found) fs::permissions(part.Path(), before.permissions(), error);
  if (const int reason = Write(file, bytes)) return reason;
  return part.TakePlace() ? 0 : -1;
}

// A file that is write-protected is not replaced either.
bool IsProtected(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) return false;
  std::FILE* const file = std::fopen(path.string().c_str(), "r+b");
  if (file) std::fclose(file);
  return !file;
}

}  // namespace

std::string SaveFile(const std::string& path, const std::vector<unsigned char>& bytes) {
  const fs::path target = FollowLinks(path);
  int reason = IsReplaceable(target) && !IsProtected(target) ? WriteBeside(target, bytes) : -1;
  if (reason < 0) reason = WriteDirectly(target, bytes);
  return reason ? std::strerror(reason) : std::string();
}

bool IsDevice(const std::string& path) {
  std::error_code error;
  const fs::path target = FollowLinks(path);
  const fs::file_status status = fs::status(target, error);
  return fs::exists(status) &&
         (InProc(target) || (!fs::is_regular_file(status) && !fs::is_directory(status)));
}
