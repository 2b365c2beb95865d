// Running an import with its progress on the terminal.
#pragma once

#include "store/import.h"

/// The variation comes from the model in the file `magnetic`. What was wrong with single lines is said on the
/// standard error output. Empty, or why nothing was imported.
std::string RunImport(const ImportFiles& files, const std::string& path, const std::string& magnetic);

/// The coefficients and files of the sample.
std::string SampleMagneticModel();
ImportFiles SampleFiles();
