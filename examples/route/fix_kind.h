// What stands at a fix, as a flight log says it.
#pragma once

#include <k7/navdata/nav_key.h>

#include <string>

class K7NavData;

/// "airport", "VORTAC 116.8", "NDB 362", "fix"; empty for no record, and for one that the store lacks.
std::string FixKind(K7NavData& store, const K7NavKey& key);
