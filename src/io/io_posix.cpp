#include "io/os.h"

#include <clocale>
#include <cstdio>
#include <locale.h>

namespace {

// Numbers are written with a point even in a host that has set a locale with a decimal comma.
locale_t NumericC() {
  static const locale_t locale = newlocale(LC_NUMERIC_MASK, "C", nullptr);
  return locale;
}

}  // namespace

int k7os::FormatC(char* dst, size_t size, const char* fmt, va_list args) {
  const locale_t previous = NumericC() ? uselocale(NumericC()) : nullptr;
  const int n = std::vsnprintf(dst, size, fmt, args);
  if (previous) uselocale(previous);
  return n;
}
