#include "io/xml_attribs.h"

#include "foundation/alloc.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr int FIRST_CAPACITY = 4;
constexpr size_t FIRST_ROOM = 64;
constexpr size_t MAX_ROOM = INT32_MAX;

}  // namespace

K7XmlAttribs* K7XmlAttribs::New(int capacity, size_t room) {
  const int64_t size =
      int64_t{sizeof(K7XmlAttribs)} + int64_t{capacity} * int64_t{sizeof(Pair)} + static_cast<int64_t>(room);
  void* const block = ReallocArray(nullptr, size, 1);
  return block ? new (block) K7XmlAttribs(capacity, room) : nullptr;
}

void K7XmlAttribs::Delete(K7XmlAttribs* attribs) { std::free(attribs); }

K7XmlAttribs* K7XmlAttribs::Make(const void* pairs, int count, const char* texts, size_t size) {
  K7XmlAttribs* const attribs = New(count, size);
  if (!attribs) return nullptr;
  std::memcpy(attribs->Pairs(), pairs, static_cast<size_t>(count) * sizeof(Pair));
  std::memcpy(attribs->Texts(), texts, size);
  attribs->m_count = count;
  return attribs;
}

K7XmlAttribs* K7XmlAttribs::Clone() const { return Make(Pairs(), m_count, Texts(), End()); }

size_t K7XmlAttribs::End() const {
  if (m_count == 0) return 0;
  const size_t last = Pairs()[m_count - 1].value;
  return last + std::strlen(Texts() + last) + 1;
}

bool K7XmlAttribs::Append(K7XmlAttribs*& attribs, const char* name, const char* value) {
  const size_t nameSize = std::strlen(name) + 1;
  const size_t valueSize = std::strlen(value) + 1;
  const size_t end = attribs ? attribs->End() : 0;
  const size_t needed = end + nameSize + valueSize;
  if (needed > MAX_ROOM) return false;
  const int count = attribs ? attribs->m_count : 0;
  K7XmlAttribs* block = attribs;
  if (!block || count == block->m_capacity || needed > block->m_room) {
    block = New(std::max(2 * count, FIRST_CAPACITY), std::max(2 * needed, FIRST_ROOM));
    if (!block) return false;
    if (attribs) {
      std::memcpy(block->Pairs(), attribs->Pairs(), static_cast<size_t>(count) * sizeof(Pair));
      std::memcpy(block->Texts(), attribs->Texts(), end);
    }
  }
  std::memcpy(block->Texts() + end, name, nameSize);
  std::memcpy(block->Texts() + end + nameSize, value, valueSize);
  block->Pairs()[count] = {static_cast<unsigned>(end), static_cast<unsigned>(end + nameSize)};
  block->m_count = count + 1;
  // Only now: the new texts may be some of the old block's.
  if (block != attribs) Delete(attribs);
  attribs = block;
  return true;
}

int K7XmlAttribs::Find(const char* name) const {
  for (int i = 0; i < m_count; ++i)
    if (std::strcmp(Name(i), name) == 0) return i;
  return -1;
}
