// Text within XML and HTML.
#pragma once

#include <string>
#include <string_view>

/// UTF-8 with markup spelled out, as text and as the value of an attribute. What XML 1.0 has no place for,
/// control characters, U+FFFE, U+FFFF and bytes that are not UTF-8, becomes '?'.
std::string XmlText(std::string_view text);
