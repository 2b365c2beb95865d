// What the codes and keys of records stand for.
#pragma once

#include <k7/navdata/nav_data.h>

#include <cstddef>

namespace k7nav {

/// The word of a code that counts from 0; `otherwise` for a code without one.
template <size_t N>
const char* WordOf(const char* const (&words)[N], int code, const char* otherwise = nullptr) {
  return code >= 0 && code < static_cast<int>(N) && words[code] ? words[code] : otherwise;
}

/// The fix of a key, which lives as a record of `K7NavData::GetRec`; null when the store has none, and for no
/// store.
inline const K7NavFix* FindFix(K7NavData* data, const K7NavKey& key) {
  const K7NavRec* const rec = data && !key.NoRecord() ? data->GetRec(key) : nullptr;
  return rec && K7IsFix(rec->Type()) ? static_cast<const K7NavFix*>(rec) : nullptr;
}

}  // namespace k7nav
