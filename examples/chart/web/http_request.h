// From the bytes of a request to what endpoints are asked.
#pragma once

#include "web/http.h"

#include <span>
#include <string_view>

/// Takes the target of a request line apart, "/tiles/day/3/1/2.png?a=b". Answers 200, or the status to refuse
/// it with: 414 for one that is too long, 400 for what is no path, is badly encoded, holds a control
/// character, climbs with "..", or has too many parameters.
int ReadTarget(std::string_view target, HttpRequest& request);

/// A header "Host" that names one of `names`, without regard to case, with any port or none. Names of the
/// internet that a foreign page has pointed at this machine are none of them.
bool IsHost(std::string_view host, std::span<const std::string> names);

/// A header "Origin" of a page that this machine serves itself.
bool IsLoopbackOrigin(std::string_view origin);

/// A header "If-None-Match" that holds the tag, or any.
bool HoldsTag(std::string_view header, std::string_view tag);

/// For a line of the log: what is no printable character of ASCII, blanks, quotes and backslashes as "\xNN".
std::string Escaped(std::string_view text);
