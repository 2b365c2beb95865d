#include "io/wild_card.h"

#include <k7/foundation/array.h>
#include <k7/foundation/string.h>

#include <cstring>

namespace {

const char* NextCharacter(const char* p) {
  do ++p;
  while ((*p & 0xC0) == 0x80);
  return p;
}

// Ties of names that differ in case only are broken by bytes, so that the order is always the same.
int CompareNames(const void* a, const void* b) {
  const char* const left = *static_cast<const char* const*>(a);
  const char* const right = *static_cast<const char* const*>(b);
  const int order = K7String::IComp(left, right);
  return order ? order : std::strcmp(left, right);
}

}  // namespace

// Only the last "*" met is tried again, so that no pattern takes more than the product of both lengths.
bool k7wild::Matches(const char* pattern, const char* name) {
  if (std::strcmp(pattern, "*.*") == 0) return true;
  const char* star = nullptr;   // behind the last "*"
  const char* retry = nullptr;  // where in the name the pattern behind it began
  while (*name) {
    if (*pattern == '*') {
      star = ++pattern;
      retry = name;
    } else if (*pattern == '?') {
      ++pattern;
      name = NextCharacter(name);
    } else if (K7String::IComp(pattern, name, 1) == 0) {
      ++pattern;
      ++name;
    } else if (star) {
      pattern = star;
      name = ++retry;
    } else {
      return false;
    }
  }
  while (*pattern == '*') ++pattern;
  return !*pattern;
}

void k7wild::AppendInOrder(K7StrArray& names, K7StrArray& out) {
  names.QuickSort(CompareNames);
  for (int i = 0; i < names.Count(); ++i)
    if (out += names[i]) return;
}
