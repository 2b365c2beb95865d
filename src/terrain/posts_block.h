// Rows of posts in one piece of memory.
#pragma once

#include <k7/terrain/ter_tile.h>

#include "foundation/alloc.h"

#include <algorithm>
#include <cstdint>
#include <memory>

class PostsBlock {
 public:
  /// Without data everywhere. False without memory.
  bool Make(int rows, int cols) {
    const int64_t count = int64_t{rows} * cols;
    m_posts.reset(NewArray<int16_t>(count));
    m_rows.reset(NewArray<int16_t*>(rows));
    if (!m_posts || !m_rows) return false;
    std::fill_n(m_posts.get(), count, static_cast<int16_t>(K7_NO_ELEV));
    for (int r = 0; r < rows; ++r)
      m_rows[static_cast<size_t>(r)] = m_posts.get() + static_cast<ptrdiff_t>(r) * cols;
    return true;
  }
  /// Hands the posts to the caller, who deletes the array.
  int16_t* Release() { return m_posts.release(); }
  int16_t** Rows() const { return m_rows.get(); }

 private:
  std::unique_ptr<int16_t[]> m_posts;
  std::unique_ptr<int16_t*[]> m_rows;
};
