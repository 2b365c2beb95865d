// A file that is written beside its place.
#pragma once

#include <filesystem>
#include <string>

/// The name of a new file beside the one whose place it is to take; nobody else uses it. Who fills it under
/// that name either calls `TakePlace` or leaves nothing behind.
class PartFile {
 public:
  explicit PartFile(const std::filesystem::path& place);
  /// One that somebody else named.
  PartFile(std::filesystem::path part, std::filesystem::path place);
  ~PartFile();
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;

  std::string Path() const { return m_part.string(); }
  /// Replaces what is in the place, in one step. False when that cannot be.
  bool TakePlace();
  /// Removes those of the whole process, for a signal's handler that ends it. Another is of no use then.
  static void RemoveAll();

 private:
  std::filesystem::path m_part;
  std::filesystem::path m_place;
};
