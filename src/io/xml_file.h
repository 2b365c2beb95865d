// Saving a text through the native file system.
#pragma once

class K7XmlText;

/// Puts `text` where `path` leads. A file there is replaced in one step once the new bytes are on the disk,
/// so that neither a full disk nor a crash costs it. Where another file cannot take its place without a loss
/// (see `CanTakePlace`), the file itself is written. 0, K7_ERR_MEMORY or K7_ERR_FILE_IO.
int SaveXmlFile(const char* path, const K7XmlText& text);
