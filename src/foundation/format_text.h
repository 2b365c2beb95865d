// The formatter behind every printf-style operation of the library.
#pragma once

#include <cstdarg>
#include <cstddef>

/// Writes as `vsnprintf` of the "C" locale does, the same bytes on every platform whatever locale the host
/// has set. Answers the length of the whole text, of which `dst` receives at most `size` - 1 characters and a
/// terminator; negative for a format that ends inside a conversion, a text beyond INT_MAX characters and wide
/// text that is no Unicode.
///
/// All conversions, flags and lengths of C99. Numbers are exact to the last digit asked for, ties to even.
/// "%C" is one byte from an int, wide text becomes UTF-8, a pointer is "0x1f" or "(nil)", a null text
/// "(null)". An unknown letter is written with its conversion, and a "%" with nothing behind it is a percent
/// sign.
int FormatText(char* dst, size_t size, const char* fmt, va_list args);
