// The files of the web page, read into memory once, so that no request touches the disk.
#pragma once

#include "web/http.h"

#include <map>
#include <string>

class PageFiles {
 public:
  /// Reads all files of a folder and of the folders in it. Empty, or what went wrong.
  std::string Read(const std::string& folder);
  /// Null for none of that name, as "vendor/x.js".
  const HttpAnswer* Find(const std::string& name) const;

 private:
  std::map<std::string, HttpAnswer> m_files;
};
