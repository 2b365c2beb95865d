#include "io/xml_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

bool k7os::CanTakePlace(std::FILE* fresh, const char* to) {
  struct stat there;
  struct stat mine;
  if (lstat(to, &there) != 0) return errno == ENOENT;
  if (!S_ISREG(there.st_mode) || there.st_nlink != 1) return false;
  if (faccessat(AT_FDCWD, to, W_OK, AT_EACCESS) != 0) return false;
  if (fstat(fileno(fresh), &mine) != 0) return false;
  if (mine.st_uid != there.st_uid || mine.st_gid != there.st_gid || mine.st_dev != there.st_dev) return false;
  const mode_t permissions = there.st_mode & 07777;
  return (mine.st_mode & 07777) == permissions || fchmod(fileno(fresh), permissions) == 0;
}

bool k7os::Store(std::FILE* stream) {
  if (std::fflush(stream) != 0) return false;
  // Pipes and terminals cannot be, and need not.
  return fsync(fileno(stream)) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}
