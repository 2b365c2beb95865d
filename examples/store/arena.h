// Arena: memory for records and their texts, released all at once.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

class Arena {
 public:
  /// `bytes` of memory, aligned to 8, that live until `Clear`. Throws std::bad_alloc.
  char* Take(size_t bytes) {
    bytes = (bytes + 7) / 8 * 8;
    if (m_blocks.empty() || bytes > m_blocks.back().size - m_used) {
      const size_t size = std::max(bytes, m_blocks.empty() ? FIRST_BLOCK : BLOCK);
      m_blocks.push_back({std::unique_ptr<char[]>(new char[size]), size});
      m_used = 0;
    }
    char* taken = m_blocks.back().bytes.get() + m_used;
    m_used += bytes;
    return taken;
  }
  /// Keeps the first block, for records that are read one after the other.
  void Clear() {
    if (m_blocks.size() > 1) m_blocks.resize(1);
    m_used = 0;
  }

 private:
  static constexpr size_t FIRST_BLOCK = 1024;
  static constexpr size_t BLOCK = 65536;
  struct Block {
    std::unique_ptr<char[]> bytes;
    size_t size;
  };

  std::vector<Block> m_blocks;
  size_t m_used = 0;
};
