// Serialisation of strings; it stands here because it needs files.

#include <k7/foundation/string.h>

#include "io/read.h"

#include <cstdint>

int K7String::Read(K7File* file) {
  Clear();
  if (!file) return K7_ERR_BAD_ARGUMENT;
  uint16_t count = 0;
  if (const int err = k7read::Exact(file, &count, sizeof count)) return err;
  if (count == 0) return 0;
  // One character more than the count says: a damaged file may hold no terminator among its bytes.
  if (const int err = Alloc(count)) return err;
  return k7read::Exact(file, m_text, count);
}

int K7String::Write(K7File* file) const {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  // The count wraps at 16 bits: a text of 65535 characters is written as an empty one.
  const uint16_t count = IsEmpty() ? 0 : static_cast<uint16_t>(Len() + 1);
  if (const int err = k7read::Whole(file->Write(&count, sizeof count), sizeof count)) return err;
  return count == 0 ? 0 : k7read::Whole(file->Write(m_text, count), count);
}
