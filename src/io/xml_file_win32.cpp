#include "io/xml_file.h"

#include <io.h>
#include <windows.h>

bool k7os::CanTakePlace(std::FILE*, const char* to) {
  static const DWORD REFUSED = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY |
                               FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE;
  const DWORD attributes = GetFileAttributesA(to);
  return attributes == INVALID_FILE_ATTRIBUTES || (attributes & REFUSED) == 0;
}

bool k7os::Store(std::FILE* stream) {
  if (std::fflush(stream) != 0) return false;
  const int file = _fileno(stream);
  return _isatty(file) != 0 || _commit(file) == 0;
}
