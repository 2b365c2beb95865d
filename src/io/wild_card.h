// Names that a wild-card pattern finds, the same on every system.
#pragma once

class K7StrArray;

namespace k7wild {

/// "*" stands for any characters, "?" for one of UTF-8, and everything else (a bracket, too) for itself,
/// without regard to case; "*.*" matches every name.
bool Matches(const char* pattern, const char* name);

/// Appends `names` in case-insensitive order; stops silently when that fails.
void AppendInOrder(K7StrArray& names, K7StrArray& out);

}  // namespace k7wild
