// Windows-1252, in which records hold texts, and UTF-8, in which the database does.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Every byte has its character; the five that windows-1252 leaves open are the control characters of their
/// number.
std::string Utf8Of1252(std::string_view text);
/// The same for a person to read: '?' for what a terminal would obey.
std::string Printable1252(std::string_view text);
/// Writes `utf8` to `out`, which has room for as many bytes, up to a NUL; '?' for what windows-1252 does not
/// have and for what is not UTF-8. The number of bytes written.
size_t Write1252(std::string_view utf8, char* out);
std::string Text1252(std::string_view utf8);
bool IsUtf8(std::string_view text);
/// True when all are below 128, where the two are the same.
bool IsAscii(std::string_view text);
/// The lower case of a windows-1252 text.
std::string Folded1252(std::string_view text);
