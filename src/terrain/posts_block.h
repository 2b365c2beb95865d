// Rows of posts in one piece of memory.
#pragma once

#include <k7/terrain/ter_tile.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

class PostsBlock {
 public:
  /// Without data everywhere. False without memory.
  bool Make(int rows, int cols) {
    const auto count = static_cast<size_t>(rows) * static_cast<size_t>(cols);
    m_posts.reset(new (std::nothrow) int16_t[count]);
    m_rows.reset(new (std::nothrow) int16_t*[static_cast<size_t>(rows)]);
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
