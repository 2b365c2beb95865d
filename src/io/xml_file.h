// Saving a text through the native file system.
#pragma once

#include <cstdio>

class K7XmlText;

/// Puts `text` where `path` leads. A file there is replaced in one step once the new bytes are on the disk,
/// so that neither a full disk nor a crash costs it. Where another file cannot take its place without a loss
/// (see `CanTakePlace`), the file itself is written. 0, K7_ERR_MEMORY or K7_ERR_FILE_IO.
int SaveXmlFile(const char* path, const K7XmlText& text);

// What saving asks of an operating system beyond os.h; xml_file_posix.cpp and xml_file_win32.cpp answer it.
namespace k7os {

/// Nobody loses by `fresh`, an open new file of no bytes, taking the place of `to`, which is no link: there
/// is no file, or a plain one that this process may write, under one name, and of the same owner. `fresh` has
/// its permissions then.
bool CanTakePlace(std::FILE* fresh, const char* to);
/// Flushes a stream down to the disk. True also for what is no disk.
bool Store(std::FILE* stream);

}  // namespace k7os
