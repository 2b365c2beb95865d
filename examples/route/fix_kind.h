// What stands at a fix, as a flight log says it.
#pragma once

#include <k7/navdata/nav_rec.h>

#include <string>

class K7NavData;

/// "airport", "VORTAC 116.8", "NDB 362", "fix"; empty for no record, and for one that the store lacks.
std::string FixKind(K7NavData& store, const K7NavKey& key);
/// Of a record of those kinds, UTF-8; empty for none.
std::string FixName(const K7NavRec& rec);
