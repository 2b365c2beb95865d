// Imports the text formats in which free navigation data is published into the database of NavStore.
#pragma once

#include "store/import_log.h"

#include <k7/geodesy/magvar.h>

#include <cstdint>
#include <string>
#include <vector>

/// Paths; empty for what is not to be imported. Plain or compressed files.
struct ImportFiles {
  std::string airports;  ///< apt.dat
  std::string navaids;   ///< nav.dat
  std::string fixes;     ///< fix.dat
  std::string airways;   ///< awy.dat
  std::vector<std::string> airspaces;
};

/// Makes the database at `path` of the files, which replaces the one that is there when it is whole; when the
/// import fails or ends in any other way the old one stays. `model` is asked for the variation at `time`
/// (seconds since 1970) and may be null: variation is then unknown and courses of airways are true. What is
/// wrong with single lines goes to the log. Empty, or what went wrong, in one line.
std::string ImportDatabase(const ImportFiles& files, const std::string& path, const Tarsvald::MagVar* model,
                           int64_t time, ImportLog& log, const ImportProgress& progress);
