// Texts of attribute tables in windows-1252, whatever code page they were written in.
#pragma once

#include <cstdint>

namespace k7page {

/// 128 characters of windows-1252 for the bytes from 0x80 on, or one of the two below.
using Page = const char*;

extern const Page WINDOWS_1252;  ///< as it is
extern const Page UTF_8;

/// By what a ".cpg" file says ("UTF-8", "ISO-8859-1", "CP850", "ANSI 1250", "65001"); null for another.
Page ByName(const char* name);
/// By the language driver byte of a dBASE header; null for another.
Page ByDriver(uint8_t driver);

/// Answers what stands for a byte where windows-1252 is to be read: a blank for a control character, "?" for
/// one of the five that the page leaves open, else the byte.
char Printable(char c);

/// Answers 1 for a text with characters of UTF-8, -1 for one that cannot be UTF-8, and 0 for one that does
/// not tell: plain ASCII, or with nothing but a last character that is not whole, as where a field cut it
/// off.
int LooksLikeUtf8(const char* text);

/// Turns a text into windows-1252, in place: it never grows. Letters that the page does not have lose their
/// marks, other characters become "?", control characters blanks.
void Convert(Page page, char* text);

}  // namespace k7page
