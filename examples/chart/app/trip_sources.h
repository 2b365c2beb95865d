// What a trip sheet was taken from, in words: who flies by it must know how old that is.
#pragma once

#include "store/nav_store.h"

#include <string>
#include <vector>

/// The navigation data, their dates, and the magnetic model of the process.
std::vector<std::string> SourcesOf(NavStore& store);
