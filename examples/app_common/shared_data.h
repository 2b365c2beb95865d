// Where the themes and the sample data are.
#pragma once

#include <string>

/// The folder "sample" or "themes": beside an installed program as it was installed, else in the source tree.
std::string SharedData(const char* folder);
/// The sample of navigation data, as the build imported it; empty where it is not there.
std::string SampleNav();
/// The folder of the page that 'k7chart serve' shows.
std::string PageFolder();
