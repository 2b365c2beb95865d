#include "io/xml_file.h"

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include "io/os.h"
#include "io/xml_text.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <ctime>

namespace {

constexpr int DIRECTLY = 1;

// A full disk may show itself only when the last buffer is written, and some show it when the file is closed.
bool WriteAndClose(std::FILE* stream, const K7XmlText& text) {
  const size_t size = static_cast<size_t>(text.Size());
  const bool written = std::fwrite(text.Text(), 1, size, stream) == size && k7os::Store(stream);
  return std::fclose(stream) == 0 && written;
}

// Opens a file beside `target` under a name that nobody uses: the mode's "x" takes no other. Null where the
// folder takes no new file. `path` is empty without memory.
std::FILE* OpenBeside(const char* target, K7String& path) {
  static std::atomic<unsigned> count{0};
  static const int ATTEMPTS = 8;
  const unsigned start = static_cast<unsigned>(std::time(nullptr)) * 2654435761U +
                         static_cast<unsigned>(reinterpret_cast<uintptr_t>(&path) >> 4);
  std::FILE* stream = nullptr;
  for (int i = 0; i < ATTEMPTS && !stream; ++i) {
    if (path.Format("%s.%08x.tmp", target, start + count++) < 0) {
      path.Clear();
      return nullptr;
    }
    stream = k7os::OpenStream(path, "wx");
  }
  return stream;
}

// 0, a code, or DIRECTLY with `target`, a native path, untouched.
int Replace(const char* target, const K7XmlText& text) {
  K7String path;
  std::FILE* const stream = OpenBeside(target, path);
  if (!stream) return path.IsEmpty() ? K7_ERR_MEMORY : DIRECTLY;
  int result = 0;
  if (!k7os::CanTakePlace(stream, target)) {
    std::fclose(stream);
    result = DIRECTLY;
  } else if (!WriteAndClose(stream, text)) {
    result = K7_ERR_FILE_IO;
  } else if (!k7os::ReplaceFile(path, target)) {
    // The new bytes found room, so that the old ones may be given up: a mounted file, say, keeps its place.
    result = DIRECTLY;
  }
  if (result != 0) k7os::DeleteFile(path);
  return result;
}

}  // namespace

int SaveXmlFile(const char* path, const K7XmlText& text) {
  K7String target;
  if (!k7os::FollowLinks(path, target)) return K7_ERR_MEMORY;
  const k7os::NativePath native(target);
  if (!native.Text()) return K7_ERR_MEMORY;
  // A link that is still one leads nowhere yet: writing makes the file that it names.
  const int result = k7os::IsLink(native.Text()) ? DIRECTLY : Replace(native.Text(), text);
  if (result != DIRECTLY) return result;
  errno = 0;
  std::FILE* const stream = k7os::OpenStream(native.Text(), "w");
  if (!stream) return errno == ENOMEM ? K7_ERR_MEMORY : K7_ERR_FILE_IO;
  return WriteAndClose(stream, text) ? 0 : K7_ERR_FILE_IO;
}
